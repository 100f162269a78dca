#include "PlacedExporter.h"

#include "Failure.h"
#include "Host/Fnd.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Selection.h"
#include "Session.h"
#include "marlohost/ProjectFile.h"

void takePlace(KORV_ProjectManager& project, KORV_Layer const* layer, Anm::View const& view)
{
    if (layer)
    {
        MarloHost::setCurrentLayer(project, layer->numericID());
    }
    MarloHost::setCurrentView(project, view);
}

TakenPaths::TakenPaths(QString const& what) : m_what(what)
{
}

void TakenPaths::take(QString const& path)
{
    if (m_paths.contains(path))
    {
        throw Failure(Refused, QStringLiteral("two ") + m_what + QStringLiteral(" would be written to ") + path);
    }
    m_paths.insert(path);
}

PlacedExporter::PlacedExporter(std::shared_ptr<Export::ExporterWrapper> inner, KORV_Layer const* layer,
                               Anm::View const& view, std::shared_ptr<TakenPaths> taken)
    : m_inner(std::move(inner)), m_layer(layer), m_view(view), m_taken(std::move(taken))
{
}

std::pair<bool, std::optional<char const*>> PlacedExporter::isExportPossible(KORV_ProjectManager& project) const
{
    takePlace(project, m_layer, m_view);
    return m_inner->isExportPossible(project);
}

Korvane::ExportedFiles PlacedExporter::getExportResult(KORV_ProjectManager& project, QString const& path) const
{
    takePlace(project, m_layer, m_view);
    Korvane::ExportedFiles result = m_inner->getExportResult(project, path);
    for (QString const& file : result.files.keys())
    {
        m_taken->take(file);
    }
    return result;
}

void PlacedExporter::setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const
{
    m_inner->setClipboardText(clipboard, text);
}

QString const& PlacedExporter::formatDisplayName() const
{
    return m_inner->formatDisplayName();
}

QString PlacedExporter::filenameSuggestion(KORV_ProjectManager const& project) const
{
    return m_inner->filenameSuggestion(project);
}

QString obstacleOf(Session& session, FormatEntry const& format, Export::ExporterWrapper const& exporter,
                   LayerChoice const& layers, std::vector<Anm::View> const& views)
{
    KORV_ProjectManager& project = session.project();
    auto const [isPossible, reason] = exporter.isExportPossible(project);
    if (!isPossible)
    {
        return QString::fromUtf8(reason.value_or("Nothing to export"));
    }
    if (format.kind() == Kind::Tracking && layers.current && !session.isTracked(*layers.current, views))
    {
        return QStringLiteral("Layer \"") + layers.current->name() + QStringLiteral("\" has no tracking data");
    }
    if (format.traits().needs.testFlag(Export::NeedsMesh) && layers.current && !session.hasMesh(*layers.current, views))
    {
        return QStringLiteral("Layer \"") + layers.current->name() + QStringLiteral("\" has no tracked mesh");
    }
    QList<unsigned int> const ids{project.toolManager()->currentLayerID()};
    if (format.kind() == Kind::Shape &&
        Korvane::ShapeExportHelper::getContoursToExport(project, layers.selection.mode, ids).isEmpty())
    {
        return QStringLiteral("No contours to export");
    }
    return QString();
}

void logExport(FormatEntry const& format, KORV_Layer const* layer, QString const& path)
{
    QString const what = layer ? QStringLiteral(", layer \"") + layer->name() + QLatin1Char('"') : QString();
    Fnd::Logger::logger().log(Core::LoggerBase::Info, format.key() + what + QStringLiteral(" to ") + path);
}
