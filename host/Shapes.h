#pragma once

#include "Project.h"

namespace MarloHost
{

/// Gives a layer the contours and the mesh of its model. The layer and the model must
/// outlive them.
void addShapes(KORV_Layer const& layer, KORV_Layer::Data& data);

}
