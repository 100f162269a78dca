// The motion of a layer as a camera with y down sees it, and that camera.

#include "LayerMotion.h"
#include "marlohost/ClipLens.h"
#include "model/Project.h"

#include <algorithm>

namespace
{

using MarloHost::ClipModel;
using MarloHost::Homography;
using MarloHost::LayerMotion;
using MarloHost::TrackModel;

/// The track of a layer in a view; null where it has none.
TrackModel const* trackIn(KORV_Layer const& layer, Anm::View const& view)
{
    std::vector<TrackModel const*> const& tracks = layer.data().tracks;
    int const index = view.id() - Anm::View::defaultViewId();
    bool const isView = index >= 0 && index < static_cast<int>(tracks.size());
    TrackModel const* const track = isView ? tracks[static_cast<std::size_t>(index)] : nullptr;
    return track && !track->frames.empty() ? track : nullptr;
}

Mtx_Camera cameraOf(ClipModel const& clip, double frame)
{
    static MarloHost::LensModel const none;
    MarloHost::LensModel const& lens = clip.lens ? *clip.lens : none;
    double const lines = clip.interlaced ? clip.height / 2 : clip.height;
    double const aspect = clip.width * clip.pixelAspect / clip.height;
    Mtx_Camera camera;
    camera.focalLength = valueAt(lens.focalLength, frame) * lines;
    camera.focalAspect = valueAt(lens.squeeze, frame) * clip.width / aspect / lines;
    camera.x0 = (valueAt(lens.centreX, frame) / aspect + 0.5) * clip.width;
    camera.y0 = (0.5 - valueAt(lens.centreY, frame)) * lines;
    mtx_camera_internalize(camera);
    return camera;
}

/// The camera's matrix with y0 from the bottom edge, which is y up.
Mtx_Mat33 upwardMatrix(ClipModel const& clip, double frame)
{
    Mtx_Camera camera = cameraOf(clip, frame);
    double const lines = clip.interlaced ? clip.height / 2 : clip.height;
    camera.y0 = lines - camera.y0;
    return mtx_camera_fill_matrix_s(camera);
}

Mtx_Mat33 matrixOf(Homography const& h)
{
    return {h.m[0], h.m[1], h.m[2], h.m[3], h.m[4], h.m[5], h.m[6], h.m[7], h.m[8]};
}

// D m D with D = diag(1, -1, 1).
Mtx_Mat33 upsideDown(Mtx_Mat33 m)
{
    for (double* const entry : {&m.xy, &m.yx, &m.yz, &m.zy})
    {
        *entry = -*entry;
    }
    return m;
}

/// The motion at a tracked frame that can be used.
struct UsableMotion
{
    Homography homography;
    int frame;
};

std::optional<UsableMotion> usableMotion(KORV_Layer const& layer, TrackModel const& track, int frame,
                                         ZN_TRACKING_OPTION option, int start)
{
    ZN_BaseClipInfo const& clip = layer.data().clip->info();
    LayerMotion const motion(
        *layer.data().model, track,
        {option, false, start, static_cast<double>(clip.width()), static_cast<double>(clip.height()), nullptr});
    std::optional<Homography> found;
    auto const isUsable = [&](std::size_t index)
    {
        found = motion.map(index);
        return found.has_value();
    };
    std::optional<std::size_t> const index = MarloHost::nearestIndexWhere(track.frames, frame, isUsable);
    return index ? std::optional<UsableMotion>({*found, track.frames[*index]}) : std::nullopt;
}

}

bool KORV_SelectionManager::isLayerTrackedAtFrame(KORV_Layer const& layer, Anm::Context context) const
{
    TrackModel const* const track = trackIn(layer, context.view());
    return track && std::binary_search(track->frames.begin(), track->frames.end(), context.frameValue());
}

QSize KORV_SelectionManager::layerFrameSize(KORV_Layer const& layer, Anm::ProxyScale const& scale) const
{
    ZN_BaseClipInfo const& clip = layer.data().clip->info();
    int const divisor = 1 << (Anm::ProxyScale::Full - scale.value());
    auto const scaled = [&](unsigned int pixels) { return (static_cast<int>(pixels) + divisor - 1) / divisor; };
    return {scaled(clip.width()), scaled(clip.height())};
}

Mtx_Mat33 KORV_SelectionManager::layerTransform(KORV_Layer const& layer, Anm::Context const& context,
                                                ZN_TRACKING_OPTION option, Anm::Context const& start,
                                                bool* standsIn) const
{
    int const frame = context.frameValue();
    TrackModel const* const track = trackIn(layer, context.view());
    std::optional<UsableMotion> const motion =
        track ? usableMotion(layer, *track, frame, option, start.frameValue()) : std::nullopt;
    if (standsIn)
    {
        *standsIn = !motion || motion->frame != frame;
    }
    ClipModel const& clip = *layer.data().clipModel;
    Mtx_Mat33 const seen =
        mtx_mat33_rmultm33_s(mtx_mat33_invert_s(upwardMatrix(clip, frame)),
                             mtx_mat33_rmultm33_s(matrixOf(motion ? motion->homography : Homography()),
                                                  upwardMatrix(clip, start.frameValue())));
    return upsideDown(seen);
}

Mtx_Camera KORV_Clip::camera(Anm::Context const& context) const
{
    return cameraOf(*m_data->model, context.frameValue());
}
