#pragma once
// From format to exporter. Each factory owns one exporter per format until the
// process ends; exporters are made when a factory is first asked for anything.
//
// Exporters are never null. One serves one export at a time, and all exports run on the
// thread of the application's user interface: exporters keep their working data in
// themselves while they run, and nothing behind it. The factories may be asked on any
// thread for the first time, but formats are added and removed on that one only.

#include "Core/DataFormat.h"
#include "Core/ExportApi.h"

#include <functional>
#include <memory>
#include <optional>

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

class MARLO_EXPORT_API TrackingExporterFactory
{
    Q_DECLARE_TR_FUNCTIONS(Export::TrackingExporterFactory)

public:
    /// Calls the function for each offered format, in the order of display names.
    /// The function gets copies and may call the factory itself.
    /// @param host null outside of a plug-in
    static void forEachFormat(std::function<void(TrackingDataFormat const&)> const& function, TXIHost const* host);

    /// The exporter of a format, with no host or with that of the project.
    /// @throws KORV_BadArgument when the format isn't offered
    static std::shared_ptr<Korvane::TrackingExporter> getExporter(TrackingDataFormat const& format);
    static std::shared_ptr<Korvane::TrackingExporter> getExporter(TrackingDataFormat const& format,
                                                                  KORV_ProjectManager const& project);

    /// Offers one more format, whatever its categories.
    /// @throws KORV_BadArgument for a null exporter, and when a format of the same display
    ///         name is there
    static void registerCustomExporter(TrackingDataFormat const& format,
                                       std::shared_ptr<Korvane::TrackingExporter> const& exporter);

    /// @throws KORV_BadArgument when the format isn't there
    static void unregisterExporter(TrackingDataFormat const& format);
};

class MARLO_EXPORT_API ShapeExporterFactory
{
    Q_DECLARE_TR_FUNCTIONS(Export::ShapeExporterFactory)

public:
    /// Calls the function for each offered format, in the order of display names.
    /// The function gets copies and may call the factory itself.
    /// @param host null outside of a plug-in
    static void forEachFormat(std::function<void(ShapeDataFormat const&)> const& function, TXIHost const* host);

    /// The exporter of a format, with no host or with that of the project.
    /// @throws KORV_BadArgument when the format isn't offered
    static std::shared_ptr<Korvane::ShapeExporter> getExporter(ShapeDataFormat const& format);
    static std::shared_ptr<Korvane::ShapeExporter> getExporter(ShapeDataFormat const& format,
                                                               KORV_ProjectManager const& project);

    /// Offers one more format, whatever its category.
    /// @throws KORV_BadArgument for a null exporter, and when a format of the same display
    ///         name is there
    static void registerCustomExporter(ShapeDataFormat const& format,
                                       std::shared_ptr<Korvane::ShapeExporter> const& exporter);

    /// @throws KORV_BadArgument when the format isn't there
    static void unregisterExporter(ShapeDataFormat const& format);
};

/// Plug-in hosts don't narrow camera solve formats.
class MARLO_EXPORT_API CameraSolveExporterFactory
{
    Q_DECLARE_TR_FUNCTIONS(Export::CameraSolveExporterFactory)

public:
    /// Calls the function for each offered format, in the order of display names.
    /// The function gets copies and may call the factory itself.
    static void forEachFormat(std::function<void(CameraSolveFormat const&)> const& function);

    /// @throws KORV_BadArgument when the format isn't offered
    static std::shared_ptr<KV::CameraSolveExporter> getExporter(CameraSolveFormat const& format);

    /// The offered format of that internal name; empty when there is none.
    static std::optional<CameraSolveFormat> formatByName(QString const& internalName);

    static bool isRegistered(CameraSolveFormat const& format);

    /// Offers one more format, whatever its category.
    /// @throws KORV_BadArgument for a null exporter, and when a format of the same display
    ///         name is there
    static void registerCustomExporter(CameraSolveFormat const& format,
                                       std::shared_ptr<KV::CameraSolveExporter> const& exporter);

    /// @throws KORV_BadArgument when the format isn't there
    static void unregisterExporter(CameraSolveFormat const& format);
};

}
