#include "Nuke/NukeTrackingExporterBase.h"

#include "Writing/ThrowHelpers.h"
#include "Writing/TrackingSetup.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"

#include <algorithm>

namespace Export
{

namespace
{

// What a QString and a QByteArray of Qt 5 can hold, with room for their heads.
constexpr long long MOST_BYTES = 2147483647 - 64;
constexpr long long MOST_CHARACTERS = MOST_BYTES / 2;

// A node around its points, its name aside, and what stands around a point.
constexpr long long AROUND_POINTS = 1024;
constexpr long long AROUND_POINT = 128;

[[noreturn]] void throwTooLarge()
{
    throwOperationFailed("NukeTrackingExporterBase", __LINE__, QStringLiteral("exportTracking"),
                         QStringLiteral("The track is too large for one Nuke script. Export a shorter layer, "
                                        "a mesh with fewer vertices or fewer views."));
}

// The exact length is worked out only where the bound is beyond the limit, one point
// after another in a buffer that is used again.
void checkThatTextFits(QString const& name, QVector<NukePointCurve> const& curves)
{
    long long limit = name.size() + AROUND_POINTS + AROUND_POINT * curves.size();
    long long exact = limit;
    for (NukePointCurve const& point : curves)
    {
        limit += point.first.textLimit() + point.second.textLimit();
    }
    if (limit <= MOST_CHARACTERS)
    {
        return;
    }
    QString text;
    for (NukePointCurve const& point : curves)
    {
        text.resize(0);
        appendPoint(text, point);
        exact += text.size();
        if (exact > MOST_CHARACTERS)
        {
            throwTooLarge();
        }
    }
}

// From the end on, and what was taken is given back: text and bytes together would be
// three times the file.
void appendUtf8(QByteArray& out, QString text)
{
    constexpr int PIECE = 1 << 20;
    std::vector<QByteArray> pieces;
    long long size = out.size();
    while (!text.isEmpty())
    {
        int from = std::max(0, text.size() - PIECE);
        if (from > 0 && text.at(from).isLowSurrogate())
        {
            --from;
        }
        pieces.push_back(text.midRef(from).toUtf8());
        size += pieces.back().size();
        text.truncate(from);
        text.squeeze();
    }
    if (size > MOST_BYTES)
    {
        throwTooLarge();
    }
    out.reserve(static_cast<int>(size));
    for (; !pieces.empty(); pieces.pop_back())
    {
        out += pieces.back();
    }
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
    QByteArray contents;
    int failedCount = 0;
    QStringList failures;
    for (Anm::View const& view : options.views)
    {
        Options viewOptions = options;
        viewOptions.views = {view};
        setUpHelper(project, layerId, referenceFrame, viewOptions);
        QString name = project.sm()->layerFromNumericID(layerId, false)->name();
        if (isMultiView)
        {
            name += QLatin1Char('_') + project.projProps().views()->name(view);
        }

        QVector<NukePointCurve> curves = createCurves();
        failedCount += removeUnwritableKeys(curves);
        checkThatTextFits(name, curves);
        QString text = exportSingleView(name, curves);
        curves.clear();
        appendUtf8(contents, std::move(text));
        failures += m_helper.failureMessages();
    }
    if (isMultiView)
    {
        // What is missing in all views is said once.
        failures.removeDuplicates();
    }
    return fileResult(path, contents, failedCount, failures);
}

Korvane::TrackingExporterHelper const& NukeTrackingExporterBase::helper() const
{
    return m_helper;
}

void NukeTrackingExporterBase::refuseMoreThanFits(long long points, long long frames)
{
    constexpr long long SHORTEST_KEYS = 10; // "x1 0 x1 0 "
    if (points > 0 && frames > MOST_CHARACTERS / SHORTEST_KEYS / points)
    {
        throwTooLarge();
    }
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
