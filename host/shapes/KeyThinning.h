#pragma once

#include "Outline.h"

namespace MarloHost
{

/// Leaves keys out that linear interpolation between the others gives back: at every frame
/// that had a key, no control point of either edge is seen more than `tolerance` pixels
/// from where it was, and so no point of the curves.
///
/// @param keys of Bezier curves, ascending, with as many vertices each
/// @param kept frames whose keys stay, ascending; those next to frames without a key stay
///        as well, and those that aren't in the view
std::vector<ContourKeyModel> thinnedKeys(std::vector<ContourKeyModel> keys, std::vector<int> const& kept,
                                         PlaneView const& view, double tolerance);

}
