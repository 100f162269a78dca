#pragma once

#include "Host/ExporterHelper.h"

namespace Export
{

/// Walks over the frames that a helper exports, in order; over none when it has nothing to
/// export.
///
/// @param step called with the row of the helper's per-frame lists, from 0, and the host
///        frame
template <typename Step>
void forEachFrame(Korvane::ExporterHelperBase const& helper, Step const& step)
{
    int const first = static_cast<int>(helper.firstFrame().value());
    int const count = first == -1 ? 0 : helper.numFrames();
    for (int row = 0; row < count; ++row)
    {
        step(row, first + row);
    }
}

}
