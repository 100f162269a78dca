#pragma once

#include "Host/HostApi.h"

#include <QtGlobal>

namespace MarloHost
{

/// How the host frames of a clip are shown: host frame plus offset, and two fields to
/// a frame.
class MARLO_HOST_API FrameNumbers
{
public:
    FrameNumbers(int offset, bool isInterlaced);

    /// The frame that a host frame is shown as, or that a field lies in (rounded down,
    /// below zero too).
    int shown(int hostFrame) const;

    /// The host frame, or the first field, of a frame as shown.
    qint64 host(int shownFrame) const;

private:
    int m_offset;
    bool m_isInterlaced;
};

}
