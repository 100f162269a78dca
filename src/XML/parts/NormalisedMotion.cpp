#include "XML/parts/NormalisedMotion.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"

namespace Export
{

namespace
{

/// The transform of a camera with y down as one with y up, and back.
Mtx_Mat33 upsideDown(Mtx_Mat33 transform)
{
    for (double* const entry : {&transform.xy, &transform.yx, &transform.yz, &transform.zy})
    {
        *entry = -*entry;
    }
    return transform;
}

}

// Plain motion starts from a surface that stands where it was placed, so the start is only
// the camera; inverted motion starts from where the reference of the export has it.
NormalisedMotion::NormalisedMotion(KORV_SelectionManager const& layers, KORV_Layer const& layer, KORV_Clip const& clip,
                                   Anm::Context const& reference, Options const& options)
    : m_layers(layers), m_layer(layer), m_clip(clip), m_reference(reference), m_options(options)
{
    bool standsIn = false;
    Mtx_Mat33 const start = options.invert ? transform(reference, standsIn) : mtx_mat33_ident_s();
    m_fromReference = mtx_mat33_invert_s(normalised(start, reference));
}

NormalisedMotion::AtFrame NormalisedMotion::at(int frame) const
{
    Anm::Context const context(Anm::Time::fromInt(frame), m_reference.view(), Anm::ProxyScale::Full);
    bool standsIn = false;
    Mtx_Mat33 matrix = mtx_mat33_rmultm33_s(normalised(transform(context, standsIn), context), m_fromReference);
    if (m_options.invert)
    {
        matrix = mtx_mat33_invert_s(matrix);
    }
    if (matrix.zz != 0)
    {
        matrix = mtx_mat33_divide_s(matrix, matrix.zz);
    }
    return {matrix, standsIn};
}

Mtx_Mat33 NormalisedMotion::transform(Anm::Context const& context, bool& standsIn) const
{
    return upsideDown(m_layers.layerTransform(m_layer, context, m_options.trackingOption, m_reference, &standsIn));
}

// From the directions that the transform gives to coordinates from 0 to 1.
Mtx_Mat33 NormalisedMotion::normalised(Mtx_Mat33 const& transform, Anm::Context const& context) const
{
    Mtx_Camera camera = m_clip.camera(context);
    camera.y0 = m_layers.layerFrameSize(m_layer, Anm::ProxyScale::Full).height() - camera.y0;
    mtx_camera_internalize(camera);
    Mtx_Mat33 const inPixels = mtx_mat33_lmultl33T_s(transform, mtx_camera_fill_matrix_s(camera));
    ZN_BaseClipInfo const& clip = m_clip.info();
    Mtx_Mat33 const toUnit{1.0 / clip.width(), 0, 0, 0, 1.0 / clip.height(), 0, 0, 0, 1 / camera.z0};
    return mtx_mat33_rmultm33_s(toUnit, inPixels);
}

}
