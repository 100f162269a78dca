#include "Core/ExportSize.h"

#include "Core/FormatList.h"
#include "Host/CameraSolveHelper.h"
#include "Host/Contour.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MeshTracking.h"
#include "Host/Scene3D.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <limits>
#include <set>

namespace Export
{

namespace
{

constexpr double FOR_ANY_PROJECT = 64.0 * 1024 * 1024;
constexpr double FOR_EACH_BYTE = 20000;

/// How many times too high an estimate may be: the tests of all formats hold it to this.
constexpr double OVERESTIMATE = 20;

/// Bezier points that a point of an X-spline becomes, as a rule.
constexpr double BEZIERS_PER_XSPLINE = 4;

/// The context of the texts of this file.
struct ExportSize
{
    Q_DECLARE_TR_FUNCTIONS(ExportSize)
};

/// What a part of an export, such as a layer, has of all that is counted.
struct Extent
{
    double frames = 0;
    double points = 0;
    double keyedPoints = 0;
    double pixels = 0;
};

double bytesOf(FormatBytes const& each, Extent const& part)
{
    return each.perLayer + part.frames * (each.perFrame + part.pixels * each.perPixelFrame) +
           part.keyedPoints * each.perPoint + part.points * part.frames * each.perPointFrame;
}

void addContours(Extent& part, KORV_Layer const& layer)
{
    std::set<Anm::Frame> keys;
    layer.getLayerKeyframes(keys, Anm::View::defaultView());
    // Those of the range, and its ends, which get keys of their own.
    double const keyed = std::min(static_cast<double>(keys.size()) + 2, part.frames);
    for (boost::shared_ptr<Korvane::Contour const> const& contour : layer.activeContours())
    {
        bool const isXSpline = contour->eGetType() == ZN_CONTOUR_XSPLINE;
        double const points = static_cast<double>(contour->allPoints().size()) * (isXSpline ? BEZIERS_PER_XSPLINE : 1);
        part.points += points;
        part.keyedPoints += points * keyed;
    }
}

Extent extentOf(KORV_Layer const& layer, FormatNeeds needs)
{
    Extent part;
    part.frames = std::max(0.0, 1.0 + layer.outPoint(false) - layer.inPoint(false));
    std::shared_ptr<ZN::MeshTracking::ParameterSet> const mesh =
        needs.testFlag(NeedsMesh) ? layer.trackMesh() : nullptr;
    if (mesh)
    {
        part.points = static_cast<double>(mesh->vertices().size());
        part.keyedPoints = part.points;
    }
    if (needs.testFlag(NeedsContours))
    {
        addContours(part, layer);
    }
    return part;
}

Extent extentOfClip(KORV_ProjectManager const& project, unsigned int clipId)
{
    Extent part;
    part.frames = project.frameCount();
    if (KORV_Clip const* const clip = project.parameterManager()->getClip(clipId))
    {
        part.pixels = static_cast<double>(clip->info().width()) * clip->info().height();
    }
    return part;
}

/// Counts the points of a solve.
class SolveCounter
{
public:
    SolveCounter(KORV_ProjectManager const& project, KV::CameraSolveExporter::ObjectsToExport objects)
        : m_project(project)
    {
        m_helper.initialise(project, Anm::View::defaultView(), KV::Layers::FilterByPoints(),
                            Korvane::ExporterHelperBase::framesToExport(boost::none),
                            objects == KV::CameraSolveExporter::SelectedObjects,
                            objects == KV::CameraSolveExporter::VisibleObjects, true, nullptr);
    }

    /// Of the camera, of what has points, and of the files.
    double objects() const
    {
        return 1.0 + m_helper.layerIDsToExport().size() + m_project.scene3DParameters().features().size() +
               static_cast<double>(m_helper.fileAssetsToExport().size());
    }

    Extent points()
    {
        Extent all;
        all.frames = m_project.frameCount();
        for (unsigned int const id : m_helper.layerIDsToExport())
        {
            m_helper.setCurrentLayer(m_project.sm()->findLayer(id, false), Anm::Context::invalid(), true);
            addCurrent(all);
        }
        for (auto const& features : m_project.scene3DParameters().features())
        {
            m_helper.setCurrentFeatureSet(*features, true);
            addCurrent(all);
        }
        return all;
    }

private:
    /// The points of one kind and carrier move all or not at all.
    void addCurrent(Extent& all)
    {
        using namespace Korvane::CameraSolve;
        for (PointType const type : {SurfacePoint, TrackMeshPoint, FeaturePoint})
        {
            auto const count = static_cast<double>(m_helper.numPoints(type));
            bool const doMove = count > 0 && m_helper.pointAnimDataByType(type, 0).contexts.size() > 1;
            all.keyedPoints += count;
            all.points += doMove ? count : 0;
        }
        m_helper.clearParamData();
    }

    KORV_ProjectManager const& m_project;
    Korvane::CameraSolve::ExporterHelper m_helper;
};

QString sizeText(double bytes)
{
    constexpr double KILO = 1024;
    int power = 0;
    for (; bytes >= KILO && power < 4; ++power)
    {
        bytes /= KILO;
    }
    static char const* const units[] = {"bytes", "kB", "MB", "GB", "TB"};
    return QLocale::c().toString(bytes, 'f', bytes < 10 && power > 0 ? 1 : 0) + QLatin1Char(' ') +
           QLatin1String(units[power]);
}

double fileLimit(FormatEntry const& format)
{
    return format.format().numFiles() == 1 ? OVERESTIMATE * static_cast<double>(TextBuffer::LARGEST)
                                           : std::numeric_limits<double>::infinity();
}

}

double estimatedBytes(FormatEntry const& format, KORV_ProjectManager const& project, ExportScope const& scope,
                      double enough)
{
    FormatTraits const& traits = format.traits();
    auto const views = static_cast<double>(scope.views);
    double bytes = 0;
    for (KORV_Layer const* const layer : scope.layers)
    {
        bytes += views * bytesOf(traits.bytes, extentOf(*layer, traits.needs));
    }
    if (traits.needs.testFlag(NeedsLens))
    {
        bytes += views * bytesOf(traits.bytes, extentOfClip(project, scope.clipId));
    }
    if (traits.needs.testFlag(NeedsSolve))
    {
        SolveCounter counter(project, scope.objects);
        Extent object;
        object.frames = project.frameCount();
        bytes += views * counter.objects() * bytesOf(traits.bytes, object);
        if (bytes <= enough)
        {
            FormatBytes ofPoints = traits.bytes;
            ofPoints.perLayer = ofPoints.perFrame = 0;
            bytes += views * bytesOf(ofPoints, counter.points());
        }
    }
    return bytes;
}

double exportSizeLimit(FormatEntry const& format, qint64 projectBytes)
{
    return std::min(fileLimit(format), std::max(FOR_ANY_PROJECT, FOR_EACH_BYTE * static_cast<double>(projectBytes)));
}

void requireExportSize(FormatEntry const& format, KORV_ProjectManager const& project, ExportScope const& scope,
                       qint64 projectBytes, QString const& advice)
{
    double const limit = exportSizeLimit(format, projectBytes);
    double const bytes = estimatedBytes(format, project, scope, limit);
    if (bytes <= limit)
    {
        return;
    }
    QString const most = limit < fileLimit(format)
                             ? ExportSize::tr("%1 is the most from a project file of %2")
                                   .arg(sizeText(limit), sizeText(static_cast<double>(projectBytes)))
                             : ExportSize::tr("that is more than a file can hold");
    throwOperationFailed(
        "ExportSize", __LINE__, QStringLiteral("requireExportSize"),
        ExportSize::tr("The export would take about %1, and %2. %3").arg(sizeText(bytes), most, advice));
}

}
