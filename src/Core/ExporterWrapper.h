#pragma once
// An exporter together with what the user chose. The export operations
// (ExportFunctions.h) see nothing but ExporterWrapper, whatever the data kind. Exporters
// that wrappers are made with must not be null, but where it says so.

#include "Core/DataFormat.h"
#include "Core/ExportApi.h"
#include "Core/UserOptions.h"
#include "Host/ExportedFiles.h"

#include <QString>
#include <boost/shared_ptr.hpp>

#include <any>
#include <memory>
#include <optional>
#include <utility>

class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}
namespace Korvane
{
class ShapeExporter;
class TrackingExporter;
}

namespace Export
{

class LensExporter;

class MARLO_EXPORT_API ExporterWrapper
{
public:
    /// Whether the project has what the export needs; if not, why, untranslated.
    virtual std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const = 0;

    /// Runs the export.
    /// @param path target file; empty for the clipboard
    /// @throws what the exporter throws; std::runtime_error when a specified layer is gone
    virtual Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const = 0;

    /// Puts the text of an export on the clipboard, in the way of the format.
    virtual void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const = 0;

    virtual QString const& formatDisplayName() const = 0;

    /// A file name without extension.
    virtual QString filenameSuggestion(KORV_ProjectManager const& project) const = 0;

    virtual ~ExporterWrapper();

protected:
    ExporterWrapper() = default;
    ExporterWrapper(ExporterWrapper const&) = default;
    ExporterWrapper(ExporterWrapper&&) = default;
    ExporterWrapper& operator=(ExporterWrapper const&) = default;
    ExporterWrapper& operator=(ExporterWrapper&&) = default;
};

class MARLO_EXPORT_API TrackingExporterWrapper : public ExporterWrapper
{
public:
    /// @param wrapperCapability whether the format has that capability; kept, without effect here
    TrackingExporterWrapper(std::shared_ptr<Korvane::TrackingExporter> exporter, UserTrackingOptions const& options,
                            bool wrapperCapability, QString const& displayName);

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override;
    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;
    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override;
    QString const& formatDisplayName() const override;
    QString filenameSuggestion(KORV_ProjectManager const& project) const override;

private:
    UserTrackingOptions m_options;
    bool m_wrapperCapability;
    QString m_displayName;
    std::shared_ptr<Korvane::TrackingExporter> m_exporter;
};

class MARLO_EXPORT_API ShapeExporterWrapper : public ExporterWrapper
{
public:
    /// @param hostPresent whether the program runs inside a plug-in host
    /// @param exporter used for the clipboard alone, null where that isn't asked for:
    ///        getExportResult() takes the one that the project's host is offered
    ShapeExporterWrapper(UserShapeOptions const& options, ShapeDataFormat const& format, bool hostPresent,
                         std::shared_ptr<Korvane::ShapeExporter> exporter);

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override;

    /// @throws also KORV_BadArgument when the format isn't offered to the project's
    ///         host; std::logic_error when its exporter is null
    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;
    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override;
    QString const& formatDisplayName() const override;
    QString filenameSuggestion(KORV_ProjectManager const& project) const override;

private:
    UserShapeOptions m_options;
    ShapeDataFormat m_format;
    bool m_hostPresent;
    std::shared_ptr<Korvane::ShapeExporter> m_exporter;
};

class MARLO_EXPORT_API CameraSolveExporterWrapper : public ExporterWrapper
{
public:
    /// @param fileNameFollowsLayers whether a suggested name is that of the layers, not of the project
    CameraSolveExporterWrapper(UserCameraSolveOptions const& options, bool fileNameFollowsLayers,
                               QString const& displayName, std::shared_ptr<KV::CameraSolveExporter> const& exporter);

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override;
    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;
    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override;
    QString const& formatDisplayName() const override;
    QString filenameSuggestion(KORV_ProjectManager const& project) const override;

private:
    std::any m_customData;
    KV::CameraSolveExporter::ObjectsToExport m_objectsToExport;
    bool m_fileNameFollowsLayers;
    QString m_displayName;
    std::shared_ptr<KV::CameraSolveExporter> m_exporter;
};

class MARLO_EXPORT_API LensExporterWrapper : public ExporterWrapper
{
public:
    /// @param userData holds what customDataTypeName() of the format says
    LensExporterWrapper(unsigned int clipId, std::any const& userData, QString const& displayName,
                        boost::shared_ptr<LensExporter const> const& exporter);

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override;
    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;
    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override;
    QString const& formatDisplayName() const override;
    QString filenameSuggestion(KORV_ProjectManager const& project) const override;

private:
    unsigned int m_clipId;
    std::any m_userData;
    QString m_displayName;
    boost::shared_ptr<LensExporter const> m_exporter;
};

}
