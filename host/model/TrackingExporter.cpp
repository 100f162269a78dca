#include "Host/TrackingExporter.h"

#include "Host/ExporterHelper.h"
#include "Host/Fnd.h"

namespace ZN
{

ProgressRange::~ProgressRange() = default;

}

namespace Korvane
{

TrackingExporter::TrackingExporter() = default;
TrackingExporter::TrackingExporter(TrackingExporter const&) = default;
TrackingExporter& TrackingExporter::operator=(TrackingExporter const&) = default;
TrackingExporter::~TrackingExporter() = default;

void TrackingExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const
{
    smartCopy(clipboard, text);
}

}
