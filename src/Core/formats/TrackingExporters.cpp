// Every exporter of tracking data. A new one is a line here, in the order of the
// formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/AECornerPinExporters.h"
#include "AfterEffects/AETransformExporter.h"
#include "Host/TrackingExporter.h"
#include "Nuke/NukeAsciiExporter.h"
#include "Nuke/NukeCornerPinExporter.h"
#include "Nuke/NukeMeshExporter.h"
#include "Nuke/NukeTrackerExporter.h"
#include "Nuke/MarloBlendTrackingExporter.h"

namespace Export
{

std::vector<TrackingRow> trackingRows()
{
    using F = TrackingDataFormat;
    using Row = TrackingRow;
    return {
        {&F::AE_CORNER_PIN_LEGACY, &Row::make<AELegacyCornerPinExporter>},
        {&F::AE_TRANSFORM, &Row::make<AETransformExporter>},
        {&F::NUKE_ASCII, &Row::make<NukeAsciiExporter>},
        {&F::NUKE_CORNER_PIN, &Row::make<NukeCornerPinExporter>},
        {&F::NUKE_TRACKER, &Row::make<NukeTrackerExporter>},
        {&F::NUKE_MESH_TRACKER, &Row::make<NukeMeshExporter>},
        {&F::AE_CORNER_PIN, &Row::make<AECornerPinExporter>},
        {&F::AE_POWER_PIN, &Row::make<AEPowerPinExporter>},
        {&F::DORIN_CORNER_PIN, &Row::make<VNTCornerPinExporter>},
        {&F::DORIN_CENTER_POINT, &Row::make<KORV_VNTCenterPointExporter>},
        {&F::AE_CORNER_PIN_SIMPLE, &Row::make<AESimpleCornerPinExporter, false, false>},
        {&F::MARLO_BLEND, &Row::make<MarloBlendTrackingExporter>},
        {&F::SCRATCH_CORNER_PIN, &Row::make<ScratchCornerPinExporter>},
        {&F::FLOWBOX_CORNER_PIN, &Row::make<NukeCornerPinExporter>},
        {&F::GLIMMERSET_CORNER_PIN, &Row::make<GlimmersetCornerPinExporter>},
    };
}

}
