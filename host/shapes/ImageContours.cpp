// Roto from elsewhere: contours in pixels of the frames that their keys are at.

#include "ImageContours.h"

#include "Host/KORV_Exception.h"
#include "Outline.h"
#include "Shapes.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

constexpr double FARTHEST = 1e7;

bool isOnPlane(double x, double y, Homography const& map)
{
    return std::fabs(x) <= FARTHEST && std::fabs(y) <= FARTHEST && map.project({x, y}).w > 0;
}

bool carryBack(std::vector<double>& numbers, bool xspline, Homography const& map)
{
    carryEdge(xspline, map.inverse(), numbers);
    std::size_t const stride = xspline ? 3 : 6;
    bool isThere = true;
    for (std::size_t i = 0; i < numbers.size(); i += stride)
    {
        double const x = numbers[i];
        double const y = numbers[i + 1];
        isThere &= isOnPlane(x, y, map);
        for (std::size_t handle = 2; !xspline && handle < stride; handle += 2)
        {
            isThere &= isOnPlane(x + numbers[i + handle], y + numbers[i + handle + 1], map);
        }
    }
    return isThere;
}

}

SurfaceMotion motionOfImageContours(LayerModel const& layer, QStringList const& views)
{
    auto const track = std::find_if(layer.tracks.begin(), layer.tracks.end(),
                                    [&](TrackModel const& candidate)
                                    { return candidate.view.isEmpty() || candidate.view == views.front(); });
    return SurfaceMotion(layer, track == layer.tracks.end() ? nullptr : &*track);
}

bool carryIntoPlane(ContourKeyModel& key, bool xspline, SurfaceMotion const& motion)
{
    Homography const map = motion.at(key.frame);
    return carryBack(key.points, xspline, map) && carryBack(key.feather, xspline, map);
}

void carryContoursIntoPlane(ProjectModel& project)
{
    for (LayerModel& layer : project.layers)
    {
        bool const areInImage = std::any_of(layer.contours.begin(), layer.contours.end(),
                                            [](ContourModel const& contour) { return contour.inImage; });
        SurfaceMotion const motion =
            areInImage ? motionOfImageContours(layer, project.views) : SurfaceMotion(layer, nullptr);
        for (ContourModel& contour : layer.contours)
        {
            for (std::size_t key = 0; contour.inImage && key < contour.keys.size(); ++key)
            {
                if (!carryIntoPlane(contour.keys[key], contour.xspline, motion))
                {
                    throw KORV_BadArgument(__FILE__, __LINE__,
                                           QStringLiteral("Contour \"%1\" isn't on its surface").arg(contour.name),
                                           QString());
                }
            }
            contour.inImage = false;
        }
    }
}

}
