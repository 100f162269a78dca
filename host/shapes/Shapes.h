#pragma once

#include "model/Project.h"

namespace MarloHost
{

/// Carries contours that are given as they are seen into the plane of their surfaces.
/// @throws KORV_BadArgument where a point isn't on that plane
void carryContoursIntoPlane(ProjectModel& project);

/// Gives a layer the contours and the mesh of its model. The layer, its record and the
/// views must outlive them.
void addShapes(KORV_Layer const& layer, KORV_Layer::Data& data, Anm::Views const& views);

/// The mesh of a layer's model, null where it has none.
std::shared_ptr<ZN::MeshTracking::ParameterSet> makeMesh(KORV_Layer::Data const& data, Anm::Views const& views);

}
