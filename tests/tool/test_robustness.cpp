// What goes wrong around the program: bad projects, other locales, full disks,
// readers that go away, folders of other people, interrupts.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

QString const PIN = QStringLiteral("after_effects_corner_pin");

class Robustness : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.write("shot.json", movingProject());
    }

    ToolFolder folder;
};

TEST_F(Robustness, BadProjectsAreRefusedInOneLineThatNamesThePlace)
{
    QByteArray const good = folder.read("shot.json");
    auto const replaced = [&](char const* before, char const* after)
    {
        QByteArray text = good;
        EXPECT_TRUE(text.contains(before));
        return text.replace(text.indexOf(before), static_cast<int>(qstrlen(before)), after);
    };
    QByteArray deep = good.trimmed();
    deep.chop(1);
    deep += ", \"deep\": " + QByteArray(5'000'000, '[');
    struct Case
    {
        char const* what;
        QByteArray project;
        char const* words;
    };
    Case const cases[] = {
        {"empty", "", "bad.json"},
        {"cut off", good.left(good.size() / 2), "bad.json"},
        {"not JSON", QByteArray("\0\xFF\x01", 3), "bad.json"},
        {"unknown key", replaced("\"name\"", "\"title\": 1, \"name\""), "title"},
        {"NaN", replaced("2.5", "NaN"), "bad.json"},
        {"singular", replaced("1, 0, 2.5, 0, 1, -1, 0, 0, 1", "1, 0, 2.5, 0, 0, -1, 0, 0, 1"),
         "$.layers[0].tracking[0].homographies"},
        {"wrong type", replaced("1920", "\"1920\""), "$.clips[0].width"},
        {"deep", deep, "bad.json"},
    };
    for (Case const& c : cases)
    {
        SCOPED_TRACE(c.what);
        folder.write("bad.json", c.project);
        for (QStringList const& command : {QStringList{"export", "bad.json", PIN}, QStringList{"info", "bad.json"}})
        {
            ToolResult const result = folder.run(command);
            EXPECT_EQ(result.status, 3);
            EXPECT_EQ(result.err.count('\n'), 1) << result.err.toStdString();
            EXPECT_TRUE(result.err.contains(c.words)) << result.err.left(300).toStdString();
            EXPECT_TRUE(result.err.contains("bad.json"));
        }
        EXPECT_EQ(folder.files(), (QStringList{"bad.json", "shot.json"}));
    }
}

TEST_F(Robustness, SameBytesWhateverTheEnvironment)
{
    folder.write("t.txt", "1 100.5 50.25 300 60 310 200 90 190\n2 101.5 50 300 61 310 200 90 190\n");
    QStringList const exportPin{"export", "shot.json", PIN, "-o", "-"};
    QStringList const formats{"formats", "--json"};
    QStringList const import{"import", "corners", "t.txt",       "--size", "640x480",
                             "--fps",  "23.976",  "--overwrite", "-o",     "p.json"};
    QByteArray const pin = folder.run(exportPin).out;
    QByteArray const list = folder.run(formats).out;
    EXPECT_EQ(folder.run(import).status, 0);
    QByteArray const project = folder.read("p.json");
    ASSERT_TRUE(pin.contains("862.5"));
    for (char const* seed : {"1", "2"})
    {
        for (char const* variable : {"LC_ALL", "LANG", "LC_NUMERIC"})
        {
            folder.environment.insert("QT_HASH_SEED", seed);
            folder.environment.insert(variable, "de_DE.UTF-8");
            folder.environment.insert("LANGUAGE", "de");
            EXPECT_EQ(folder.run(exportPin).out, pin);
            EXPECT_EQ(folder.run(formats).out, list) << "English unless --lang says otherwise";
            EXPECT_EQ(folder.run(import).status, 0);
            EXPECT_EQ(folder.read("p.json"), project);
        }
    }
}

// File names are UTF-8, also where the environment says that there is nothing but ASCII.
TEST_F(Robustness, FileNamesDontDependOnTheLocale)
{
    for (char const* locale : {"C", "POSIX", "de_DE.ISO-8859-1"})
    {
        ToolFolder fresh;
        fresh.environment.insert("LC_ALL", locale);
        fresh.write("é 門.json", movingProject("Tür"));
        EXPECT_EQ(fresh.run({"export", "é 門.json", PIN}).status, 0);
        EXPECT_EQ(fresh.files(), (QStringList{"Tür.txt", "é 門.json"})) << locale;
    }
}

TEST_F(Robustness, AFullDiskLeavesTheOldFile)
{
    folder.write("shot.json", movingProject("Wall", 2000));
    folder.write("pin.txt", "old");
    ToolResult const result = folder.run({"export", "shot.json", PIN, "-o", "pin", "--overwrite"},
                                         []
                                         {
                                             rlimit const limit{4096, 4096};
                                             ::setrlimit(RLIMIT_FSIZE, &limit);
                                         });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "marlo-export: Could not write to file pin.txt\n");
    EXPECT_EQ(folder.read("pin.txt"), "old");
    EXPECT_EQ(folder.files(), (QStringList{"pin.txt", "shot.json"}));
}

TEST_F(Robustness, StdoutThatTakesNothing)
{
    auto const onto = [](char const* path)
    {
        return [path]
        {
            int const descriptor = ::open(path, O_WRONLY);
            ::dup2(descriptor, STDOUT_FILENO);
        };
    };
    auto const ontoClosedPipe = []
    {
        int ends[2];
        if (::pipe(ends) == 0)
        {
            ::close(ends[0]);
            ::dup2(ends[1], STDOUT_FILENO);
        }
    };
    for (QStringList const& command :
         {QStringList{"export", "shot.json", PIN, "-o", "-"}, QStringList{"formats"}, QStringList{"formats", "--json"},
          QStringList{"info", "shot.json"}, QStringList{"--help"}})
    {
        SCOPED_TRACE(command.join(' ').toStdString());
        ToolResult const full = folder.run(command, onto("/dev/full"));
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(full.err, "marlo-export: Could not write to standard output (No space left on device)\n");
        ToolResult const closed = folder.run(command, ontoClosedPipe);
        EXPECT_EQ(closed.status, 1);
        EXPECT_TRUE(closed.err.isEmpty()) << closed.err.toStdString();
    }
}

TEST_F(Robustness, FoldersOfOtherPeople)
{
    if (::geteuid() != 0)
    {
        GTEST_SKIP() << "only root can become somebody else";
    }
    constexpr unsigned int NOBODY = 65534;
    ::chmod(folder.path(".").toUtf8(), 0755);
    auto const becomeNobody = []
    {
        if (::setgid(NOBODY) != 0 || ::setuid(NOBODY) != 0)
        {
            ::_exit(99);
        }
    };
    if (folder.run({"--version"}, becomeNobody).status != 0)
    {
        GTEST_SKIP() << "the build folder isn't open to others";
    }
    folder.write("pin.txt", "old");
    ToolResult const into = folder.run({"export", "shot.json", PIN, "-o", "pin", "--overwrite"}, becomeNobody);
    EXPECT_EQ(into.status, 1);
    EXPECT_TRUE(into.err.startsWith("marlo-export: Cannot write to following paths. Make sure"))
        << into.err.toStdString();
    EXPECT_EQ(into.err.count('\n'), 1);
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "new/pin"}, becomeNobody).status, 1);
    EXPECT_EQ(folder.read("pin.txt"), "old");

    ::chmod(folder.path("shot.json").toUtf8(), 0600);
    EXPECT_EQ(folder.run({"info", "shot.json"}, becomeNobody).status, 3);
    EXPECT_EQ(folder.files(), (QStringList{"pin.txt", "shot.json"}));
}

/// Tells of the first file that is made in a folder.
class FolderWatch
{
public:
    explicit FolderWatch(QString const& path) : m_descriptor(::inotify_init())
    {
        ::inotify_add_watch(m_descriptor, path.toUtf8(), IN_CREATE);
    }

    ~FolderWatch()
    {
        ::close(m_descriptor);
    }

    FolderWatch(FolderWatch const&) = delete;
    FolderWatch& operator=(FolderWatch const&) = delete;

    bool wait() const
    {
        constexpr int MILLISECONDS = 60'000;
        pollfd event{m_descriptor, POLLIN, 0};
        return ::poll(&event, 1, MILLISECONDS) == 1;
    }

private:
    int m_descriptor;
};

// The signal comes as soon as there is a part file. The old file stays, or the whole
// new one has taken its place, and no part is left.
TEST_F(Robustness, AnInterruptLeavesNoPart)
{
    folder.write("shot.json", movingProject("Wall", 40'000));
    QStringList const command{"export", "shot.json", PIN, "-o", "pin", "--overwrite"};
    ASSERT_EQ(folder.run(command).status, 0);
    QByteArray const whole = folder.read("pin.txt");
    int interrupted = 0;
    for (int attempt = 0; attempt < 10 && interrupted < 2; ++attempt)
    {
        folder.write("pin.txt", "old");
        FolderWatch const watch(folder.path("."));
        PreparedProcess process;
        process.setWorkingDirectory(folder.path("."));
        process.start(QStringLiteral(MARLO_TOOL), command);
        ASSERT_TRUE(process.waitForStarted() && watch.wait());
        ::kill(static_cast<pid_t>(process.processId()), attempt % 2 == 0 ? SIGINT : SIGTERM);
        ASSERT_TRUE(process.waitForFinished(60'000));
        ASSERT_EQ(process.exitStatus(), QProcess::NormalExit);
        interrupted += process.exitCode() == 130 ? 1 : 0;
        EXPECT_EQ(folder.files(), (QStringList{"pin.txt", "shot.json"}));
        QByteArray const left = folder.read("pin.txt");
        EXPECT_TRUE(left == "old" || left == whole) << left.size();
    }
    EXPECT_GT(interrupted, 0) << "no signal met a write";
}

}
