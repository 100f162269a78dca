// What goes wrong around the program: other locales, outputs that take nothing, folders of other
// people, interrupts.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
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

// Exports go through the mill in that environment.
TEST_F(Robustness, ListsAndImportsAreTheSameWhateverTheEnvironment)
{
    folder.write("t.txt", "1 100.5 50.25 300 60 310 200 90 190\n2 101.5 50 300 61 310 200 90 190\n");
    QStringList const formats{"formats", "--json"};
    QStringList const import{"import", "corners", "t.txt",       "--size", "640x480",
                             "--fps",  "23.976",  "--overwrite", "-o",     "p.json"};
    QByteArray const list = folder.run(formats).out;
    EXPECT_EQ(folder.run(import).status, 0);
    QByteArray const project = folder.read("p.json");
    folder.environment.insert("QT_HASH_SEED", "31");
    folder.environment.insert("LC_ALL", "de_DE.UTF-8");
    folder.environment.insert("LANGUAGE", "de");
    EXPECT_EQ(folder.run(formats).out, list) << "English unless --lang says otherwise";
    EXPECT_EQ(folder.run(import).status, 0);
    EXPECT_EQ(folder.read("p.json"), project);
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
        pollfd made{::inotify_init(), POLLIN, 0};
        ::inotify_add_watch(made.fd, folder.path(".").toUtf8(), IN_CREATE);
        PreparedProcess process;
        process.setWorkingDirectory(folder.path("."));
        process.start(QStringLiteral(MARLO_TOOL), command);
        ASSERT_TRUE(process.waitForStarted() && ::poll(&made, 1, 60'000) == 1);
        ::kill(static_cast<pid_t>(process.processId()), attempt % 2 == 0 ? SIGINT : SIGTERM);
        ::close(made.fd);
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
