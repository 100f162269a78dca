// Every exporter of camera solves. A new one is a line here, in the order of the
// formats.

#include "Core/ExporterTables.h"

#include "Host/CameraSolveExporter.h"

namespace Export
{

// The row of KestreliaProjectFile is to say `true` behind its exporter: that format
// is offered whatever the product's categories are.
std::vector<CameraSolveRow> cameraSolveRows()
{
    return {};
}

}
