#pragma once
// The tables that name every exporter class, one file per data kind. Adding a
// format means adding its row there.

#include "Core/DataFormat.h"
#include "Core/formats/ExporterMap.h"

#include <vector>

namespace KV
{
class CameraSolveExporter;
}
namespace Korvane
{
class ShapeExporter;
class TrackingExporter;
}

namespace Export
{

using TrackingRow = ExporterRow<TrackingDataFormat, Korvane::TrackingExporter>;
using ShapeRow = ExporterRow<ShapeDataFormat, Korvane::ShapeExporter>;
using CameraSolveRow = ExporterRow<CameraSolveFormat, KV::CameraSolveExporter>;

// In the order of registration.
std::vector<TrackingRow> trackingRows();
std::vector<ShapeRow> shapeRows();
std::vector<CameraSolveRow> cameraSolveRows();

}
