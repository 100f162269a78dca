#include "Interchange/parts/AlembicMemory.h"

#include "Writing/ThrowHelpers.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Export
{

namespace
{

[[noreturn]] void refuse(qint64 bytes, qint64 largest)
{
    throwOperationFailed("AlembicMemory", __LINE__, QStringLiteral("refuse"),
                         QStringLiteral("The Alembic file would have at least %1 bytes, and there is room for %2. "
                                        "Export fewer frames or fewer objects.")
                             .arg(bytes)
                             .arg(largest));
}

}

void refuseMoreThanFits(qint64 bytes, qint64 largest)
{
    if (bytes > largest)
    {
        refuse(bytes, largest);
    }
}

AlembicMemory::AlembicMemory(qint64 expected, qint64 largest) : m_largest(largest)
{
    m_bytes.reserve(static_cast<int>(std::clamp<qint64>(expected, 0, m_largest)));
}

QByteArray AlembicMemory::take()
{
    if (!m_hasRoom)
    {
        refuse(m_size, m_largest);
    }
    return m_bytes;
}

std::streamsize AlembicMemory::xsputn(char const* bytes, std::streamsize count)
{
    qint64 const end = m_at + count;
    makeRoom(end);
    if (m_hasRoom)
    {
        std::memcpy(m_bytes.data() + m_at, bytes, static_cast<std::size_t>(count));
    }
    m_at = end;
    m_size = std::max(m_size, end);
    return count;
}

AlembicMemory::int_type AlembicMemory::overflow(int_type byte)
{
    if (!traits_type::eq_int_type(byte, traits_type::eof()))
    {
        char const character = traits_type::to_char_type(byte);
        xsputn(&character, 1);
    }
    return traits_type::not_eof(byte);
}

AlembicMemory::pos_type AlembicMemory::seekoff(off_type offset, std::ios_base::seekdir from,
                                               std::ios_base::openmode mode)
{
    qint64 const base = from == std::ios_base::beg ? 0 : from == std::ios_base::cur ? m_at : m_size;
    return seekpos(base + offset, mode);
}

// Only places that were written are sought: the library comes back to fill in the head.
AlembicMemory::pos_type AlembicMemory::seekpos(pos_type position, std::ios_base::openmode)
{
    m_at = std::clamp<qint64>(position, 0, m_size);
    return m_at;
}

// Capacity doubles, so that many small steps don't move the bytes each.
void AlembicMemory::makeRoom(qint64 size)
{
    if (!m_hasRoom || size <= m_bytes.size())
    {
        return;
    }
    m_hasRoom = size <= m_largest;
    if (!m_hasRoom)
    {
        m_bytes.clear();
        return;
    }
    try
    {
        if (size > m_bytes.capacity())
        {
            m_bytes.reserve(
                static_cast<int>(std::min(std::max(size, 2 * static_cast<qint64>(m_bytes.capacity())), m_largest)));
        }
        m_bytes.resize(static_cast<int>(size));
    }
    catch (std::bad_alloc const&)
    {
        m_hasRoom = false;
        m_bytes.clear();
    }
}

}
