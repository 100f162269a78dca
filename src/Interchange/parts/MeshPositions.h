#pragma once

#include "Host/Anm.h"
#include "Host/MeshTracking.h"

#include <Imath/ImathBox.h>
#include <Imath/ImathVec.h>

#include <vector>

namespace Korvane
{
class ExporterHelperBase;
}

namespace Export
{

/// Where the vertices of a mesh are, in units of 100 pixels of the clip: z is 0.
///
/// Where a vertex has a value that isn't finite, it stays where it was in the frame before; in
/// the first frames where it will be first; in the origin when it is nowhere.
class MeshPositions
{
public:
    /// @param helper gives clip, view and range
    /// @param mesh has to outlive this
    MeshPositions(Korvane::ExporterHelperBase const& helper, ZN::MeshTracking::ParameterSet const& mesh);

    /// All vertices in the next frame of the helper, from its first one on.
    std::vector<Imath::V3f> const& nextFrame();

    /// The box around what nextFrame() gave; empty without vertices.
    Imath::Box3d bounds() const;

    /// One vertex in all frames of the helper.
    /// @param failed goes up by one for each position that isn't finite
    std::vector<Imath::V3f> ofVertex(std::size_t vertex, int& failed) const;

    /// How many positions of nextFrame() weren't finite.
    int failedCount() const
    {
        return m_failed;
    }

private:
    Anm::Context contextAt(int row) const;
    Mtx_Vector2_f position(ZN::MeshTracking::Vertex const& vertex, Anm::Context const& context) const;
    void takeRow();
    void holdWhatIsNotWritable();

    ZN::MeshTracking::ParameterSet const& m_mesh;
    ZN::NormalizedSpace m_picture;
    Anm::View m_view;
    int m_firstFrame;
    int m_frames;
    int m_nextRow = 0;
    std::vector<Mtx_Vector2_f> m_seen;
    std::vector<Imath::V3f> m_row;
    Imath::Box2f m_bounds;
    int m_failed = 0;
};

}
