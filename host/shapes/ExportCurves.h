#pragma once

#include "Host/ExportedShape.h"

namespace MarloHost
{

using Curves = Korvane::ExportedShape::Curves;

/// Curves that share nothing with the given ones.
Curves copyOf(Curves const& curves);

/// The area left of a closed curve: above 0 when it runs counter-clockwise with y up.
double areaOf(Korvane::ExportCurveBase const& curve);

/// Lets the curves run the other way. The first vertex stays first, handles change
/// places.
void turnAround(Curves& curves);

}
