// Every exporter of shape data. A new one is a line here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/MarloShapeAEExporter.h"
#include "Host/ShapeExporter.h"
#include "Nuke/MarloBlendExporter.h"
#include "Nuke/NukeRotoExporters.h"

namespace Export
{

std::vector<ShapeRow> shapeRows()
{
    using F = ShapeDataFormat;
    using Row = ShapeRow;
    return {
        {&F::AE_MARLO_SHAPE, &Row::make<MarloShapeAEExporter>},
        {&F::NUKE_ROTO_PAINT_WITH_MATRIX, &Row::make<NukeRotoPaintExporter, true>},
        {&F::NUKE_ROTO_PAINT_NO_MATRIX, &Row::make<NukeRotoPaintExporter, false>},
        {&F::NUKE_ROTO_WITH_MATRIX, &Row::make<NukeRotoExporter, true>},
        {&F::NUKE_ROTO_NO_MATRIX, &Row::make<NukeRotoExporter, false>},
        {&F::NUKE_SPLINE_WARP, &Row::make<NukeSplineWarpExporter>},
        {&F::MARLO_BLEND, &Row::make<MarloBlendExporter, false>},
        {&F::GLIMMERSET_FXS, &Row::make<Korvane::GlimmersetShapeExporter>},
    };
}

}
