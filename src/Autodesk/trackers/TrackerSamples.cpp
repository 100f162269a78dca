#include "Autodesk/trackers/TrackerSamples.h"

#include <algorithm>

namespace Export
{

TrackerSamples::TrackerSamples(Korvane::TrackingExporterHelper const& helper)
    : m_points(helper.surfacePoints()),
      m_count(m_points ? helper.numFrames() : 0),
      m_first(static_cast<int>(helper.firstFrame().value())),
      m_offset(helper.baseClipOffset() == 0 ? 1 : helper.baseClipOffset()),
      m_interlaced(helper.isInterlaced()),
      m_verticalScale(static_cast<double>(helper.verticalScale()))
{
}

float TrackerSamples::frame(int sample) const
{
    return static_cast<float>((sample + m_offset) + m_first) / (m_interlaced ? 2.0F : 1.0F);
}

int TrackerSamples::nearest(int hostFrame) const
{
    return std::clamp(hostFrame - m_first, 0, std::max(0, m_count - 1));
}

}
