#include "text/PartFile.h"

#include "text/PartFileTarget.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Text
{

/// What an interrupt handler has to know. The path may be read only in the states
/// Known and Removing, and changed only in the state Claimed.
struct PartFileNote
{
    enum State : int
    {
        Free,
        Claimed,
        Known,
        Removing
    };

    std::atomic<int> state;
    char path[PATH_MAX];
};
static_assert(std::atomic<int>::is_always_lock_free, "an interrupt handler can't wait for a lock");

// Several libraries of one process carry a copy of this code. The note is visible,
// so that the loader joins the copies to one: a handler in the program then finds
// the file that another library writes. Inline, as it is meant to stand in each copy.
__attribute__((visibility("default"))) inline PartFileNote partFileNote;

namespace
{

/// Keeps signals away from this thread for as long as it lives.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }

    ~SignalsHeld()
    {
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

    SignalsHeld(SignalsHeld const&) = delete;
    SignalsHeld& operator=(SignalsHeld const&) = delete;

private:
    sigset_t m_before;
};

/// Makes a part file known to interrupt handlers for as long as it lives.
class KnownPartFile
{
public:
    explicit KnownPartFile(QByteArray const& path)
    {
        int expected = PartFileNote::Free;
        if (path.size() >= PATH_MAX || !partFileNote.state.compare_exchange_strong(expected, PartFileNote::Claimed))
            return;
        std::memcpy(partFileNote.path, path.constData(), static_cast<std::size_t>(path.size()) + 1);
        partFileNote.state = PartFileNote::Known;
        m_isOurs = true;
    }

    ~KnownPartFile()
    {
        if (!m_isOurs)
            return;
        // A handler in another thread may be at the path right now: let it finish.
        int expected = PartFileNote::Known;
        while (!partFileNote.state.compare_exchange_weak(expected, PartFileNote::Free))
            expected = PartFileNote::Known;
    }

    KnownPartFile(KnownPartFile const&) = delete;
    KnownPartFile& operator=(KnownPartFile const&) = delete;

private:
    bool m_isOurs = false;
};

/// A part file that is being written.
struct PartFile
{
    QByteArray path;
    Descriptor file;

    /// The same file once more: its lock stays until the part file has found its place.
    Descriptor lock;
};

/// Holds the part file against sweepPartFiles(). False when that was faster, and has
/// removed the file or is at it.
bool lockPart(int file)
{
    if (::flock(file, LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK; // a file system without locks isn't swept either
    struct stat created;
    return ::fstat(file, &created) == 0 && created.st_nlink > 0;
}

/// Creates the part file, and never opens one that was there before: it may belong to
/// a process on another machine.
std::optional<PartFile> createPart(PartFileTarget const& target)
{
    constexpr int mostAttempts = 100;
    constexpr mode_t anyNewFile = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        QByteArray const path = target.folder() + target.partName(attempt);
        Descriptor file(::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, anyNewFile));
        if (file && lockPart(file.number()))
        {
            Descriptor lock(::fcntl(file.number(), F_DUPFD_CLOEXEC, 0));
            return PartFile{path, std::move(file), std::move(lock)};
        }
        if (!file && errno != EEXIST)
            return std::nullopt;
    }
    return std::nullopt;
}

/// Gives the part file what the old file had, before it holds anything that others
/// may not read.
bool takeOver(struct stat const& old, int part)
{
    constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;
    struct stat created;
    if (::fstat(part, &created) != 0)
        return false;
    // Only a privileged process can give a file away; the group may still be allowed.
    if (created.st_uid != old.st_uid && ::fchown(part, old.st_uid, old.st_gid) == 0)
        created.st_gid = old.st_gid;
    if (created.st_gid != old.st_gid && ::fchown(part, static_cast<uid_t>(-1), old.st_gid) == 0)
        created.st_gid = old.st_gid;
    bool const isSame = (created.st_mode & permissions) == (old.st_mode & permissions);
    return isSame || ::fchmod(part, old.st_mode & permissions) == 0;
}

bool writeAll(int file, QByteArray const& bytes)
{
    char const* at = bytes.constData();
    char const* const end = at + bytes.size();
    while (at < end)
    {
        ssize_t const count = ::write(file, at, static_cast<std::size_t>(end - at));
        if (count < 0 && errno != EINTR)
            return false;
        at += std::max<ssize_t>(count, 0);
    }
    return true;
}

/// Gives the part file a name that nothing has, or fails with EEXIST.
bool renameToNew(char const* part, char const* target)
{
    if (::renameat2(AT_FDCWD, part, AT_FDCWD, target, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // Network file systems lack this way of renaming, some others hard links as well.
    if (::link(part, target) == 0)
        return ::unlink(part) == 0;
    if (errno == EEXIST)
        return false;
    SignalsHeld const signalsHeld;
    Descriptor const claim(::open(target, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!claim || std::rename(part, target) == 0)
        return static_cast<bool>(claim);
    int const error = errno;
    ::unlink(target);
    errno = error;
    return false;
}

bool fillAndPlace(PartFile& part, PartFileTarget const& target, QByteArray const& bytes, Existing existing)
{
    if ((target.old && !takeOver(*target.old, part.file.number())) || !writeAll(part.file.number(), bytes) ||
        !part.file.close())
        return false;
    return existing == Existing::Keep ? renameToNew(part.path.constData(), target.path.constData())
                                      : std::rename(part.path.constData(), target.path.constData()) == 0;
}

}

bool writeWholeFile(QString const& path, QByteArray const& bytes, Existing existing)
{
    auto const target = findPartFileTarget(path);
    if (!target)
        return false;
    if (target->old && existing == Existing::Keep)
    {
        errno = EEXIST;
        return false;
    }
    std::optional<SignalsHeld> signalsHeld(std::in_place);
    auto part = createPart(*target);
    if (!part)
        return false;
    KnownPartFile const known(part->path);
    signalsHeld.reset();

    if (fillAndPlace(*part, *target, bytes, existing))
        return true;
    int const error = errno;
    ::unlink(part->path.constData());
    part.reset();
    errno = error;
    return false;
}

void removePartFile() noexcept
{
    int expected = PartFileNote::Known;
    if (!partFileNote.state.compare_exchange_strong(expected, PartFileNote::Removing))
        return;
    int const before = errno;
    ::unlink(partFileNote.path);
    errno = before;
    partFileNote.state = PartFileNote::Known;
}

}
