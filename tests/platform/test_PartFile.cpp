#include "ScratchFolder.h"
#include "text/PartFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int notPossible = 77;

/// The exit status of a child process that ran the function.
int inChild(std::function<int()> const& run)
{
    pid_t const child = ::fork();
    if (child == 0)
        ::_exit(run());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Root may write everywhere; a refusal shows only as somebody else.
void becomeUnprivileged()
{
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
        ::_exit(notPossible);
}

/// From here on no file of this process grows beyond the limit, as on a full disk.
void limitFileSize(rlim_t bytes)
{
    rlimit const limit{bytes, bytes};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

class PartFile : public testing::Test, protected ScratchFolder
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(::chmod(QFile::encodeName(path("")).constData(), 0777), 0);
        m_umask = ::umask(022);
    }

    void TearDown() override
    {
        ::umask(m_umask);
    }

    void put(QString const& name, QByteArray const& bytes, mode_t permissions = 0644) const
    {
        write(name, bytes);
        ASSERT_EQ(::chmod(QFile::encodeName(path(name)).constData(), permissions), 0);
    }

    struct stat statOf(QString const& name) const
    {
        struct stat result = {};
        ::lstat(QFile::encodeName(path(name)).constData(), &result);
        return result;
    }

    mode_t permissions(QString const& name) const
    {
        return statOf(name).st_mode & 07777;
    }

    void link(QString const& to, QString const& name) const
    {
        ASSERT_EQ(::symlink(QFile::encodeName(to).constData(), QFile::encodeName(path(name)).constData()), 0);
    }

private:
    mode_t m_umask = 0;
};

TEST_F(PartFile, WritesANewFileWithOrdinaryPermissions)
{
    ::umask(027);
    EXPECT_TRUE(Text::writeWholeFile(path("pin.txt"), "1\n2\n"));
    EXPECT_TRUE(Text::writeWholeFile(path("empty.txt"), QByteArray()));
    EXPECT_EQ(read("pin.txt"), "1\n2\n");
    EXPECT_EQ(read("empty.txt"), "");
    EXPECT_EQ(permissions("pin.txt"), 0640u);
    EXPECT_EQ(names(), QStringList({"empty.txt", "pin.txt"}));
}

TEST_F(PartFile, ReplacesAFileAndKeepsItsPermissionsAndOwner)
{
    put("pin.txt", "a longer text than the new one", 0606);
    bool const isRoot = ::geteuid() == 0;
    ASSERT_TRUE(!isRoot || ::chown(QFile::encodeName(path("pin.txt")).constData(), 1234, 4321) == 0);
    EXPECT_TRUE(Text::writeWholeFile(path("pin.txt"), "new"));
    EXPECT_EQ(read("pin.txt"), "new");
    EXPECT_EQ(permissions("pin.txt"), 0606u);
    EXPECT_EQ(statOf("pin.txt").st_uid, isRoot ? 1234u : ::geteuid());
    EXPECT_EQ(statOf("pin.txt").st_gid, isRoot ? 4321u : ::getegid());
    EXPECT_EQ(names(), QStringList({"pin.txt"}));
}

TEST_F(PartFile, WritesThroughLinks)
{
    ASSERT_TRUE(QDir(path("")).mkpath("shots/010"));
    put("shots/pin.txt", "old");
    link("shots/010", "current");
    // Through the folder's link: ".." is shots, not the folder that holds the link.
    link("current/../pin.txt", "relative");
    link(path("relative"), "absolute");
    link("shots/new.txt", "dangling");

    EXPECT_TRUE(Text::writeWholeFile(path("absolute"), "new"));
    EXPECT_TRUE(Text::writeWholeFile(path("dangling"), "made"));

    EXPECT_EQ(read("shots/pin.txt"), "new");
    EXPECT_EQ(read("shots/new.txt"), "made");
    for (char const* name : {"relative", "absolute", "dangling"})
        EXPECT_TRUE(S_ISLNK(statOf(name).st_mode)) << name;
    EXPECT_EQ(names(), QStringList({"absolute", "current", "dangling", "relative", "shots"}));
}

TEST_F(PartFile, TakesARelativePathAndTheLongestName)
{
    QString const before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(path("")));
    QString const longest(255, QLatin1Char('n'));
    EXPECT_TRUE(Text::writeWholeFile("pin.txt", "here"));
    EXPECT_TRUE(Text::writeWholeFile(longest, "long"));
    QDir::setCurrent(before);
    EXPECT_EQ(read("pin.txt"), "here");
    EXPECT_EQ(read(longest), "long");
    EXPECT_EQ(names().size(), 2);
}

TEST_F(PartFile, LeavesForeignPartFilesAlone)
{
    QString const foreign = QStringLiteral(".pin.txt.%1.part").arg(::getpid());
    put(foreign, "somebody else's");
    EXPECT_TRUE(Text::writeWholeFile(path("pin.txt"), "new"));
    EXPECT_EQ(read("pin.txt"), "new");
    EXPECT_EQ(read(foreign), "somebody else's");
    EXPECT_EQ(names().size(), 2);
}

TEST_F(PartFile, RefusesWhatIsNoWritableRegularFile)
{
    ASSERT_TRUE(QDir(path("")).mkdir("folder"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0666), 0);
    link("round", "round");
    link("missing/new.txt", "nowhere");
    QStringList const before = names();
    QString const cut = path("cut") + QChar::Null + QStringLiteral("off");
    for (QString const& path : {path("folder"), path("folder/"), path("new/"), path("pipe"), path("round"),
                                path("nowhere"), path("missing/new.txt"), cut, QString()})
        EXPECT_FALSE(Text::writeWholeFile(path, "text")) << path.toStdString();
    EXPECT_EQ(names(), before);
    EXPECT_TRUE(QDir(path("folder")).isEmpty());
    EXPECT_TRUE(S_ISFIFO(statOf("pipe").st_mode));
}

/// A failure, and the old target that has to survive it.
struct Shortfall
{
    char const* name;
    mode_t folder;
    mode_t file;
    int size;
    void (*prepare)();
};

class PartFileShortfall : public PartFile, public testing::WithParamInterface<Shortfall>
{
};

TEST_P(PartFileShortfall, LeavesTheOldTargetAndNothingElse)
{
    put("pin.txt", "old", GetParam().file);
    QByteArray const folder = QFile::encodeName(path(""));
    ASSERT_EQ(::chmod(folder.constData(), GetParam().folder), 0);
    int const status = inChild(
        [this]
        {
            GetParam().prepare();
            return Text::writeWholeFile(path("pin.txt"), QByteArray(GetParam().size, 'x')) ? 1 : 0;
        });
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    if (status == notPossible)
        GTEST_SKIP();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read("pin.txt"), "old");
    EXPECT_EQ(permissions("pin.txt"), GetParam().file);
    EXPECT_EQ(names(), QStringList({"pin.txt"}));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PartFileShortfall,
    testing::Values(Shortfall{"ReadOnlyFile", 0777, 0444, 10, becomeUnprivileged},
                    Shortfall{"ReadOnlyFolder", 0555, 0666, 10, becomeUnprivileged},
                    // The file may be written and the part file made, but only the owner may rename.
                    Shortfall{"RenameRefused", 01777, 0666, 10,
                              []
                              {
                                  if (::geteuid() != 0)
                                      ::_exit(notPossible);
                                  becomeUnprivileged();
                              }},
                    Shortfall{"NothingFits", 0777, 0644, 10,
                              []
                              {
                                  std::signal(SIGXFSZ, SIG_IGN);
                                  limitFileSize(0);
                              }},
                    Shortfall{"DiskFillsOnTheWay", 0777, 0644, 100'000,
                              []
                              {
                                  std::signal(SIGXFSZ, SIG_IGN);
                                  limitFileSize(50'000);
                              }}),
    [](auto const& of) { return of.param.name; });

QByteArray expectedPart;

// The kernel raises SIGXFSZ in the middle of the write, like an interrupt that
// comes while a part file stands in the target's folder.
TEST_F(PartFile, InterruptHandlerRemovesThePartFile)
{
    put("pin.txt", "old");
    int const ended = inChild(
        [this]
        {
            expectedPart = QFile::encodeName(path(QStringLiteral(".pin.txt.%1.part").arg(::getpid())));
            std::signal(SIGXFSZ,
                        [](int)
                        {
                            bool const isThere = ::access(expectedPart.constData(), F_OK) == 0;
                            Text::removePartFile();
                            ::_exit(isThere ? 130 : 1);
                        });
            limitFileSize(50'000);
            Text::writeWholeFile(path("pin.txt"), QByteArray(100'000, 'x'));
            return 0;
        });
    EXPECT_EQ(ended, 130);
    EXPECT_EQ(read("pin.txt"), "old");
    EXPECT_EQ(names(), QStringList({"pin.txt"}));
}

TEST_F(PartFile, WorksOnAfterAnInterruptThatDidNotEndTheProgram)
{
    put("pin.txt", "old");
    int const status = inChild(
        [this]
        {
            std::signal(SIGXFSZ, [](int) { Text::removePartFile(); });
            limitFileSize(50'000);
            bool const first = Text::writeWholeFile(path("pin.txt"), QByteArray(100'000, 'x'));
            bool const second = Text::writeWholeFile(path("pin.txt"), "new");
            // Nothing is being written any more, so nothing is removed.
            Text::removePartFile();
            return !first && second ? 0 : 1;
        });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read("pin.txt"), "new");
    EXPECT_EQ(names(), QStringList({"pin.txt"}));
}

}
