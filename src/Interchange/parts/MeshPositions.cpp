#include "Interchange/parts/MeshPositions.h"

#include "Host/ExporterHelper.h"
#include "Host/ZN_ClipInfo.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Export
{

namespace
{

constexpr float PIXELS_PER_UNIT = 100.0F;

QSize sizeOf(ZN_BaseClipInfo const& clip)
{
    return QSize(static_cast<int>(clip.width()), static_cast<int>(clip.height()));
}

/// Negative when the number isn't writable: told by its bits, without a branch, so that the
/// compiler takes several numbers at once.
std::int32_t negativeUnlessWritable(float number)
{
    constexpr std::int32_t MAGNITUDE = 0x7fffffff;
    constexpr std::int32_t LEAST = 0x00800000;
    constexpr std::int32_t GREATEST = 0x7f7fffff;
    std::int32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    std::int32_t const magnitude = bits & MAGNITUDE;
    std::int32_t const subnormal = (magnitude - LEAST) & -magnitude;
    return (GREATEST - magnitude) | subnormal;
}

bool isWritable(Mtx_Vector2_f const& at)
{
    return (negativeUnlessWritable(at.x) | negativeUnlessWritable(at.y)) >= 0;
}

bool areAllWritable(std::vector<Mtx_Vector2_f> const& points)
{
    std::int32_t all = 0;
    for (Mtx_Vector2_f const& at : points)
    {
        all |= negativeUnlessWritable(at.x) | negativeUnlessWritable(at.y);
    }
    return all >= 0;
}

/// The box around points that are finite; empty without any.
Imath::Box2f boxOf(std::vector<Mtx_Vector2_f> const& points)
{
    // Blocks of points, numbers one after another: as few, and the compiler takes them one by one.
    constexpr std::size_t BLOCK = 16;
    constexpr std::size_t NUMBERS = 2 * BLOCK;
    Imath::Box2f box;
    std::size_t const whole = points.size() - points.size() % BLOCK;
    for (std::size_t i = whole; i < points.size(); ++i)
    {
        box.extendBy({points[i].x, points[i].y});
    }
    if (whole == 0)
    {
        return box;
    }
    float low[NUMBERS];
    float high[NUMBERS];
    std::memcpy(low, points.data(), sizeof low);
    std::memcpy(high, points.data(), sizeof high);
    for (std::size_t i = BLOCK; i < whole; i += BLOCK)
    {
        float at[NUMBERS];
        std::memcpy(at, &points[i], sizeof at);
        for (std::size_t k = 0; k < NUMBERS; ++k)
        {
            low[k] = at[k] < low[k] ? at[k] : low[k];
        }
        for (std::size_t k = 0; k < NUMBERS; ++k)
        {
            high[k] = at[k] > high[k] ? at[k] : high[k];
        }
    }
    for (std::size_t k = 0; k < NUMBERS; k += 2)
    {
        box.extendBy({low[k], low[k + 1]});
        box.extendBy({high[k], high[k + 1]});
    }
    return box;
}

}

MeshPositions::MeshPositions(Korvane::ExporterHelperBase const& helper, ZN::MeshTracking::ParameterSet const& mesh)
    : m_mesh(mesh),
      m_picture(sizeOf(*helper.baseClipInfo())),
      m_view(helper.view()),
      m_firstFrame(static_cast<int>(helper.firstFrame().value())),
      m_frames(helper.numFrames()),
      m_row(mesh.vertices().size(), Imath::V3f(0))
{
}

std::vector<Imath::V3f> const& MeshPositions::nextFrame()
{
    m_mesh.positions(contextAt(m_nextRow), m_seen);
    m_picture.toImage(m_seen);
    takeRow();
    ++m_nextRow;
    return m_row;
}

// Large meshes spend their time here: nothing is done for each vertex that can be done for all.
void MeshPositions::takeRow()
{
    for (Mtx_Vector2_f& at : m_seen)
    {
        at.x /= PIXELS_PER_UNIT;
        at.y /= PIXELS_PER_UNIT;
    }
    if (!areAllWritable(m_seen))
    {
        holdWhatIsNotWritable();
    }
    for (std::size_t i = 0; i < m_seen.size(); ++i)
    {
        m_row[i].x = m_seen[i].x;
        m_row[i].y = m_seen[i].y;
    }
    m_bounds = boxOf(m_seen);
}

Imath::Box3d MeshPositions::bounds() const
{
    return m_row.empty() ? Imath::Box3d()
                         : Imath::Box3d(Imath::V3d(m_bounds.min.x, m_bounds.min.y, 0.0),
                                        Imath::V3d(m_bounds.max.x, m_bounds.max.y, 0.0));
}

std::vector<Imath::V3f> MeshPositions::ofVertex(std::size_t vertex, int& failed) const
{
    std::vector<Imath::V3f> positions;
    positions.reserve(static_cast<std::size_t>(m_frames));
    Imath::V3f last(0);
    bool isKnown = false;
    for (int row = 0; row < m_frames; ++row)
    {
        Mtx_Vector2_f const at = position(m_mesh.vertices()[vertex], contextAt(row));
        if (isWritable(at))
        {
            last = {at.x, at.y, 0.0F};
            std::fill(positions.begin(), isKnown ? positions.begin() : positions.end(), last);
            isKnown = true;
        }
        else
        {
            ++failed;
        }
        positions.push_back(last);
    }
    return positions;
}

Anm::Context MeshPositions::contextAt(int row) const
{
    return Anm::Context(Anm::Time::fromInt(m_firstFrame + row), m_view, Anm::ProxyScale::Full);
}

Mtx_Vector2_f MeshPositions::position(ZN::MeshTracking::Vertex const& vertex, Anm::Context const& context) const
{
    Mtx_Vector2_f at = vertex.pos(context);
    m_picture.toImage(at);
    return {at.x / PIXELS_PER_UNIT, at.y / PIXELS_PER_UNIT};
}

// The row has where a vertex was; ahead of the first frame there is only what comes.
void MeshPositions::holdWhatIsNotWritable()
{
    for (std::size_t i = 0; i < m_seen.size(); ++i)
    {
        if (!isWritable(m_seen[i]))
        {
            ++m_failed;
            int ignored = 0;
            Imath::V3f const held = m_nextRow == 0 ? ofVertex(i, ignored).front() : m_row[i];
            m_seen[i] = {held.x, held.y};
        }
    }
}

}
