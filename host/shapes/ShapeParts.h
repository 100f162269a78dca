#pragma once

#include "ExportCurves.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"

namespace MarloHost
{

/// What is exported of one contour.
struct ShapePart
{
    std::string name;
    Curves mask;
    Curves blur;

    /// Shared by all contours of a layer, never changed.
    std::shared_ptr<std::vector<KORV_ExportHomography> const> transform;

    /// For each key: -1 where what is counter-clockwise in the numbers of the curve is
    /// clockwise on screen, else 1.
    std::vector<double> facing;
};

/// How and when a layer is exported; the arguments of Korvane::ExportedShape.
struct ShapeRequest
{
    int firstFrame;
    int lastFrame;
    Anm::View view;
    unsigned int flags;
    double featherScale;
    QPointF offset;
};

/// One part for each contour of the layer that is active, in drawing order.
std::vector<ShapePart> makeShapeParts(KORV_ProjectManager const& project, KORV_Layer const& layer,
                                      ShapeRequest const& request);

}
