#pragma once

#include "Writing/TextBuffer.h"

#include <QByteArray>

#include <streambuf>

namespace Export
{

/// Refuses a file that can't be, before anything of it is made.
/// @param bytes what it takes at least
/// @throws KORV_OperationFailed
void refuseMoreThanFits(qint64 bytes, qint64 largest = TextBuffer::LARGEST);

/// Memory that an archive is written to, as a stream. It never fails while it is written: the
/// library writes in destructors too, where a stream that fails ends the process. What there
/// is no room for is dropped, and take() tells.
class AlembicMemory : public std::streambuf
{
public:
    /// @param expected about how many bytes the file will have: as many as that don't move when
    ///        others follow
    /// @param largest what the file may have at most, in bytes
    explicit AlembicMemory(qint64 expected, qint64 largest = TextBuffer::LARGEST);

    /// What was written.
    /// @throws KORV_OperationFailed when there wasn't room for all of it
    QByteArray take();

protected:
    std::streamsize xsputn(char const* bytes, std::streamsize count) override;
    int_type overflow(int_type byte) override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode mode) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override;

private:
    void makeRoom(qint64 size);

    qint64 m_largest;
    qint64 m_at = 0;
    qint64 m_size = 0;
    bool m_hasRoom = true;
    QByteArray m_bytes;
};

}
