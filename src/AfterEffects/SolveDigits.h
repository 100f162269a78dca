#pragma once

#include "Host/CameraSolveHelper.h"

#include <vector>

namespace Export
{

/// Measures what the six digits of a text cost in the picture: solved points through the
/// camera, with the numbers as they are and as they are printed. A long shot with many points
/// is measured in some of its frames, evenly spread.
class SolveDigits
{
public:
    /// Something that points may hang on: Rx Ry Rz of its angles, percent.
    struct Placement
    {
        Sabrel::Matrix33 rotation;
        Sabrel::Vector3 scale;
        Sabrel::Vector3 position;

        Sabrel::Vector3 apply(Sabrel::Vector3 const& p) const;
    };

    /// The same in each of the frames, as it is and as it is printed; empty for the scene.
    struct Carrier
    {
        std::vector<Placement> exact;
        std::vector<Placement> printed;
    };

    /// @param camera at least one sample; x right, y down, z away, order 21
    /// @param pixels of the picture, square ones, that a unit of the focal length fills
    /// @param width,height of the picture in square pixels
    /// @param positionScale times every position
    /// @param points how many there are about
    SolveDigits(Korvane::CameraSolve::CameraAnimData const& camera, double pixels, double width, double height,
                double positionScale, std::size_t points);

    /// @param data scales in percent, one sample or as many as the camera has
    /// @param parent what it hangs on
    Carrier carrier(Korvane::CameraSolve::PointAnimData const& data, Carrier const& parent) const;

    void measure(Korvane::CameraSolve::PointAnimData const& point, Carrier const& parent);

    /// The largest distance of the points in the picture from where they should be seen.
    double mostPixels() const
    {
        return m_mostPixels;
    }

private:
    struct Camera
    {
        Sabrel::Matrix33 toCamera;
        Sabrel::Vector3 position;
        double zoom;
    };

    Sabrel::Vector3 pixelOf(Camera const& camera, Sabrel::Vector3 const& point) const;

    double m_halfWidth;
    double m_halfHeight;
    double m_positionScale;

    /// Samples of the camera that are looked at, and the camera there.
    std::vector<std::size_t> m_frames;
    std::vector<Camera> m_exact;
    std::vector<Camera> m_printed;
    double m_mostPixels = 0.0;
};

}
