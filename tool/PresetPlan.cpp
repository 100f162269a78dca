#include "PresetPlan.h"

#include "Core/ExportFunctions.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Selection.h"
#include "Session.h"
#include "TargetPath.h"
#include "marlohost/ProjectFile.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>

namespace
{

using ExportInfo = Export::Preset::ExportInfo;

/// How a preset says that it has no reference frame.
constexpr int NO_FRAME = -1;

/// @throws what the library throws for a format that the type doesn't have
FormatEntry formatOf(ExportInfo const& info, KORV_ProjectManager const& project)
{
    Export::createExporter(info, project);
    static char const* const words[] = {"tracking", "shape", "camera"};
    for (FormatEntry const& entry : formatsOfKind(QLatin1String(words[info.type])))
    {
        if (entry.key() == info.format)
        {
            return entry;
        }
    }
    throw Failure(Refused, QStringLiteral("the format ") + info.format + QStringLiteral(" isn't offered"));
}

/// The same text for all paths to one file.
QString identityOf(QString const& path)
{
    QFileInfo const file(path);
    if (file.exists())
    {
        return file.canonicalFilePath();
    }
    QFileInfo const folder(file.absolutePath());
    QString const place = folder.exists() ? folder.canonicalFilePath() : folder.absoluteFilePath();
    return QDir::cleanPath(place + QLatin1Char('/') + file.fileName());
}

}

QString PlannedExport::label() const
{
    return QStringLiteral("preset \"") + preset + QStringLiteral("\", ") + record.format;
}

PresetPlanner::PresetPlanner(Session& session, QString const& presetsFile, WritingChoices const& writing)
    : m_session(session),
      m_presetsFolder(QFileInfo(presetsFile).path()),
      m_folder(writing.output),
      m_unsafeNames(writing.unsafeNames),
      m_currentLayer(session.project().toolManager()->currentLayerID()),
      m_currentView(session.project().currentView()),
      m_taken(std::make_shared<TakenPaths>(QStringLiteral("exports")))
{
}

void PresetPlanner::restorePlace() const
{
    MarloHost::setCurrentLayer(m_session.project(), m_currentLayer);
    MarloHost::setCurrentView(m_session.project(), m_currentView);
}

PlannedExport PresetPlanner::plan(QString const& preset, ExportInfo const& stored) const
{
    PlannedExport planned;
    planned.preset = preset;
    planned.record.format = stored.format;
    try
    {
        restorePlace();
        FormatEntry const format = formatOf(stored, m_session.project());
        planned.plan = makePlan(format, stored, planned.record);
        planned.format = format;
    }
    catch (...)
    {
        planned.record.fail(currentFailure());
    }
    planned.record.warnings += m_session.takeWarnings();
    return planned;
}

ExportPlan PresetPlanner::makePlan(FormatEntry const& format, ExportInfo info, ExportRecord& record) const
{
    KORV_ProjectManager& project = m_session.project();
    LayerChoice layers;
    std::vector<Anm::View> views{m_currentView};
    PartsCheck check{false, m_unsafeNames};
    auto const place = [&](auto& options)
    {
        options.viewsToExport = viewsOf(format, options.viewsToExport, record);
        views = options.viewsToExport;
        layers = storedLayers(m_session, options.layerSelection, record.warnings);
        takePlace(project, layers.current, views.front());
    };
    if (auto* const shape = std::get_if<Export::UserShapeOptions>(&info.options))
    {
        place(*shape);
    }
    else if (auto* const tracking = std::get_if<Export::UserTrackingOptions>(&info.options))
    {
        place(*tracking);
        tracking->referenceFrame = referenceFrameOf(*tracking, views.front());
        check.undistort = tracking->undistort;
    }
    else if (auto const* const camera = std::get_if<Export::UserCameraSolveOptions>(&info.options))
    {
        check.objects = camera->objectsToExport;
    }

    // A layer that was renamed or mistyped is no reason to pass over what was asked for.
    if (layers.selection.mode == ZN::SpecifiedLayer && !layers.current)
    {
        throw Failure(Refused, QStringLiteral("there is no layer \"") + layers.selection.layerName + QLatin1Char('"'));
    }
    ExportPlan plan;
    auto const exporter = Export::createExporter(info, project);
    plan.obstacle = obstacleOf(m_session, format, *exporter, layers, views);
    if (plan.obstacle.isEmpty())
    {
        ExportedParts const parts = partsOf(m_session, format, layers, {views, views.front()});
        checkParts(m_session, format, parts, check, plan, record);
        // A stored selection of the current layer looks like one of the selected layers.
        if (layers.selection.mode == ZN::VisibleLayers || layers.selection.mode == ZN::AllLayers)
        {
            tellOfLayersLeftOut(m_session, layers.selection.mode, layers, parts, record);
        }
        QString const path = pathOf(info.filePath, exporter->filenameSuggestion(project), format.format().extension());
        logExport(format, layers.current, path);
        plan.items.push_back({std::make_shared<PlacedExporter>(exporter, layers.current, views.front(), m_taken),
                              Export::ExportFileInfo(), path});
    }
    return plan;
}

std::vector<Anm::View> PresetPlanner::viewsOf(FormatEntry const& format, std::vector<Anm::View> const& stored,
                                              ExportRecord& record) const
{
    Anm::Views const& all = *m_session.project().views();
    for (Anm::View const& view : stored)
    {
        if (all.viewIndex(view) < 0)
        {
            throw Failure(Refused, QStringLiteral("viewsToExport: the project has no view %1; its views are 0 to %2")
                                       .arg(view.id())
                                       .arg(all.viewCount() - 1));
        }
    }
    if (stored.size() > 1 && !format.traits().honours.testFlag(Export::HonoursViews))
    {
        record.unheard.push_back(oneViewOfMany(m_session, stored.front()));
    }
    return stored.empty() ? std::vector<Anm::View>{m_currentView} : stored;
}

Anm::Context PresetPlanner::referenceFrameOf(Export::UserTrackingOptions const& options, Anm::View const& view) const
{
    Anm::Context const& stored = options.referenceFrame;
    if (!stored.time().isValid() || stored.frameValue() == NO_FRAME)
    {
        Anm::Time const time = Export::suitableReferenceFrame(m_session.project(), options.trackingOption).time();
        return Anm::Context(time, view);
    }
    if (stored.frameValue() < 0 || stored.frameValue() > m_session.lastFrame())
    {
        throw Failure(Refused, QStringLiteral("referenceFrame: %1 isn't a host frame of the project; these are 0 to %2")
                                   .arg(stored.frameValue())
                                   .arg(m_session.lastFrame()));
    }
    return Anm::Context(stored.time(), view);
}

QString PresetPlanner::pathOf(std::optional<QString> const& stored, QString const& suggestion,
                              QString const& extension) const
{
    QString const path = stored.value_or(QString());
    if (m_folder)
    {
        QString const name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
        return targetPath(*m_folder + (m_folder->endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/")) + name,
                          suggestion, extension);
    }
    if (path.isEmpty())
    {
        return targetPath(std::nullopt, suggestion, extension);
    }
    bool const isInPlace = QFileInfo(path).isAbsolute() || m_presetsFolder == QLatin1String(".");
    return targetPath(isInPlace ? path : m_presetsFolder + QLatin1Char('/') + path, suggestion, extension);
}

void refuseSharedPaths(std::vector<PlannedExport> const& exports)
{
    QMap<QString, QString> labels;
    for (PlannedExport const& planned : exports)
    {
        for (Export::BatchItem const& item : planned.plan.items)
        {
            QString const identity = identityOf(item.path);
            if (labels.contains(identity))
            {
                throw Failure(Refused, labels.value(identity) + QStringLiteral(" and ") + planned.label() +
                                           QStringLiteral(" would both be written to ") + item.path +
                                           QStringLiteral("; nothing was written"));
            }
            labels.insert(identity, planned.label());
        }
    }
}
