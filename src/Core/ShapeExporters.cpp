// Every exporter of shape data. A new one is a line here, in the order of the formats.

#include "Core/ExporterTables.h"

#include "Host/ShapeExporter.h"

namespace Export
{

std::vector<ShapeRow> shapeRows()
{
    using F = ShapeDataFormat;
    using Row = ShapeRow;
    return {
        {&F::GLIMMERSET_FXS, &Row::make<Korvane::GlimmersetShapeExporter>},
    };
}

}
