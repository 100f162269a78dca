#include "Nuke/NukeTrackingExporterBase.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

namespace Export
{

namespace
{

QString sizeAdvice()
{
    return QStringLiteral("Export a shorter layer, a mesh with fewer vertices or fewer views.");
}

}

NukeTrackingExporterBase::NukeTrackingExporterBase() = default;
NukeTrackingExporterBase::~NukeTrackingExporterBase() = default;

Korvane::ExportedFiles NukeTrackingExporterBase::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                unsigned int layerId,
                                                                Anm::Context const& referenceFrame,
                                                                Options const& options) const
{
    bool const isMultiView = options.views.size() > 1;
    TextBuffer text(sizeAdvice());
    int failedCount = 0;
    FailuresByView failures;
    for (Anm::View const& view : options.views)
    {
        Options viewOptions = options;
        viewOptions.views = {view};
        setUpHelper(project, layerId, referenceFrame, viewOptions);
        QString const viewName = isMultiView ? project.projProps().views()->name(view) : QString();
        QString name = project.sm()->layerFromNumericID(layerId, false)->name();
        if (isMultiView)
        {
            name += QLatin1Char('_') + viewName;
        }

        QVector<NukePointCurve> curves = createCurves();
        failedCount += removeUnwritableKeys(curves);
        writeSingleView(text, name, curves);
        failures.emplace_back(viewName, m_helper.failureMessages());
    }
    return fileResult(path, text.bytes(), failedCount, failuresOfViews(failures));
}

void NukeTrackingExporterBase::writeSingleView(TextBuffer& out, QString const& name,
                                               QVector<NukePointCurve> const& curves) const
{
    out << exportSingleView(name, curves);
}

Korvane::TrackingExporterHelper const& NukeTrackingExporterBase::helper() const
{
    return m_helper;
}

void NukeTrackingExporterBase::refuseMoreThanFits(qint64 points, qint64 frames)
{
    constexpr qint64 SHORTEST_KEYS = 10; // "x1 0 x1 0 "
    requireTextSize(points * frames * SHORTEST_KEYS, sizeAdvice());
}

void NukeTrackingExporterBase::setUpHelper(KORV_ProjectManager& project, unsigned int layerId,
                                           Anm::Context const& referenceFrame, Options const& options) const
{
    // The points of a view move from the reference frame in that view.
    Anm::Context const start(referenceFrame.time(), options.views.front());
    setUpTrackingHelper(m_helper, project, layerId, start.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(start), options, nullptr);
}

}
