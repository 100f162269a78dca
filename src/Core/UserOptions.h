#pragma once
// What a user chose for one export, in a dialog or a preset.

#include "Core/ExportApi.h"
#include "Host/Anm.h"
#include "Host/CameraSolveExporter.h"
#include "Host/ExportEnums.h"

#include <QString>

#include <any>
#include <optional>
#include <vector>

namespace Export
{

/// Which layers an export concerns. Selections are equal when their modes are and,
/// for a specified layer, the names.
struct MARLO_EXPORT_API LayerSelection
{
    ZN::LayerExportMode mode = ZN::SelectedLayer;

    /// Means something only for a specified layer.
    QString layerName;

    /// The name of the specified layer; empty in all other modes.
    std::optional<QString> specifiedLayer() const;
};
MARLO_EXPORT_API bool operator==(LayerSelection const& left, LayerSelection const& right);
MARLO_EXPORT_API bool operator!=(LayerSelection const& left, LayerSelection const& right);

struct MARLO_EXPORT_API UserTrackingOptions
{
    ZN_TRACKING_OPTION trackingOption = ZN_TRACKING_OPTION_ADJUSTED;

    /// Export the inverse motion.
    bool invert = false;

    /// Take the lens distortion out of exported points.
    bool undistort = false;

    /// Invalid to let suitableReferenceFrame() choose.
    Anm::Context referenceFrame = Anm::Context::invalid();
    LayerSelection layerSelection;
    std::vector<Anm::View> viewsToExport;
};
MARLO_EXPORT_API bool operator==(UserTrackingOptions const& left, UserTrackingOptions const& right);
MARLO_EXPORT_API bool operator!=(UserTrackingOptions const& left, UserTrackingOptions const& right);

struct MARLO_EXPORT_API UserShapeOptions
{
    LayerSelection layerSelection;
    std::vector<Anm::View> viewsToExport;
};
MARLO_EXPORT_API bool operator==(UserShapeOptions const& left, UserShapeOptions const& right);
MARLO_EXPORT_API bool operator!=(UserShapeOptions const& left, UserShapeOptions const& right);

struct MARLO_EXPORT_API UserCameraSolveOptions
{
    KV::CameraSolveExporter::ObjectsToExport objectsToExport = KV::CameraSolveExporter::AllObjects;

    /// A QMap<QString, QVariant> by the keys that the exporter declares. Anything
    /// else counts as an empty map.
    std::any customData;
};
MARLO_EXPORT_API bool operator==(UserCameraSolveOptions const& left, UserCameraSolveOptions const& right);
MARLO_EXPORT_API bool operator!=(UserCameraSolveOptions const& left, UserCameraSolveOptions const& right);

}
