#pragma once
// Files are written whole or not at all.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Text
{

/// What a write does about a file that stands at its target.
enum class Existing
{
    Replace,

    /// Leaves it and fails, also when it appears while the write is under way.
    Keep
};

/// Makes `bytes` the content of the file at `path`.
///
/// The bytes go to a hidden part file in the same folder, which takes the place of
/// the target in one step once everything was written and closed. Links are
/// followed: the link stays, and what it points to is written, also when that
/// doesn't exist yet. A new file gets the permissions of any new file; a replaced
/// one keeps its permissions, and its owner and group as far as this process may
/// set them. Other hard links to a replaced file keep the old content.
///
/// @return false, with no part file left, an old target as it was and the reason in
///         errno, when the target exists but isn't a regular file that may be written,
///         when its folder is missing or read-only, or when anything fails on the way;
///         EEXIST says that a file was kept
bool writeWholeFile(QString const& path, QByteArray const& bytes, Existing existing = Existing::Replace);

/// Removes the part files for these targets that processes left which were killed.
///
/// Those of a process that lives, on this machine, are locked, and stay; so does what
/// belongs to somebody else. On network file systems, whose locks may end at the
/// machine, nothing is removed. A folder is read once for all targets in it.
void sweepPartFiles(QStringList const& targets);

/// Removes the part file that writeWholeFile is writing in this process at this
/// moment, if any. A write that goes on afterwards fails and returns false.
///
/// For the handler of an interrupt: it does nothing but atomic operations and one
/// unlink(2), both safe in a signal handler, on a path that was copied to static
/// storage beforehand. When several threads write at once, only the first one's
/// part file is known here.
void removePartFile() noexcept;

}
