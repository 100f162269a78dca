#include "SolvePoints.h"

namespace MarloHost
{

using Korvane::CameraSolve::MeshAnimData;
using Korvane::CameraSolve::PointAnimData;
using Korvane::CameraSolve::PointType;
using Sabrel::Matrix33;
using Sabrel::Vector3;

namespace
{

constexpr double PERCENT = 100.0;

// An id is the type of a point above these bits, and its index in them.
constexpr unsigned int INDEX_BITS = 28;
constexpr unsigned int INDEX_MASK = (1U << INDEX_BITS) - 1;

}

unsigned int pointId(PointType type, std::size_t index)
{
    return static_cast<unsigned int>(type) << INDEX_BITS | static_cast<unsigned int>(index);
}

PointType splitPointId(unsigned int& id)
{
    unsigned int const type = std::min<unsigned int>(id >> INDEX_BITS, Korvane::CameraSolve::FeaturePoint);
    id &= INDEX_MASK;
    return static_cast<PointType>(type);
}

QString pointName(PointCloudModel const& cloud, PointType type, std::size_t index)
{
    constexpr char const* NAMES[] = {"Point %1", "Vertex %1", "Feature %1"};
    auto const at = static_cast<int>(index);
    return at < cloud.names.size() ? cloud.names[at] : QString::fromLatin1(NAMES[type]).arg(at + 1);
}

SolvePoints::SolvePoints(SolveSpace const& space, ZN::Point3DParameterSet const* carrier, Clouds const& clouds,
                         Anm::View const& view, int frameCount)
    : m_clouds(clouds), m_view(view), m_frameCount(static_cast<std::size_t>(frameCount))
{
    PoseChain const chain = carrier ? PoseChain(*carrier, true) : PoseChain();
    std::size_t const samples = chain.isMoving() ? m_frameCount : 1;
    Matrix33 const& matrix = space.positionMatrix();
    m_samples.reserve(samples);
    m_rotations.reserve(samples);
    m_scales.reserve(samples);
    AngleSequence angles(space);
    for (std::size_t frame = 0; frame < samples; ++frame)
    {
        Placement const placement = space.placementOf(chain, static_cast<double>(frame));
        m_samples.push_back({placement.scale * (matrix * placement.rotation), matrix * placement.position});
        m_rotations.push_back(angles.next(placement.rotation));
        double const percent = PERCENT * placement.scale;
        m_scales.push_back({percent, percent, percent});
    }
    for (std::size_t type = 0; type < TYPES; ++type)
    {
        makeKeys(type);
    }
}

void SolvePoints::makeKeys(std::size_t type)
{
    if (!m_clouds[type] || m_clouds[type]->frames.size() < 2)
    {
        return;
    }
    m_keys[type].reserve(m_frameCount);
    for (std::size_t frame = 0; frame < m_frameCount; ++frame)
    {
        m_keys[type].push_back(keysAround(m_clouds[type]->frames, static_cast<double>(frame)));
    }
}

std::size_t SolvePoints::count(PointType type) const
{
    PointCloudModel const* const cloud = m_clouds[type];
    return cloud ? static_cast<std::size_t>(cloud->pointCount()) : 0;
}

PointCloudModel const& SolvePoints::cloud(PointType type) const
{
    static PointCloudModel const NONE;
    return m_clouds[type] ? *m_clouds[type] : NONE;
}

bool SolvePoints::moves(PointType type) const
{
    return m_samples.size() > 1 || !m_keys[type].empty();
}

Anm::Context SolvePoints::contextAt(double frame) const
{
    return Anm::Context(Anm::Time::fromDouble(frame), m_view);
}

Vector3 SolvePoints::modelPoint(PointType type, std::size_t index, KeyInterval const& keys) const
{
    std::vector<double> const& numbers = m_clouds[type]->positions;
    std::size_t const perKey = 3 * count(type);
    double const* const a = &numbers[keys.first * perKey + 3 * index];
    double const* const b = &numbers[keys.second * perKey + 3 * index];
    auto const at = [&](int axis) { return a[axis] + keys.fraction * (b[axis] - a[axis]); };
    return {at(0), at(1), at(2)};
}

Vector3 SolvePoints::position(PointType type, std::size_t index, std::size_t frame) const
{
    Sample const& sample = m_samples[m_samples.size() > 1 ? frame : 0];
    KeyInterval const keys = m_keys[type].empty() ? KeyInterval() : m_keys[type][frame];
    return sample.offset + sample.matrix * modelPoint(type, index, keys);
}

PointAnimData SolvePoints::data(PointType type, std::size_t index) const
{
    PointAnimData data;
    if (index >= count(type))
    {
        return data;
    }
    std::size_t const samples = moves(type) ? m_frameCount : 1;
    data.contexts.reserve(samples);
    data.positions.reserve(samples);
    for (std::size_t frame = 0; frame < samples; ++frame)
    {
        data.contexts.push_back(contextAt(static_cast<double>(frame)));
        data.positions.push_back(position(type, index, frame));
    }
    data.rotations = m_rotations;
    data.rotations.resize(samples, m_rotations.front());
    data.scales = m_scales;
    data.scales.resize(samples, m_scales.front());
    return data;
}

MeshAnimData SolvePoints::mesh(PointType type, bool animated, std::size_t referenceFrame) const
{
    MeshAnimData mesh;
    std::size_t const points = count(type);
    mesh.faceCounts = cloud(type).faceCounts;
    mesh.faceIndices = cloud(type).faceIndices;
    std::size_t const rows = points == 0 ? 0 : (animated && moves(type) ? m_frameCount : 1);
    mesh.contexts.reserve(rows);
    mesh.points.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row)
    {
        std::size_t const frame = animated || !moves(type) ? row : referenceFrame;
        mesh.contexts.push_back(contextAt(static_cast<double>(frame)));
        std::vector<Vector3>& positions = mesh.points.emplace_back();
        positions.reserve(points);
        for (std::size_t point = 0; point < points; ++point)
        {
            positions.push_back(position(type, point, frame));
        }
    }
    return mesh;
}

}
