#include "text/PartFile.h"

#include <QFile>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

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

/// Where a write goes once links are followed.
struct Target
{
    QByteArray path;

    /// Of the file that stands there; unset for a new one.
    std::optional<struct stat> old;

    /// Up to and with the last slash; empty for the current folder.
    QByteArray folder() const
    {
        return path.left(path.lastIndexOf('/') + 1);
    }

    QByteArray name() const
    {
        return path.mid(path.lastIndexOf('/') + 1);
    }
};

/// The path that a chain of links ends at, whether something stands there or not.
/// Unset for a chain without an end.
std::optional<QByteArray> followLinks(QByteArray path)
{
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks; ++i)
    {
        char text[PATH_MAX];
        ssize_t const size = ::readlink(path.constData(), text, sizeof text);
        if (size < 0)
            return path;
        QByteArray const link(text, static_cast<int>(size));
        // The kernel, not a rewriting of the text, resolves "..": a folder on the way may be a link too.
        path = link.startsWith('/') ? link : path.left(path.lastIndexOf('/') + 1) + link;
    }
    return std::nullopt;
}

/// Unset when nothing can be written there.
std::optional<Target> findTarget(QString const& path)
{
    if (path.contains(QChar::Null))
        return std::nullopt;
    auto const resolved = followLinks(QFile::encodeName(path));
    // A link may hold bytes that are no text in this locale: then QFile can't reach its folder.
    if (!resolved || QFile::encodeName(QFile::decodeName(*resolved)) != *resolved)
        return std::nullopt;
    Target target{*resolved, std::nullopt};
    if (target.name().isEmpty())
        return std::nullopt;
    struct stat old;
    if (::stat(target.path.constData(), &old) != 0)
        return errno == ENOENT ? std::make_optional(target) : std::nullopt;
    if (!S_ISREG(old.st_mode) || ::faccessat(AT_FDCWD, target.path.constData(), W_OK, AT_EACCESS) != 0)
        return std::nullopt;
    target.old = old;
    return target;
}

/// ".NAME.PID.part", NAME cut so that the whole is a legal file name. Attempts
/// after the first add their number.
QString partName(Target const& target, int attempt)
{
    QByteArray const folder = target.folder();
    long const limit = ::pathconf(folder.isEmpty() ? "." : folder.constData(), _PC_NAME_MAX);
    long const longest = limit > 0 ? limit : NAME_MAX;
    QString tail = QStringLiteral(".%1").arg(::getpid());
    if (attempt > 0)
        tail += QStringLiteral("-%1").arg(attempt);
    tail += QLatin1String(".part");
    QString name = QFile::decodeName(target.name());
    while (!name.isEmpty() && 1 + QFile::encodeName(name).size() + tail.size() > longest)
        name.chop(name.size() > 1 && name.at(name.size() - 1).isLowSurrogate() ? 2 : 1);
    return QLatin1Char('.') + name + tail;
}

/// Creates the part file, and never opens one that was there before: it may have
/// been left by a process that was killed, or belong to one on another machine.
bool createPart(QFile& part, Target const& target)
{
    constexpr int mostAttempts = 100;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        part.setFileName(QFile::decodeName(target.folder()) + partName(target, attempt));
        if (part.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return true;
        struct stat other;
        if (::lstat(QFile::encodeName(part.fileName()).constData(), &other) != 0)
            return false;
    }
    return false;
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

bool writeAndClose(QFile& part, QByteArray const& bytes)
{
    bool const isWritten = part.write(bytes) == bytes.size() && part.flush();
    part.close();
    return isWritten && part.error() == QFileDevice::NoError;
}

}

bool writeWholeFile(QString const& path, QByteArray const& bytes)
{
    auto const target = findTarget(path);
    if (!target)
        return false;
    QFile part;
    std::optional<SignalsHeld> signalsHeld(std::in_place);
    if (!createPart(part, *target))
        return false;
    QByteArray const partPath = QFile::encodeName(part.fileName());
    KnownPartFile const known(partPath);
    signalsHeld.reset();

    bool const isPrepared = !target->old || takeOver(*target->old, part.handle());
    if (isPrepared && writeAndClose(part, bytes) && std::rename(partPath.constData(), target->path.constData()) == 0)
        return true;
    ::unlink(partPath.constData());
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
