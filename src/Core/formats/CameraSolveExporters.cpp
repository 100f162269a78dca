// Every exporter of camera solves. A new one is a line here, in the order of the
// formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/AE3DMotionExporter.h"
#include "Host/CameraSolveExporter.h"

namespace Export
{

// The row of KestreliaProjectFile is to say `true` behind its exporter: that format
// is offered whatever the product's categories are.
std::vector<CameraSolveRow> cameraSolveRows()
{
    using F = CameraSolveFormat;
    using Row = CameraSolveRow;
    return {
        {&F::AE, &Row::make<AE3DMotionExporter, 2>},
        {&F::AE_legacy, &Row::make<AE3DMotionExporter, 1>},
    };
}

}
