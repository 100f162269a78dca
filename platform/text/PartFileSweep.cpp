#include "text/PartFile.h"
#include "text/PartFileTarget.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <map>
#include <memory>
#include <sys/file.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace Text
{

namespace
{

/// The owners that a part file for a target may have, by the target's name.
using Owners = std::map<QByteArray, uid_t>;

struct CloseFolder
{
    void operator()(DIR* folder) const
    {
        ::closedir(folder);
    }
};

/// Whether a lock that nobody holds here may be held on another machine.
bool isShared(int file)
{
    constexpr long networks[] = {NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, 0xFF534D42 /* CIFS */, 0xFE534D42 /* SMB 2 */};
    struct statfs system;
    return ::fstatfs(file, &system) != 0 ||
           std::find(std::begin(networks), std::end(networks), system.f_type) != std::end(networks);
}

/// Removes a part file that no process holds. Who creates one locks it at once, and
/// looks afterwards whether it is still there.
void removeLeft(int folder, char const* name, uid_t owner)
{
    Descriptor const file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat opened;
    if (!file || ::fstat(file.number(), &opened) != 0 || !S_ISREG(opened.st_mode))
        return;
    bool const isOurs = opened.st_uid == ::geteuid() || opened.st_uid == owner;
    if (!isOurs || isShared(file.number()) || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0)
        return;
    struct stat named;
    if (::fstatat(folder, name, &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino)
        ::unlinkat(folder, name, 0);
}

void sweepFolder(QByteArray const& path, Owners const& owners)
{
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.isEmpty() ? "." : path.constData()));
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr)
    {
        auto const found = owners.find(targetOfPart(entry->d_name));
        if (found != owners.end())
            removeLeft(::dirfd(folder.get()), entry->d_name, found->second);
    }
}

}

void sweepPartFiles(QStringList const& targets)
{
    std::map<QByteArray, Owners> folders;
    for (QString const& path : targets)
    {
        if (auto const target = findPartFileTarget(path))
            folders[target->folder()][target->name()] = target->old ? target->old->st_uid : ::geteuid();
    }
    for (auto const& [folder, owners] : folders)
        sweepFolder(folder, owners);
}

}
