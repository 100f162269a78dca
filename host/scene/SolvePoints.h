#pragma once
// The points of a layer or of a feature set, as they are exported.

#include "Host/CameraSolveHelper.h"
#include "SolveSpace.h"

#include <array>

namespace MarloHost
{

constexpr Korvane::CameraSolve::PointType ALL_POINT_TYPES[] = {
    Korvane::CameraSolve::SurfacePoint, Korvane::CameraSolve::TrackMeshPoint, Korvane::CameraSolve::FeaturePoint};

/// The id of a point, which tells its type and its index among those of the type.
unsigned int pointId(Korvane::CameraSolve::PointType type, std::size_t index);

/// The type; `id` becomes the index.
Korvane::CameraSolve::PointType splitPointId(unsigned int& id);

/// The name of a point, a numbered one where the project gives none.
QString pointName(PointCloudModel const& cloud, Korvane::CameraSolve::PointType type, std::size_t index);

/// Points that move with one thing. What that thing does is computed once, a point at rest
/// on something at rest costs one product. Models must outlive it.
class SolvePoints
{
public:
    using PointAnimData = Korvane::CameraSolve::PointAnimData;
    using PointType = Korvane::CameraSolve::PointType;

    static constexpr std::size_t TYPES = 3;

    /// The points of each type; null where there are none.
    using Clouds = std::array<PointCloudModel const*, TYPES>;

    /// @param space as it is set now; later changes don't reach these points
    /// @param carrier null for points relative to what carries them
    /// @param frameCount frames of what moves
    SolvePoints(SolveSpace const& space, ZN::Point3DParameterSet const* carrier, Clouds const& clouds,
                Anm::View const& view, int frameCount);

    std::size_t count(PointType type) const;
    PointCloudModel const& cloud(PointType type) const;

    /// Where a point is exported at a frame below the frame count.
    Sabrel::Vector3 position(PointType type, std::size_t index, std::size_t frame) const;

    /// Scales are percent. Empty for a point that isn't there.
    PointAnimData data(PointType type, std::size_t index) const;

    /// @param animated a row for every frame, where they move; else the one of
    ///        the reference frame
    Korvane::CameraSolve::MeshAnimData mesh(PointType type, bool animated, std::size_t referenceFrame) const;

private:
    struct Sample
    {
        /// A point p is exported at `offset + matrix p`.
        Sabrel::Matrix33 matrix;
        Sabrel::Vector3 offset;
    };

    void makeKeys(std::size_t type);
    bool moves(PointType type) const;
    Anm::Context contextAt(double frame) const;
    Sabrel::Vector3 modelPoint(PointType type, std::size_t index, KeyInterval const& keys) const;

    Clouds m_clouds;
    Anm::View m_view;
    std::size_t m_frameCount;

    /// One entry for a carrier at rest, else one for each frame.
    std::vector<Sample> m_samples;
    std::vector<Sabrel::Vector3> m_rotations;
    std::vector<Sabrel::Vector3> m_scales;

    /// For points that move by themselves: where each frame lies among their keys.
    std::array<std::vector<KeyInterval>, TYPES> m_keys;
};

}
