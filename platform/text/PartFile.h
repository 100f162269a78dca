#pragma once
// Files are written whole or not at all.

#include <QByteArray>
#include <QString>

namespace Text
{

/// Makes `bytes` the content of the file at `path`.
///
/// The bytes go to a hidden part file in the same folder, which takes the place of
/// the target in one step once everything was written and closed. Links are
/// followed: the link stays, and what it points to is written, also when that
/// doesn't exist yet. A new file gets the permissions of any new file; a replaced
/// one keeps its permissions, and its owner and group as far as this process may
/// set them. Other hard links to a replaced file keep the old content.
///
/// @return false, with no part file left and an old target as it was, when the
///         target exists but isn't a regular file that may be written, when its
///         folder is missing or read-only, or when anything fails on the way
bool writeWholeFile(QString const& path, QByteArray const& bytes);

/// Removes the part file that writeWholeFile is writing in this process at this
/// moment, if any. A write that goes on afterwards fails and returns false.
///
/// For the handler of an interrupt: it does nothing but atomic operations and one
/// unlink(2), both safe in a signal handler, on a path that was copied to static
/// storage beforehand. When several threads write at once, only the first one's
/// part file is known here.
void removePartFile() noexcept;

}
