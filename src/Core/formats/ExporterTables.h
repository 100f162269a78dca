#pragma once
// The tables that name every exporter class, one file per data kind, and what each
// format declares about itself. Adding a format means adding its row there.

#include "Core/DataFormat.h"
#include "Core/formats/ExporterMap.h"

#include <boost/shared_ptr.hpp>

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

class LensExporter;

using TrackingRow = ExporterRow<TrackingDataFormat, Korvane::TrackingExporter>;
using ShapeRow = ExporterRow<ShapeDataFormat, Korvane::ShapeExporter>;
using CameraSolveRow = ExporterRow<CameraSolveFormat, KV::CameraSolveExporter>;

struct LensRow
{
    LensDataFormat const& (*format)();
    boost::shared_ptr<LensExporter const> (*create)();
    FormatTraits traits;
};

// In the order of registration.
std::vector<TrackingRow> trackingRows();
std::vector<ShapeRow> shapeRows();
std::vector<CameraSolveRow> cameraSolveRows();
std::vector<LensRow> lensRows();

}
