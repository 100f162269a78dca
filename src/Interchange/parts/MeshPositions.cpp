#include "Interchange/parts/MeshPositions.h"

#include "Host/ExporterHelper.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Values.h"

#include <algorithm>

namespace Export
{

namespace
{

constexpr float PIXELS_PER_UNIT = 100.0F;

QSize sizeOf(ZN_BaseClipInfo const& clip)
{
    return QSize(static_cast<int>(clip.width()), static_cast<int>(clip.height()));
}

bool isWritable(Imath::V3f const& position)
{
    return Export::isWritable(static_cast<double>(position.x)) && Export::isWritable(static_cast<double>(position.y));
}

}

MeshPositions::MeshPositions(Korvane::ExporterHelperBase const& helper, ZN::MeshTracking::ParameterSet const& mesh)
    : m_vertices(mesh.vertices()),
      m_picture(sizeOf(*helper.baseClipInfo())),
      m_view(helper.view()),
      m_firstFrame(static_cast<int>(helper.firstFrame().value())),
      m_frames(helper.numFrames()),
      m_row(m_vertices.size())
{
}

std::vector<Imath::V3f> const& MeshPositions::nextFrame()
{
    Anm::Context const context = contextAt(m_nextRow);
    m_bounds.makeEmpty();
    for (std::size_t i = 0; i < m_vertices.size(); ++i)
    {
        Imath::V3f const at = position(m_vertices[i], context);
        if (isWritable(at))
        {
            m_row[i] = at;
        }
        else
        {
            hold(i);
        }
        m_bounds.extendBy(m_row[i]);
    }
    ++m_nextRow;
    return m_row;
}

Imath::Box3d MeshPositions::bounds() const
{
    return m_bounds.isEmpty() ? Imath::Box3d() : Imath::Box3d(Imath::V3d(m_bounds.min), Imath::V3d(m_bounds.max));
}

std::vector<Imath::V3f> MeshPositions::ofVertex(std::size_t vertex, int& failed) const
{
    std::vector<Imath::V3f> positions;
    positions.reserve(static_cast<std::size_t>(m_frames));
    Imath::V3f last(0);
    bool isKnown = false;
    for (int row = 0; row < m_frames; ++row)
    {
        Imath::V3f const at = position(m_vertices[vertex], contextAt(row));
        if (isWritable(at))
        {
            last = at;
            std::fill(positions.begin(), isKnown ? positions.begin() : positions.end(), at);
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

Imath::V3f MeshPositions::position(ZN::MeshTracking::Vertex const& vertex, Anm::Context const& context) const
{
    Mtx_Vector2_f at = vertex.pos(context);
    m_picture.toImage(at);
    return {at.x / PIXELS_PER_UNIT, at.y / PIXELS_PER_UNIT, 0.0F};
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
