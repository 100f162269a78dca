// What the program must not write onto, and what it leaves behind.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

QString const PIN = QStringLiteral("after_effects_corner_pin");
QByteArray const TABLE = "1 10 20 300 25 310 200 5 190\n";

class SafeWriting : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.write("shot.json", movingProject());
        folder.write("t.txt", TABLE);
    }

    QByteArray local(char const* name) const
    {
        return folder.path(QString::fromUtf8(name)).toUtf8();
    }

    ToolFolder folder;
};

TEST_F(SafeWriting, AWorkingFolderThatWasRemoved)
{
    QString const project = folder.path("shot.json");
    for (QStringList const& command :
         {QStringList{"export", project, PIN, "-o", "out/"},
          QStringList{"export", project, PIN, "-o", "x", "--dry-run"}, QStringList{"all", project, "-o", "out"},
          QStringList{"import", "corners", folder.path("t.txt"), "-o", "x.json", "--size", "9x9"}})
    {
        QByteArray const gone = local("gone");
        ::mkdir(gone, 0755);
        ToolResult const result = folder.run(command,
                                             [gone]
                                             {
                                                 if (::chdir(gone) != 0 || ::rmdir(gone) != 0)
                                                     ::_exit(99);
                                             });
        EXPECT_EQ(result.status, 1) << command.join(' ').toStdString();
        EXPECT_TRUE(result.err.endsWith(": the working folder was removed; change to another one\n"))
            << result.err.toStdString();
        EXPECT_EQ(result.err.count('\n'), 1);
    }
}

// The program waits in a pipe for its project when the signal comes.
TEST_F(SafeWriting, SignalsEndItUnlessTheyWereIgnored)
{
    QByteArray const pipe = local("pipe.json");
    ASSERT_EQ(::mkfifo(pipe, 0600), 0);
    QByteArray const project = folder.read("shot.json");
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
    {
        for (bool const ignored : {false, true})
        {
            PreparedProcess process;
            process.prepare = [=] { ::signal(signal, ignored ? SIG_IGN : SIG_DFL); };
            process.start(QStringLiteral(MARLO_TOOL), {"info", folder.path("pipe.json")});
            int const writer = ::open(pipe, O_WRONLY | O_CLOEXEC);
            ::kill(static_cast<pid_t>(process.processId()), signal);
            bool const isWritten = !ignored || ::write(writer, project, static_cast<std::size_t>(project.size())) > 0;
            EXPECT_TRUE(ignored || process.waitForFinished(60'000));
            ::close(writer);
            EXPECT_TRUE(isWritten && (!ignored || process.waitForFinished(60'000)));
            EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << signal;
            EXPECT_EQ(process.exitCode(), ignored ? 0 : 130) << signal;
        }
    }
}

TEST_F(SafeWriting, PartsOfKilledProcessesAreSwept)
{
    QStringList const before = folder.files();
    for (char const* part : {".out.txt.99.part", ".new.json.99.part", ".sets.json.99-1.part"})
    {
        folder.write(part, "half");
    }
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "out"}).status, 0);
    EXPECT_EQ(folder.run({"import", "corners", "t.txt", "-o", "new.json", "--size", "9x9"}).status, 0);
    EXPECT_EQ(folder.run({"preset", "add", "sets.json", "a", PIN}).status, 0);
    EXPECT_EQ(folder.files(), (QStringList{"new.json", "out.txt", "sets.json", "shot.json", "t.txt"}));
}

TEST_F(SafeWriting, NothingIsWrittenOntoWhatIsRead)
{
    ASSERT_EQ(::symlink("shot.json", local("soft.txt")), 0);
    ASSERT_EQ(::link(local("shot.json"), local("hard.txt")), 0);
    ASSERT_EQ(folder.run({"preset", "add", "sets.txt", "a", PIN, "-o", "sets.txt"}).status, 0);
    QByteArrayList const before{folder.read("shot.json"), folder.read("sets.txt"), folder.read("t.txt")};
    for (QStringList const& command : {QStringList{"export", "shot.json", PIN, "-o", "soft.txt"},
                                       QStringList{"export", "shot.json", PIN, "-o", "hard"},
                                       QStringList{"export", "shot.json", PIN, "-o", "soft", "--dry-run"},
                                       QStringList{"batch", "shot.json", "sets.txt"},
                                       QStringList{"import", "corners", "t.txt", "-o", "./t.txt", "--size", "9x9"}})
    {
        ToolResult const result = folder.run(command + QStringList("--overwrite"));
        EXPECT_EQ(result.status, 1) << command.join(' ').toStdString();
        EXPECT_TRUE(result.err.contains(" itself, which this command reads; choose another -o\n"))
            << result.err.toStdString();
    }
    EXPECT_EQ(before, (QByteArrayList{folder.read("shot.json"), folder.read("sets.txt"), folder.read("t.txt")}));
}

// The second target leads to the first, and is there once that was written.
TEST_F(SafeWriting, AFileThatAppearsMeanwhileStays)
{
    ProjectBuilder project = movingProject("a");
    project.addLayer("b").track([](int) { return ProjectBuilder::translation(9, 9); });
    folder.write("two.json", project);
    QStringList const arguments{"export", "two.json", PIN, "--layers", "all", "--each-layer"};
    ASSERT_EQ(folder.run({"export", "two.json", PIN, "--layer", "a", "-o", "expected"}).status, 0);
    ASSERT_EQ(::symlink("a.txt", local("b.txt")), 0);
    ToolResult const result = folder.run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "marlo-export: b.txt exists; use --overwrite to replace it\n");
    EXPECT_EQ(folder.read("a.txt"), folder.read("expected.txt"));
    EXPECT_EQ(folder.run(arguments + QStringList("--overwrite")).status, 0);
}

TEST_F(SafeWriting, ArgumentsAreUtf8)
{
    for (char const* arguments :
         {"info \"$(printf 'caf\\351.json')\"", "export shot.json after_effects_corner_pin -o \"$(printf '\\303')\""})
    {
        QProcess shell;
        shell.setWorkingDirectory(folder.path("."));
        shell.start("/bin/sh", {"-c", QStringLiteral("exec " MARLO_TOOL " ") + arguments});
        ASSERT_TRUE(shell.waitForFinished(60'000));
        EXPECT_EQ(shell.exitCode(), 2);
        QByteArray const errors = shell.readAllStandardError();
        EXPECT_TRUE(errors.contains(" isn't UTF-8: ") && errors.count('\n') == 1) << errors.toStdString();
    }
    EXPECT_EQ(folder.files(), (QStringList{"shot.json", "t.txt"}));
}

TEST_F(SafeWriting, TheReasonOfTheSystemIsTold)
{
    QString const longName(300, 'n');
    QByteArray const reason = ": File name too long\n";
    for (QStringList const& command : {QStringList{"export", "shot.json", PIN, "-o", longName},
                                       QStringList{"import", "corners", "t.txt", "-o", longName, "--size", "9x9"},
                                       QStringList{"preset", "add", longName, "a", PIN}})
    {
        ToolResult const result = folder.run(command);
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.err.endsWith(reason) && result.err.count('\n') == 1) << result.err.toStdString();
    }
}

TEST_F(SafeWriting, PresetsSayWhereTheyAreWrong)
{
    auto const withExport = [](QByteArray const& text)
    { return R"({"presets": [{"name": "a", "exports": []}, {"name": "b", "exports": [)" + text + "]}]}"; };
    struct
    {
        QByteArray text;
        QByteArray refusal;
    } const cases[] = {
        {"{\n  \"presets\": [,]\n}",
         "$: line 2, column 15: syntax error while parsing value - unexpected ','; expected '[', '{', or a literal"},
        {"[]", "$: expected an object, found an array"},
        {R"({"version": 2})", "$.version: this program reads version 1 of the presets file"},
        {withExport("1"), "$.presets[1].exports[0]: expected an object, found a number"},
        {withExport(R"({"type": "shape"})"), "$.presets[1].exports[0]: the key \"format\" is missing"},
        {withExport(R"({"type": "lens"})"), "$.presets[1].exports[0].type: Invalid preset type: expected \"tracking\", "
                                            "\"shape\", \"camera\", but got lens"},
        {withExport(R"({"type": "tracking", "format": "f", "options": {"invert": 1}})"),
         "$.presets[1].exports[0].options.invert: expected a boolean, found a number"},
        {withExport(R"({"type": "shape", "format": "f", "options": {"viewsToExport": [0, "1"]}})"),
         "$.presets[1].exports[0].options.viewsToExport[1]: expected a number, found a string"},
        {withExport(R"({"type": "camera", "format": "f", "options": {"customData": {"k": null}}})"),
         "$.presets[1].exports[0].options.customData[\"k\"]: expected bool or string but got null"},
    };
    for (auto const& [text, refusal] : cases)
    {
        folder.write("sets.json", text);
        ToolResult const result = folder.run({"preset", "list", "sets.json"});
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.err.toStdString(), ("marlo-export: sets.json: " + refusal + "\n").toStdString());
    }
    EXPECT_EQ(folder.run({"preset", "list", "none"}).err,
              "marlo-export: none: can't be opened (No such file or directory)\n");
}

}
