#include "Interchange/parts/MeshPositions.h"

#include "Host/ExporterHelper.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Values.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Export
{

namespace
{

constexpr float PIXELS_PER_UNIT = 100.0F;

QSize sizeOf(ZN_BaseClipInfo const& clip)
{
    return QSize(static_cast<int>(clip.width()), static_cast<int>(clip.height()));
}

bool isWritable(Mtx_Vector2_f const& at)
{
    return Export::isWritable(static_cast<double>(at.x)) && Export::isWritable(static_cast<double>(at.y));
}

/// Whether all of the points are: by the bits of their numbers, as that takes no time.
bool areAllWritable(std::vector<Mtx_Vector2_f> const& points)
{
    constexpr std::int32_t MAGNITUDE = 0x7fffffff;
    constexpr std::int32_t LEAST = 0x00800000;
    constexpr std::int32_t INFINITE = 0x7f800000;
    std::int32_t bad = 0;
    for (Mtx_Vector2_f const& at : points)
    {
        std::int32_t bits[2];
        std::memcpy(bits, &at, sizeof bits);
        for (std::int32_t const number : bits)
        {
            std::int32_t const magnitude = number & MAGNITUDE;
            bad |= static_cast<int>(magnitude >= INFINITE) |
                   (static_cast<int>(magnitude < LEAST) & static_cast<int>(magnitude != 0));
        }
    }
    return bad == 0;
}

/// The box around points that are finite.
Imath::Box2f boxOf(std::vector<Imath::V3f> const& points)
{
    // Two points at a time, which the compiler puts into one register.
    float low[4];
    float high[4];
    std::fill_n(low, 4, std::numeric_limits<float>::max());
    std::fill_n(high, 4, std::numeric_limits<float>::lowest());
    std::size_t const count = points.size();
    for (std::size_t i = 0; i < count; i += 2)
    {
        Imath::V3f const& first = points[i];
        Imath::V3f const& second = points[std::min(i + 1, count - 1)];
        float const at[4] = {first.x, first.y, second.x, second.y};
        for (int k = 0; k < 4; ++k)
        {
            low[k] = at[k] < low[k] ? at[k] : low[k];
            high[k] = at[k] > high[k] ? at[k] : high[k];
        }
    }
    return Imath::Box2f({std::min(low[0], low[2]), std::min(low[1], low[3])},
                        {std::max(high[0], high[2]), std::max(high[1], high[3])});
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
    bool const areFine = areAllWritable(m_seen);
    for (std::size_t i = 0; areFine && i < m_seen.size(); ++i)
    {
        m_row[i].x = m_seen[i].x;
        m_row[i].y = m_seen[i].y;
    }
    for (std::size_t i = 0; !areFine && i < m_seen.size(); ++i)
    {
        if (isWritable(m_seen[i]))
        {
            m_row[i].x = m_seen[i].x;
            m_row[i].y = m_seen[i].y;
        }
        else
        {
            hold(i);
        }
    }
    m_bounds = boxOf(m_row);
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

// The row has where the vertex was; ahead of the first frame there is only what comes.
void MeshPositions::hold(std::size_t vertex)
{
    ++m_failed;
    if (m_nextRow == 0)
    {
        int ignored = 0;
        m_row[vertex] = ofVertex(vertex, ignored).front();
    }
}

}
