#pragma once
// How far a matchmove scene reaches.

#include "kestrelia/Scene.h"

#include <Imath/ImathBox.h>
#include <Imath/ImathBoxAlgo.h>
#include <Imath/ImathMatrix.h>
#include <Imath/ImathVec.h>

#include <vector>

namespace Export
{

inline Imath::V3d vectorOf(KestreliaLib::Vector3 const& v)
{
    return {v.x, v.y, v.z};
}

/// A pose as a matrix that acts on row vectors, with its translation times a scale.
Imath::M44d matrixOf(KestreliaLib::Pose const& pose, double scale);

/// The boxes around solved trackers, meshes with faces and screens, in the space of the scene,
/// for each frame of the first shot.
class SceneBounds
{
public:
    /// @param scale times every length
    SceneBounds(KestreliaLib::Scene const& scene, double scale);

    /// The distance of the farthest corner from the shot's camera in any frame; 0 without.
    double farthest(KestreliaLib::Shot const& shot) const;

    /// Adds a screen, which reaches from -1 to 1 in x and y of its matrix.
    void addScreen(std::size_t row, Imath::M44d const& matrix);

    std::vector<Imath::Box3d> const& frames() const
    {
        return m_frames;
    }

private:
    void addTrackers(KestreliaLib::Shot const& shot);
    void addMesh(KestreliaLib::Mesh const& mesh);

    KestreliaLib::Scene const& m_scene;
    double m_scale;
    int m_firstFrame = 0;
    std::vector<Imath::Box3d> m_frames;
};

}
