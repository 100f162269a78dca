// What other programs do to a target between the user's yes and the write.

#include "Core/ExportFunctions.h"
#include "CoreFixtures.h"

using namespace Export;
using namespace CoreTest;

namespace
{

/// Agrees to what is new only; another program makes the file after the first answer.
class LateProvider : public ExportMessageBoxProvider
{
public:
    bool confirmFailures(Korvane::ExportedFiles const&) override
    {
        return false;
    }

    void showNotices(std::vector<ExportNotice> const&) override
    {
    }

    QString askSavePath(ExportFileInfo const&, QString const&, QString const& suggestedPath) override
    {
        return suggestedPath;
    }

    bool confirmWrite(QString const& target) override
    {
        ++asked;
        bool const isNew = !QFileInfo::exists(target);
        QFile file(target);
        EXPECT_TRUE(!isNew || (file.open(QIODevice::WriteOnly) && file.write("theirs") == 6));
        return isNew || replaces;
    }

    bool replaces = false;
    int asked = 0;
};

class OneFile : public ExporterWrapper
{
public:
    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager&) const override
    {
        return {true, std::nullopt};
    }

    Korvane::ExportedFiles getExportResult(KORV_ProjectManager&, QString const& path) const override
    {
        Korvane::ExportedFiles result;
        result.files.insert(path, "ours");
        return result;
    }

    void setClipboardText(Fnd::IClipboard&, QString const&) const override
    {
    }

    QString const& formatDisplayName() const override
    {
        return m_name;
    }

    QString filenameSuggestion(KORV_ProjectManager const&) const override
    {
        return m_name;
    }

private:
    QString m_name = "ours.txt";
};

TEST(SafeWriting, AFileThatAppearsMeanwhileIsAskedFor)
{
    auto const project = MarloHost::makeProject(projectOf({}));
    for (bool const replaces : {false, true})
    {
        QTemporaryDir const folder;
        LateProvider provider;
        provider.replaces = replaces;
        bool const isWritten =
            exportToDisk(std::make_shared<OneFile>(), ExportFileInfo(), folder.path(), *project, provider).first;
        EXPECT_EQ(isWritten, replaces);
        EXPECT_EQ(provider.asked, 2);
        QFile file(folder.filePath("ours.txt"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), replaces ? "ours" : "theirs");
    }
}

}
