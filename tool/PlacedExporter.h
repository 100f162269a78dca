#pragma once
// Exports that each have their own current layer and view.

#include "Core/ExporterWrapper.h"
#include "FindFormat.h"
#include "Host/Anm.h"

#include <QSet>
#include <QString>

#include <memory>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;
class Session;
struct LayerChoice;

/// Makes a layer, unless it is null, and a view the current ones.
void takePlace(KORV_ProjectManager& project, KORV_Layer const* layer, Anm::View const& view);

/// The files that exports of one run gave, of which no two may have one path.
class TakenPaths
{
public:
    /// @param what takes the paths, in the plural, for the message
    explicit TakenPaths(QString const& what);

    /// @throws Failure as a refusal when the path was taken before
    void take(QString const& path);

private:
    QString m_what;
    QSet<QString> m_paths;
};

/// Makes a layer and a view the current ones, then leaves the work to another exporter.
class PlacedExporter : public Export::ExporterWrapper
{
public:
    /// @param taken shared by all exporters of a run
    PlacedExporter(std::shared_ptr<Export::ExporterWrapper> inner, KORV_Layer const* layer, Anm::View const& view,
                   std::shared_ptr<TakenPaths> taken);

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override;
    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;
    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override;
    QString const& formatDisplayName() const override;
    QString filenameSuggestion(KORV_ProjectManager const& project) const override;

private:
    std::shared_ptr<Export::ExporterWrapper> m_inner;
    KORV_Layer const* m_layer;
    Anm::View m_view;
    std::shared_ptr<TakenPaths> m_taken;
};

/// Why a choice has nothing for the format; empty when it has. What the library
/// itself looks at comes first and in its words. The layer must be the current one.
QString obstacleOf(Session& session, FormatEntry const& format, Export::ExporterWrapper const& exporter,
                   LayerChoice const& layers, std::vector<Anm::View> const& views);

/// For --verbose.
/// @param layer may be null
void logExport(FormatEntry const& format, KORV_Layer const* layer, QString const& path);
