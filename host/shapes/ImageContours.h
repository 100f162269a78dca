#pragma once

#include "plane/SurfaceMotion.h"

#include <QStringList>

namespace MarloHost
{

/// The motion that contours in pixels of their own frames are given with: that of the first
/// view.
SurfaceMotion motionOfImageContours(LayerModel const& layer, QStringList const& views);

/// Carries a key of a contour from where it is seen at its frame into the plane: vertices and
/// tips of handles, or points of an X-spline.
/// @return false, with numbers of no use, where one of them is beyond the plane's horizon or
///         lies 1e7 pixels away in it
bool carryIntoPlane(ContourKeyModel& key, bool xspline, SurfaceMotion const& motion);

}
