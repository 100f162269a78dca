#include "Core/ExporterFactories.h"

#include "Core/formats/ExporterMap.h"
#include "Core/formats/ExporterTables.h"
#include "Host/CameraSolveExporter.h"
#include "Host/Product.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"

namespace Export
{

namespace
{

using TrackingMap = ExporterMap<TrackingDataFormat, Korvane::TrackingExporter>;
using ShapeMap = ExporterMap<ShapeDataFormat, Korvane::ShapeExporter>;
using CameraSolveMap = ExporterMap<CameraSolveFormat, KV::CameraSolveExporter>;

TrackingMap& trackingExporters()
{
    static TrackingMap exporters(
        trackingRows(), [](TrackingDataFormat const& format, TXIHost const* host)
        { return isOffered(format, Product::trackExportOptions(), Product::trackExportOptionsExtra(), host); });
    return exporters;
}

ShapeMap& shapeExporters()
{
    static ShapeMap exporters(
        shapeRows(), [](ShapeDataFormat const& format, TXIHost const* host)
        { return isOffered(format, Product::shapeExportOptions(), Product::shapeExportOptionsExtra(), host); });
    return exporters;
}

CameraSolveMap& cameraSolveExporters()
{
    static CameraSolveMap exporters(
        cameraSolveRows(), [](CameraSolveFormat const& format, TXIHost const*)
        { return format.options().isEmpty() || format.options().intersects(Product::cameraSolveExportOptions()); });
    return exporters;
}

template <typename Exporter>
void requireExporter(std::shared_ptr<Exporter> const& exporter)
{
    if (!exporter)
    {
        throwBadArgument(QStringLiteral("There is no exporter to register"));
    }
}

}

// The look-ups with and without a project each keep the map as their own first call
// built it: later hosts don't widen it there, only forEachFormat() does that.

void TrackingExporterFactory::forEachFormat(std::function<void(TrackingDataFormat const&)> const& function,
                                            TXIHost const* host)
{
    trackingExporters().forEachFormat(function, host);
}

std::shared_ptr<Korvane::TrackingExporter> TrackingExporterFactory::getExporter(TrackingDataFormat const& format)
{
    static TrackingMap::Map const* const map = &trackingExporters().built(nullptr);
    return TrackingMap::find(*map, format, tr("Invalid export format"));
}

std::shared_ptr<Korvane::TrackingExporter> TrackingExporterFactory::getExporter(TrackingDataFormat const& format,
                                                                                KORV_ProjectManager const& project)
{
    static TrackingMap::Map const* const map = &trackingExporters().built(hostOf(project));
    return TrackingMap::find(*map, format, tr("Invalid export format"));
}

void TrackingExporterFactory::registerCustomExporter(TrackingDataFormat const& format,
                                                     std::shared_ptr<Korvane::TrackingExporter> const& exporter)
{
    requireExporter(exporter);
    trackingExporters().add(format, exporter,
                            tr("Format with '%1' name already has been registered").arg(format.displayName()));
}

void TrackingExporterFactory::unregisterExporter(TrackingDataFormat const& format)
{
    trackingExporters().remove(format, tr("Invalid tracking data format"));
}

void ShapeExporterFactory::forEachFormat(std::function<void(ShapeDataFormat const&)> const& function,
                                         TXIHost const* host)
{
    shapeExporters().forEachFormat(function, host);
}

std::shared_ptr<Korvane::ShapeExporter> ShapeExporterFactory::getExporter(ShapeDataFormat const& format)
{
    static ShapeMap::Map const* const map = &shapeExporters().built(nullptr);
    return ShapeMap::find(*map, format, tr("Invalid export format"));
}

std::shared_ptr<Korvane::ShapeExporter> ShapeExporterFactory::getExporter(ShapeDataFormat const& format,
                                                                          KORV_ProjectManager const& project)
{
    static ShapeMap::Map const* const map = &shapeExporters().built(hostOf(project));
    return ShapeMap::find(*map, format, tr("Invalid export format"));
}

void ShapeExporterFactory::registerCustomExporter(ShapeDataFormat const& format,
                                                  std::shared_ptr<Korvane::ShapeExporter> const& exporter)
{
    requireExporter(exporter);
    shapeExporters().add(format, exporter,
                         tr("Format with '%1' name already has been registered").arg(format.displayName()));
}

void ShapeExporterFactory::unregisterExporter(ShapeDataFormat const& format)
{
    shapeExporters().remove(format, tr("Invalid shape data format"));
}

void CameraSolveExporterFactory::forEachFormat(std::function<void(CameraSolveFormat const&)> const& function)
{
    cameraSolveExporters().forEachFormat(function, nullptr);
}

std::shared_ptr<KV::CameraSolveExporter> CameraSolveExporterFactory::getExporter(CameraSolveFormat const& format)
{
    static CameraSolveMap::Map const* const map = &cameraSolveExporters().built(nullptr);
    return CameraSolveMap::find(*map, format, tr("Invalid export format"));
}

std::optional<CameraSolveFormat> CameraSolveExporterFactory::formatByName(QString const& internalName)
{
    CameraSolveMap::Map const& map = cameraSolveExporters().built(nullptr);
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
    {
        if (entry.key().internalName() == internalName)
        {
            return entry.key();
        }
    }
    return std::nullopt;
}

bool CameraSolveExporterFactory::isRegistered(CameraSolveFormat const& format)
{
    return cameraSolveExporters().built(nullptr).contains(format);
}

void CameraSolveExporterFactory::registerCustomExporter(CameraSolveFormat const& format,
                                                        std::shared_ptr<KV::CameraSolveExporter> const& exporter)
{
    requireExporter(exporter);
    cameraSolveExporters().add(format, exporter,
                               tr("Format with '%1' name already has been registered").arg(format.displayName()));
}

void CameraSolveExporterFactory::unregisterExporter(CameraSolveFormat const& format)
{
    cameraSolveExporters().remove(format, tr("Invalid camera solve format"));
}

}
