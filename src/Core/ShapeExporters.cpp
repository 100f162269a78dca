#include "Core/ExporterTables.h"

#include "Host/ShapeExporter.h"

namespace Export
{

std::vector<ShapeRow> shapeRows()
{
    return {};
}

}
