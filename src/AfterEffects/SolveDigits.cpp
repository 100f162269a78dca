#include "AfterEffects/SolveDigits.h"

#include "mtx/SFMEulerAngles.h"

#include <algorithm>
#include <cmath>

namespace Export
{

namespace
{

using Korvane::CameraSolve::CameraAnimData;
using Korvane::CameraSolve::PointAnimData;
using Sabrel::Matrix33;
using Sabrel::Vector3;

constexpr int ROTATE_ORDER = 21;
constexpr double PERCENT = 100.0;

/// Of points and frames together, and of frames at least.
constexpr std::size_t MOST_PIXELS = 1'000'000;
constexpr std::size_t LEAST_FRAMES = 8;

/// The value with six significant digits, without the way over its text.
double printed(double value)
{
    constexpr double DIGITS_BEHIND_THE_FIRST = 5;
    if (value == 0 || !std::isfinite(value))
    {
        return value;
    }
    double const unit = std::pow(10.0, std::floor(std::log10(std::fabs(value))) - DIGITS_BEHIND_THE_FIRST);
    return std::round(value / unit) * unit;
}

Vector3 printed(Vector3 const& v)
{
    return {printed(v.x), printed(v.y), printed(v.z)};
}

Matrix33 turn(Vector3 const& degrees)
{
    using namespace SFMEulerAngles;
    return eul_to_matrix(eul_to_radians(eul_pack(degrees.x, degrees.y, degrees.z, ROTATE_ORDER)));
}

/// The sample of a frame, or the one that holds for all.
Vector3 const& sampleAt(std::vector<Vector3> const& samples, std::size_t frame)
{
    return samples.size() == 1 ? samples.front() : samples.at(frame);
}

}

Vector3 SolveDigits::Placement::apply(Vector3 const& p) const
{
    return position + rotation * Vector3{scale.x * p.x / PERCENT, scale.y * p.y / PERCENT, scale.z * p.z / PERCENT};
}

SolveDigits::SolveDigits(CameraAnimData const& camera, double pixels, double width, double height, double positionScale,
                         std::size_t points)
    : m_halfWidth(width / 2), m_halfHeight(height / 2), m_positionScale(positionScale)
{
    std::size_t const samples = camera.contexts.size();
    std::size_t const wanted = std::max(LEAST_FRAMES, MOST_PIXELS / std::max<std::size_t>(1, points));
    std::size_t const count = std::min(samples, wanted);
    for (std::size_t i = 0; i < count; ++i)
    {
        std::size_t const frame = count > 1 ? i * (samples - 1) / (count - 1) : 0;
        Vector3 const position = positionScale * camera.positions.at(frame);
        Vector3 const& angles = camera.rotations.at(frame);
        double const focal = static_cast<double>(camera.focalLengths.at(frame));
        m_frames.push_back(frame);
        m_exact.push_back({turn(angles).transposed(), position, pixels * focal});
        m_printed.push_back({turn(printed(angles)).transposed(), printed(position), pixels * printed(focal)});
    }
}

SolveDigits::Carrier SolveDigits::carrier(PointAnimData const& data, Carrier const& parent) const
{
    Carrier result;
    for (std::size_t i = 0; i < m_frames.size(); ++i)
    {
        Vector3 const position = m_positionScale * sampleAt(data.positions, m_frames[i]);
        Vector3 const& angles = sampleAt(data.rotations, m_frames[i]);
        Vector3 const& scale = sampleAt(data.scales, m_frames[i]);
        result.exact.push_back({turn(angles), scale, position});
        result.printed.push_back({turn(printed(angles)), printed(scale), printed(position)});
        for (auto const& [own, above] : {std::pair(&result.exact, &parent.exact), {&result.printed, &parent.printed}})
        {
            if (!above->empty())
            {
                Placement const& outer = (*above)[i];
                Placement& inner = own->back();
                // Factors are even ones, so that they go through any turn.
                inner = {outer.rotation * inner.rotation, outer.scale.x / PERCENT * inner.scale,
                         outer.apply(inner.position)};
            }
        }
    }
    return result;
}

void SolveDigits::measure(PointAnimData const& point, Carrier const& parent)
{
    Vector3 exact;
    Vector3 rounded;
    for (std::size_t i = 0; i < m_frames.size(); ++i)
    {
        if (i == 0 || point.positions.size() > 1)
        {
            exact = m_positionScale * sampleAt(point.positions, m_frames[i]);
            rounded = printed(exact);
        }
        bool const isFree = parent.exact.empty();
        Vector3 const should = pixelOf(m_exact[i], isFree ? exact : parent.exact[i].apply(exact));
        bool const isInPicture =
            should.z > 0 && std::fabs(should.x) <= m_halfWidth && std::fabs(should.y) <= m_halfHeight;
        if (isInPicture)
        {
            Vector3 const is = pixelOf(m_printed[i], isFree ? rounded : parent.printed[i].apply(rounded));
            m_mostPixels = std::max(m_mostPixels, std::hypot(is.x - should.x, is.y - should.y));
        }
    }
}

// Right and down from the middle of the picture, and the depth.
Vector3 SolveDigits::pixelOf(Camera const& camera, Vector3 const& point) const
{
    Vector3 const seen = camera.toCamera * (point - camera.position);
    return {camera.zoom * seen.x / seen.z, camera.zoom * seen.y / seen.z, seen.z};
}

}
