#pragma once

#include "Core/ExportApi.h"
#include "Host/Anm.h"
#include "Host/TrackingExporter.h"
#include "mtx/Camera.h"

class KORV_Clip;
class KORV_Layer;
class KORV_SelectionManager;

namespace Export
{

/// The motion of a layer's surface in coordinates from 0 to 1 of the picture, y up, as a map
/// of column vectors (x, y, 1).
class MARLO_EXPORT_API NormalisedMotion
{
public:
    using Options = Korvane::TrackingExporter::Options;

    /// @param clip the layer's base clip; it outlives this, as do layer and layers
    /// @param reference frame and view of the export
    NormalisedMotion(KORV_SelectionManager const& layers, KORV_Layer const& layer, KORV_Clip const& clip,
                     Anm::Context const& reference, Options const& options);

    struct AtFrame
    {
        /// With a last entry of 1, unless that is 0.
        Mtx_Mat33 matrix;

        /// Whether it is that of another frame.
        bool standsIn;
    };

    /// From the surface's reference frame to the host frame, or inverted from there to the
    /// reference of the export.
    AtFrame at(int frame) const;

private:
    Mtx_Mat33 transform(Anm::Context const& context, bool& standsIn) const;
    Mtx_Mat33 normalised(Mtx_Mat33 const& transform, Anm::Context const& context) const;

    KORV_SelectionManager const& m_layers;
    KORV_Layer const& m_layer;
    KORV_Clip const& m_clip;
    Anm::Context m_reference;
    Options m_options;

    /// From coordinates from 0 to 1 to what the transforms start from.
    Mtx_Mat33 m_fromReference;
};

}
