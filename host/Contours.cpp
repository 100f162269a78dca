// Roto contours.

#include "Shapes.h"

#include "Host/Contour.h"

Korvane::Contour::~Contour() = default;

namespace MarloHost
{

void addShapes(KORV_Layer const&, KORV_Layer::Data&)
{
}

}
