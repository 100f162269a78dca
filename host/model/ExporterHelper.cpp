#include "Host/ExporterHelper.h"

#include "Host/KORV_Clip.h"
#include "Project.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Korvane
{

namespace
{

// A limit of a range; the extremes of int in either order mean "no limit".
int frameLimit(Anm::Time const& time)
{
    double const frame = std::floor(time.value());
    if (!(frame > std::numeric_limits<int>::min()))
    {
        return std::numeric_limits<int>::min();
    }
    return frame < std::numeric_limits<int>::max() ? static_cast<int>(frame) : std::numeric_limits<int>::max();
}

struct Range
{
    int first;
    int last;

    bool isEmpty() const
    {
        return last < first;
    }
};

Range common(Range const& a, Range const& b)
{
    return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

/// The range between two limits, or `unlimited`.
Range between(Anm::Time const& from, Anm::Time const& to, Range const& unlimited)
{
    Range const limits{frameLimit(from), frameLimit(to)};
    // -2147483647, not -2147483648, is what callers pass for "no limit".
    constexpr int UNLIMITED = std::numeric_limits<int>::max();
    bool const isUnlimited = (limits.first == UNLIMITED && limits.last <= -UNLIMITED) ||
                             (limits.first <= -UNLIMITED && limits.last == UNLIMITED);
    return isUnlimited ? unlimited : limits;
}

Range rangeOfLayer(KORV_Layer const& layer)
{
    return {static_cast<int>(layer.inPoint(false)), static_cast<int>(layer.outPoint(false))};
}

}

struct ExporterHelperBase::Data
{
    bool cutToLayer = true;
    KORV_ProjectManager const* project = nullptr;
    unsigned int layerId = 0;
    Anm::View view = Anm::View::defaultView();
    KORV_Clip const* clip = nullptr;
    Range range{-1, -2};
    Range layerRange{-1, -1};
    float heightScale = 1.0F;
    float frameScale = 1.0F;
    float focalDistance = 0.0F;
};

ExporterHelperBase::ExporterHelperBase(bool cutToLayer) : m_base(std::make_unique<Data>())
{
    m_base->cutToLayer = cutToLayer;
}

ExporterHelperBase::ExporterHelperBase(ExporterHelperBase const& other) : m_base(std::make_unique<Data>(*other.m_base))
{
}

ExporterHelperBase::ExporterHelperBase(ExporterHelperBase&& other) noexcept = default;

ExporterHelperBase& ExporterHelperBase::operator=(ExporterHelperBase const& other)
{
    m_base = std::make_unique<Data>(*other.m_base);
    return *this;
}

ExporterHelperBase& ExporterHelperBase::operator=(ExporterHelperBase&& other) noexcept = default;

ExporterHelperBase::~ExporterHelperBase() = default;

void ExporterHelperBase::initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int layerId,
                                                  Anm::View const& view, int, Anm::Time first, Anm::Time last, bool)
{
    Data fresh;
    fresh.cutToLayer = m_base->cutToLayer;
    fresh.project = &project;
    fresh.layerId = layerId;
    fresh.view = view;
    if (KORV_Layer const* const layer = project.sm()->layerFromNumericID(layerId, false))
    {
        fresh.layerRange = rangeOfLayer(*layer);
        Range const whole = fresh.cutToLayer ? fresh.layerRange
                                             : Range{static_cast<int>(project.playbackInPoint(false)),
                                                     static_cast<int>(project.playbackOutPoint(false))};
        fresh.range = common(whole, between(first, last, whole));
    }
    *m_base = fresh;
}

int ExporterHelperBase::framesToExport(boost::optional<ZN_TRACKING_OPTION>)
{
    return 2147483647;
}

bool ExporterHelperBase::layerIsWithinProject(KORV_ProjectManager const& project, unsigned int layerId, Anm::Time first,
                                              Anm::Time last, bool)
{
    KORV_Layer const* const layer = project.sm()->layerFromNumericID(layerId, false);
    Range const whole{0, project.frameCount() - 1};
    return layer && !common(rangeOfLayer(*layer), between(first, last, whole)).isEmpty();
}

void ExporterHelperBase::setClip(KORV_Clip const& clip)
{
    m_base->clip = &clip;
    bool const interlaced = clip.info().bIsInterlaced();
    m_base->heightScale = interlaced ? 2.0F : 1.0F;
    m_base->frameScale = interlaced ? 0.5F : 1.0F;
}

KORV_ProjectManager const* ExporterHelperBase::projectManager() const
{
    return m_base->project;
}

ZN_BaseClipInfo const* ExporterHelperBase::baseClipInfo() const
{
    return m_base->clip ? &m_base->clip->info() : nullptr;
}

int ExporterHelperBase::baseClipOffset() const
{
    return m_base->clip ? m_base->clip->info().baseClipOffset() : 0;
}

Anm::Time ExporterHelperBase::firstFrame() const
{
    return Anm::Time::fromInt(m_base->range.isEmpty() ? -1 : m_base->range.first);
}

Anm::Time ExporterHelperBase::lastFrame() const
{
    return Anm::Time::fromInt(m_base->range.isEmpty() ? -1 : m_base->range.last);
}

Anm::Time ExporterHelperBase::inPoint() const
{
    return Anm::Time::fromInt(m_base->layerRange.first);
}

Anm::Time ExporterHelperBase::outPoint() const
{
    return Anm::Time::fromInt(m_base->layerRange.last);
}

int ExporterHelperBase::numFrames() const
{
    return m_base->range.isEmpty() ? 0 : m_base->range.last - m_base->range.first + 1;
}

Anm::View ExporterHelperBase::view() const
{
    return m_base->view;
}

unsigned int ExporterHelperBase::layerId() const
{
    return m_base->layerId;
}

bool ExporterHelperBase::isInterlaced() const
{
    return m_base->clip && m_base->clip->info().bIsInterlaced();
}

float ExporterHelperBase::heightScale() const
{
    return m_base->heightScale;
}

float ExporterHelperBase::verticalScale() const
{
    return m_base->heightScale;
}

void ExporterHelperBase::setHeightScale(float scale)
{
    m_base->heightScale = scale;
}

float ExporterHelperBase::frameScale() const
{
    return m_base->frameScale;
}

float ExporterHelperBase::frameStep() const
{
    return m_base->frameScale;
}

void ExporterHelperBase::setFrameScale(float scale)
{
    m_base->frameScale = scale;
}

float ExporterHelperBase::focalDistance() const
{
    return m_base->focalDistance;
}

void ExporterHelperBase::setFocalDistance(float distance)
{
    m_base->focalDistance = distance;
}

void ExporterHelperBase::startWithoutLayer(KORV_ProjectManager const& project, Anm::View const& view, int first,
                                           int last)
{
    Data fresh;
    fresh.cutToLayer = m_base->cutToLayer;
    fresh.project = &project;
    fresh.view = view;
    fresh.range = {first, last};
    *m_base = fresh;
}

void ExporterHelperBase::clearRange()
{
    m_base->range = {-1, -2};
}

}
