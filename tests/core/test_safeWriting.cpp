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

TEST(SafeWriting, AFileThatAppearsMeanwhileIsAskedFor)
{
    auto const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"));
    UserTrackingOptions options;
    options.layerSelection = {ZN::AllLayers, QString()};
    auto const wrapper = std::make_shared<TrackingExporterWrapper>(std::make_shared<FakeTrackingExporter>(), options,
                                                                   false, "Fake Tracks");
    for (bool const replaces : {false, true})
    {
        QTemporaryDir const folder;
        LateProvider provider;
        provider.replaces = replaces;
        EXPECT_EQ(exportToDisk(wrapper, ExportFileInfo(), folder.path(), *project, provider).first, replaces);
        EXPECT_EQ(provider.asked, 2);
        QFile file(folder.filePath("plane"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), replaces ? "tracks" : "theirs");
    }
}

}
