#include "marlohost/FrameNumbers.h"

#include <cmath>

namespace MarloHost
{

FrameNumbers::FrameNumbers(int offset, bool isInterlaced) : m_offset(offset), m_isInterlaced(isInterlaced)
{
}

int FrameNumbers::shown(int hostFrame) const
{
    int const number = hostFrame + m_offset;
    return m_isInterlaced ? static_cast<int>(std::floor(number * 0.5)) : number;
}

qint64 FrameNumbers::host(int shownFrame) const
{
    return (m_isInterlaced ? 2 : 1) * static_cast<qint64>(shownFrame) - m_offset;
}

}
