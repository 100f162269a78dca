// Part files of several processes: who may take a name that was free, and what is swept
// that a killed process left.

#include "text/PartFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int notPossible = 77;

/// From here on the system call fails in this process, as on a file system without it.
void refuseCall(unsigned int call, unsigned int error)
{
    std::array<sock_filter, 4> program{{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                                        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
                                        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                                        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)}};
    sock_fprog const filter{program.size(), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        ::_exit(notPossible);
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

class PartFileRaces : public testing::Test
{
protected:
    QString at(QString const& name) const
    {
        return m_folder.filePath(name);
    }

    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    int create(QString const& name) const
    {
        return ::open(QFile::encodeName(at(name)).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    }

    QTemporaryDir m_folder;
};

/// What the file system lacks, from nothing to all.
class FreeName : public PartFileRaces, public testing::WithParamInterface<int>
{
protected:
    /// Writes when the gate opens. 0: written, 1: another was faster, 2: something else.
    int write(int gate, char letter) const
    {
        if (GetParam() > 0)
            refuseCall(SYS_renameat2, EINVAL);
        if (GetParam() > 1)
        {
            refuseCall(SYS_linkat, EPERM);
#ifdef SYS_link
            refuseCall(SYS_link, EPERM);
#endif
        }
        char nothing = 0;
        (void)!::read(gate, &nothing, 1);
        bool const isWritten = Text::writeWholeFile(at("pin.txt"), QByteArray(300'000, letter), Text::Existing::Keep);
        return isWritten ? 0 : errno == EEXIST ? 1 : 2;
    }
};

TEST_P(FreeName, GoesToOneOfTen)
{
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < 10; ++i)
    {
        children.push_back(::fork());
        if (children.back() == 0)
        {
            ::close(gate[1]);
            ::_exit(write(gate[0], static_cast<char>('a' + i)));
        }
    }
    ::close(gate[0]);
    ::close(gate[1]);
    QByteArray written;
    for (std::size_t i = 0; i < children.size(); ++i)
    {
        int status = 0;
        ::waitpid(children[i], &status, 0);
        if (WEXITSTATUS(status) == notPossible)
            GTEST_SKIP() << "system calls can't be filtered here";
        EXPECT_LE(WEXITSTATUS(status), 1);
        written += WEXITSTATUS(status) == 0 ? QByteArray(1, static_cast<char>('a' + i)) : QByteArray();
    }
    ASSERT_EQ(written.size(), 1) << written.toStdString();
    QFile file(at("pin.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(300'000, written[0]));
    EXPECT_EQ(names(), QStringList("pin.txt"));
}

INSTANTIATE_TEST_SUITE_P(Lacking, FreeName, testing::Range(0, 3));

TEST_F(PartFileRaces, WhatAKilledProcessLeftIsSwept)
{
    pid_t const child = ::fork();
    if (child == 0)
    {
        rlimit const limit{50'000, 50'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        Text::writeWholeFile(at("pin.txt"), QByteArray(100'000, 'x'));
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    QString const left = QStringLiteral(".pin.txt.%1.part").arg(child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(names(), QStringList(left));
    Text::sweepPartFiles({at("other.txt"), at("pin.tx")});
    EXPECT_EQ(names(), QStringList(left)) << "of another target";
    Text::sweepPartFiles({at("other.txt"), at("pin.txt")});
    EXPECT_EQ(names(), QStringList());
}

TEST_F(PartFileRaces, OnlyWhatIsCertainlyOursIsSwept)
{
    QStringList stay{".pin.txt.part", ".pin.txt.1a.part", ".pin.txt.1-.part", ".pin.txt.1.parts", "pin.txt.1.part"};
    for (QString const& name : stay)
        ::close(create(name));
    stay += {".pin.txt.1.part", ".pin.txt.2.part", ".pin.txt.3.part"};
    int const held = create(".pin.txt.1.part");
    ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);
    ASSERT_TRUE(QFile::link("pin.txt.1.part", at(".pin.txt.2.part")));
    ASSERT_TRUE(QDir(at("")).mkdir(".pin.txt.3.part"));
    if (::geteuid() == 0)
    {
        stay += ".pin.txt.4.part";
        int const foreign = create(".pin.txt.4.part");
        ASSERT_EQ(::fchown(foreign, 65534, 65534), 0);
        ::close(foreign);
    }
    ::close(create(".pin.txt.5-7.part"));
    Text::sweepPartFiles({at("pin.txt")});
    EXPECT_EQ(sorted(names()), sorted(stay));
    ::close(held);
    stay.removeAll(".pin.txt.1.part");
    Text::sweepPartFiles({at("pin.txt")});
    EXPECT_EQ(sorted(names()), sorted(stay)) << "nobody holds it any more";
}

}
