#pragma once

#include "LayerMotion.h"
#include "model/Project.h"

namespace MarloHost
{

/// How the plane of a layer moves in one view, with the user's adjust offsets in it, at
/// any host frame: what contours and meshes ride on. Frames without a usable homography
/// have that of the nearest frame with one; without any the plane stands still.
class SurfaceMotion
{
public:
    /// @param track null where there is none
    SurfaceMotion(LayerModel const& layer, TrackModel const* track);

    /// @param viewIndex position of the view in the project; -1 for none
    SurfaceMotion(KORV_Layer::Data const& layer, int viewIndex);

    /// From the plane in the surface's reference frame to the picture, in pixels of the
    /// clip's raster. Its sign is such that what is seen comes out with w above 0.
    Homography at(int frame) const;

    /// From where the track has the plane to where the user moved it. The identity in
    /// layers that nobody adjusted.
    Homography correction(int frame) const;

    /// Whether the plane stands still as there is no usable homography.
    bool isUntracked() const;

private:
    /// The frames that can be used and what is there.
    std::vector<int> m_frames;
    std::vector<Homography> m_maps;

    /// Empty in layers that nobody adjusted.
    std::vector<Homography> m_corrections;
};

/// What the contours of an export ride on. Tells the user where that is nothing.
SurfaceMotion motionOfContours(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view);

/// The motion in every view, by the index of the view.
std::vector<SurfaceMotion> motionsOfViews(KORV_Layer::Data const& layer);

}
