#include "Core/ExportFunctions.h"
#include "CoreFixtures.h"
#include "ScratchFolder.h"
#include "marlohost/Services.h"

#include <boost/make_shared.hpp>

using namespace Export;
using namespace CoreTest;

namespace
{

/// Answers as told and keeps what it was asked, in order.
class ScriptedProvider : public ExportMessageBoxProvider
{
public:
    bool confirmFailures(Korvane::ExportedFiles const& result) override
    {
        log.append(QStringLiteral("failures %1 %2").arg(result.failedCount).arg(result.messages.join('|')));
        return abandons;
    }

    void showNotices(std::vector<ExportNotice> const& notices) override
    {
        QStringList titles;
        for (ExportNotice const& notice : notices)
        {
            titles.append(notice.title);
        }
        log.append("notices " + titles.join('|'));
    }

    QString askSavePath(ExportFileInfo const&, QString const& directory, QString const& suggestedPath) override
    {
        log.append("path " + QDir(directory).relativeFilePath(suggestedPath));
        return path;
    }

    bool confirmWrite(QString const& target) override
    {
        log.append("write " + QFileInfo(target).fileName());
        return !declined.contains(QFileInfo(target).fileName());
    }

    bool abandons = false;
    QString path;
    QStringList declined;
    QStringList log;
};

/// Gives a fixed result; "{path}" in it is the path that the export got.
class FakeWrapper : public ExporterWrapper
{
public:
    explicit FakeWrapper(QMap<QString, QByteArray> const& files)
    {
        result.files = files;
        result.messages = QStringList{"m"};
        result.notices = {{"key", "n", "text"}};
    }

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager&) const override
    {
        return reason ? std::make_pair(false, std::optional<char const*>(reason)) : std::make_pair(true, std::nullopt);
    }

    Korvane::ExportedFiles getExportResult(KORV_ProjectManager&, QString const& path) const override
    {
        paths.append(path);
        Korvane::ExportedFiles here = result;
        here.files.clear();
        for (auto file = result.files.begin(); file != result.files.end(); ++file)
        {
            here.files.insert(QString(file.key()).replace("{path}", path), file.value());
        }
        return here;
    }

    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override
    {
        clipboard.setText(text);
    }

    QString const& formatDisplayName() const override
    {
        return name;
    }

    QString filenameSuggestion(KORV_ProjectManager const&) const override
    {
        return "suggested";
    }

    char const* reason = nullptr;
    Korvane::ExportedFiles result;
    QString name = "Fake";
    mutable QStringList paths;
};

/// Keeps the lines of usage records.
class UsageRecords : public ApplicationContext, public Fnd::UsageLogger
{
public:
    Fnd::UsageLogger& usageLogger() const override
    {
        return const_cast<UsageRecords&>(*this);
    }

    void log(Record const& record) override
    {
        for (Record::Value const& value : record.values())
        {
            lines.append(record.name() + ' ' + value.key + '=' + value.value + (value.shared ? " shared" : ""));
        }
    }

    QStringList lines;
};

class ExportFunctionsTest : public testing::Test
{
protected:
    ExportFunctionsTest()
    {
        MarloHost::HostServices services;
        services.applicationContext = m_usage;
        m_project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"), QString(), services);
        m_provider.path = m_folder.path("shot.txt");
    }

    std::pair<bool, QString> toDisk(std::shared_ptr<FakeWrapper> const& wrapper, ExportFileInfo const& info = {})
    {
        return exportToDisk(wrapper, info, "/start", *m_project, m_provider);
    }

    /// The words of the KORV_OperationFailed that writing to these paths raises.
    QString failureOf(QMap<QString, QByteArray> const& files)
    {
        return thrown<KORV_OperationFailed>([&] { toDisk(std::make_shared<FakeWrapper>(files)); });
    }

    std::shared_ptr<FakeWrapper> const m_wrapper =
        std::make_shared<FakeWrapper>(QMap<QString, QByteArray>{{"{path}", "text"}});
    boost::shared_ptr<UsageRecords> const m_usage = boost::make_shared<UsageRecords>();
    boost::shared_ptr<KORV_ProjectManager> m_project;
    ScratchFolder m_folder;
    ScriptedProvider m_provider;
    MarloHost::MemoryClipboard m_clipboard;
};

using Written = std::pair<bool, QString>;

TEST_F(ExportFunctionsTest, DiskExportAsksWritesAndTells)
{
    m_wrapper->result.failedCount = 3;
    EXPECT_EQ(toDisk(m_wrapper), Written(true, m_folder.path()));
    EXPECT_EQ(m_folder.read("shot.txt"), QByteArray("text"));
    EXPECT_EQ(m_provider.log, (QStringList{"path suggested", "failures 3 m", "write shot.txt", "notices n"}));
    EXPECT_EQ(m_usage->lines, QStringList("ExportData ExportFormat=Fake shared"));
}

TEST_F(ExportFunctionsTest, AnImpossibleExportAsksNothing)
{
    m_wrapper->reason = "No layers";
    EXPECT_EQ(thrown<std::logic_error>([&] { toDisk(m_wrapper); }), QString("No layers"));
    EXPECT_EQ(thrown<std::logic_error>([&] { copyToClipboard(m_wrapper, *m_project, m_provider, m_clipboard); }),
              QString("No layers"));
    EXPECT_TRUE(m_wrapper->paths.isEmpty());
    EXPECT_TRUE(m_provider.log.isEmpty());
}

TEST_F(ExportFunctionsTest, ThereMustBeAnExportToRun)
{
    EXPECT_THROW(toDisk(nullptr), KORV_BadArgument);
    EXPECT_THROW(copyToClipboard(nullptr, *m_project, m_provider, m_clipboard), KORV_BadArgument);
    EXPECT_THROW(exportBatch({{m_wrapper, {}, m_provider.path}, {}}, *m_project, m_provider), KORV_BadArgument);
    EXPECT_TRUE(m_provider.log.isEmpty());
}

TEST_F(ExportFunctionsTest, NothingIsExportedWithoutATarget)
{
    ExportFileInfo nothing;
    nothing.canSave = 0;
    EXPECT_EQ(toDisk(m_wrapper, nothing), Written(false, "/start"));
    EXPECT_TRUE(m_provider.log.isEmpty());

    m_provider.path.clear();
    EXPECT_EQ(toDisk(m_wrapper), Written(false, "/start"));
    EXPECT_TRUE(m_wrapper->paths.isEmpty());
}

TEST_F(ExportFunctionsTest, AbandonedAndEmptyExportsWriteNothing)
{
    m_provider.abandons = true;
    EXPECT_EQ(toDisk(m_wrapper), Written(false, "/start"));

    m_provider.abandons = false;
    auto const empty = std::make_shared<FakeWrapper>(QMap<QString, QByteArray>());
    empty->result.failedCount = 1;
    EXPECT_EQ(toDisk(empty), Written(false, "/start"));
    EXPECT_EQ(m_provider.log, (QStringList{"path suggested", "failures 0 m", "path suggested", "failures 1 m"}));
    EXPECT_TRUE(m_folder.names().isEmpty());
    EXPECT_TRUE(m_usage->lines.isEmpty());
}

TEST_F(ExportFunctionsTest, DeclinedFilesAreLeftOut)
{
    auto const both = std::make_shared<FakeWrapper>(
        QMap<QString, QByteArray>{{"{path}", "text"}, {m_folder.path("other.txt"), "other"}});
    m_provider.declined = QStringList{"shot.txt"};
    EXPECT_EQ(toDisk(both), Written(true, m_folder.path()));
    EXPECT_EQ(m_folder.names(), QStringList("other.txt"));

    m_provider.declined.append("other.txt");
    m_provider.log.clear();
    EXPECT_EQ(toDisk(both), Written(false, m_folder.path()));
    EXPECT_FALSE(m_provider.log.contains("notices n"));
}

TEST_F(ExportFunctionsTest, AllUnwritableFoldersAreNamedBeforeAnythingIsWritten)
{
    m_folder.write("file", "");
    QString const inFile = m_folder.path("file");
    EXPECT_EQ(failureOf({{"{path}", "text"},
                         {m_folder.path("new/shot.txt"), "text"},
                         {inFile + "/deep/shot.txt", ""},
                         {inFile + "/shot.txt", ""},
                         {inFile + "/shot2.txt", ""},
                         {"/proc/%1/shot.txt", ""}}),
              QString("Cannot write to following paths.\nMake sure you have the necessary permissions:\n") +
                  (QFileInfo("/proc").isWritable() ? "" : "/proc/%1\n") + inFile + "\n" + inFile + "/deep\n");
    EXPECT_EQ(m_folder.names(), QStringList("file"));
    EXPECT_FALSE(m_provider.log.contains("write shot.txt"));
}

TEST_F(ExportFunctionsTest, AFolderThatCantBeMadeAfterAllIsNamedToo)
{
    // Looks writable to root, but no folder can be made there.
    EXPECT_EQ(
        failureOf({{"{path}", "text"}, {"/proc/marlo/shot.txt", ""}}),
        QString("Cannot write to following paths.\nMake sure you have the necessary permissions:\n/proc/marlo\n"));
    EXPECT_FALSE(QFile::exists(m_provider.path));
}

TEST_F(ExportFunctionsTest, AFileThatCantBeWrittenIsNamedAndEarlierOnesStay)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("z%1.txt"));
    EXPECT_EQ(failureOf({{"{path}", "text"}, {m_folder.path("z%1.txt"), "text"}}),
              "Could not write to file " + m_folder.path("z%1.txt") + ": Is a directory");
    EXPECT_EQ(m_folder.read("shot.txt"), QByteArray("text"));
    EXPECT_FALSE(m_provider.log.contains("notices n"));
    EXPECT_TRUE(m_usage->lines.isEmpty());
}

TEST_F(ExportFunctionsTest, ClipboardTakesTheOneTextAsUtf8)
{
    auto const wrapper = std::make_shared<FakeWrapper>(QMap<QString, QByteArray>{{"a", "\xc3\xa4"}});
    copyToClipboard(wrapper, *m_project, m_provider, m_clipboard);
    EXPECT_EQ(m_clipboard.text(), QString(QChar(0xe4)));
    EXPECT_EQ(wrapper->paths, QStringList(""));
    EXPECT_EQ(m_provider.log, (QStringList{"failures 0 m", "notices n"}));
}

TEST_F(ExportFunctionsTest, ClipboardIsLeftAloneWithoutOneText)
{
    auto const none = std::make_shared<FakeWrapper>(QMap<QString, QByteArray>());
    copyToClipboard(none, *m_project, m_provider, m_clipboard);
    m_provider.abandons = true;
    copyToClipboard(m_wrapper, *m_project, m_provider, m_clipboard);
    auto const two = std::make_shared<FakeWrapper>(QMap<QString, QByteArray>{{"a", "1"}, {"b", "2"}});
    copyToClipboard(two, *m_project, m_provider, m_clipboard);
    m_provider.abandons = false;
    EXPECT_EQ(thrown<std::logic_error>([&] { copyToClipboard(two, *m_project, m_provider, m_clipboard); }),
              QString("Cannot copy multiple files to clipboard"));
    EXPECT_TRUE(m_clipboard.isEmpty());
    EXPECT_FALSE(m_provider.log.contains("notices n"));
}

class BatchTest : public ExportFunctionsTest
{
protected:
    BatchItem item(QString const& fileName, QByteArray const& content)
    {
        auto const wrapper = std::make_shared<FakeWrapper>(QMap<QString, QByteArray>{{"{path}", content}});
        wrapper->name = content;
        wrapper->result.failedCount = 2;
        wrapper->result.messages = QStringList{content};
        wrapper->result.notices[0].title = content;
        return {wrapper, {}, m_folder.path(fileName)};
    }
};

TEST_F(BatchTest, ResultsAreMergedAndWrittenInPathOrder)
{
    EXPECT_TRUE(exportBatch({item("b", "one"), item("a", "two"), item("b", "three")}, *m_project, m_provider));
    EXPECT_EQ(m_folder.read("a"), QByteArray("two"));
    EXPECT_EQ(m_folder.read("b"), QByteArray("three"));
    EXPECT_EQ(m_provider.log, (QStringList{"failures 6 one|two|three", "write a", "write b", "notices one|two|three"}));
    EXPECT_EQ(m_usage->lines, (QStringList{"ExportData ExportFormat=one shared", "ExportData ExportFormat=two shared",
                                           "ExportData ExportFormat=three shared"}));
}

TEST_F(BatchTest, AnItemThatFailsEndsTheBatchBeforeAnythingIsWritten)
{
    BatchItem bad = item("b", "two");
    static_cast<FakeWrapper&>(*bad.wrapper).reason = "No camera data.";
    EXPECT_EQ(thrown<std::logic_error>(
                  [&] {
                      exportBatch({item("a", "one"), bad}, *m_project, m_provider);
                  }),
              QString("No camera data."));
    EXPECT_TRUE(m_provider.log.isEmpty());
    EXPECT_TRUE(m_folder.names().isEmpty());
}

TEST_F(BatchTest, AbandonedDeclinedAndEmptyBatchesWriteNothing)
{
    m_provider.abandons = true;
    EXPECT_FALSE(exportBatch({item("a", "one")}, *m_project, m_provider));
    m_provider.abandons = false;
    EXPECT_FALSE(exportBatch({}, *m_project, m_provider));
    EXPECT_TRUE(m_usage->lines.isEmpty());
    m_provider.declined = QStringList{"a"};
    EXPECT_FALSE(exportBatch({item("a", "one")}, *m_project, m_provider));
    EXPECT_TRUE(m_folder.names().isEmpty());
}

}
