#pragma once

#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "Host/ExportedFiles.h"
#include "Host/HostApi.h"

#include <vector>

class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}

namespace Korvane
{

struct TrackingExporterTypes
{
    /// Index of a surface corner.
    enum SurfaceCorner
    {
        LowerLeft = 0,
        LowerRight = 1,
        UpperLeft = 2,
        UpperRight = 3
    };
};

/// Base of every exporter of tracking data. One object serves one export at a
/// time and keeps nothing from one export to the next.
class MARLO_HOST_API TrackingExporter
{
public:
    struct Options
    {
        /// Export the inverse motion.
        bool invert = false;
        ZN_TRACKING_OPTION trackingOption = ZN_TRACKING_OPTION_BASIC;

        /// How the caller selected layers.
        ZN::LayerExportMode layerExportMode = ZN::SelectedLayer;

        /// Take the lens distortion out of exported points.
        bool undistort = false;

        /// From ExporterHelperBase::framesToExport.
        int framesToExport = 2147483647;
        std::vector<Anm::View> views = {Anm::View::defaultView()};
        int viewMode = 1;
    };

    /// Exports one layer.
    ///
    /// @param path key of the text in the result; nothing is written there
    /// @param referenceFrame where invert, stabilized and relative data start from
    virtual ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                         Anm::Context const& referenceFrame, Options const& options) const = 0;

    virtual void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const;

    virtual ~TrackingExporter();

    TrackingExporter();
    TrackingExporter(TrackingExporter const&);
    TrackingExporter& operator=(TrackingExporter const&);
};

}
