// The base of solve exporters: their shared user options, and what they know of
// inaccurate points.

#include "Host/CameraSolveExporter.h"

#include "Host/Fnd.h"
#include "model/Project.h"
#include "SolvePoints.h"

#include <QHash>
#include <QSet>

namespace KV
{

ExportOptionsReceiver::~ExportOptionsReceiver() = default;

StringsUI CameraSolveExporter::UI()
{
    return {{QStringLiteral("includeFeatures"), tr("Include automatic features"),
             tr("Also export the points that the solver found by itself.")},
            {QStringLiteral("useReferenceFrame"), tr("Use the reference frame of the scene"),
             tr("Take the shape of meshes that are exported for one frame only from the frame in which the scene was "
                "oriented, not from the current one.")},
            {QStringLiteral("sceneAtOrigin"), tr("Leave the scene at its origin"),
             tr("Export camera and points without the position, rotation and scale that were given to the scene as a "
                "whole.")},
            {QStringLiteral("pointSizeMode"), tr("Point size"),
             tr("How large the markers of points are: in proportion to the scene, or one fixed size.")},
            QStringLiteral("suggested"),
            QStringLiteral("fixed")};
}

CameraSolveExporter::CameraSolveExporter() = default;
CameraSolveExporter::~CameraSolveExporter() = default;

void CameraSolveExporter::setUserOptions(ExportOptionsReceiver&) const
{
}

void CameraSolveExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const
{
    Korvane::smartCopy(clipboard, text);
}

struct NullAccuracySource::Data
{
    struct Point
    {
        /// For the user.
        QString name;
        bool isAskedFor = false;

        /// Its owner and id.
        QPair<QString, unsigned int> place;
    };

    /// Of the project; null when there is none.
    std::shared_ptr<NamedPoints const> named;

    /// In the order of layers and sets.
    std::vector<Point> points;

    /// Places in `points` by the text id of their layer or the name of their feature set, and
    /// by id.
    QHash<QString, QHash<unsigned int, std::size_t>> placeByOwner;

    void add(QString const& owner, QString const& ownerName, Korvane::CameraSolve::PointType type,
             MarloHost::PointCloudModel const& cloud)
    {
        for (int const index : cloud.inaccurate)
        {
            auto const at = static_cast<std::size_t>(index);
            unsigned int const id = MarloHost::pointId(type, at);
            placeByOwner[owner].insert(id, points.size());
            QString const name = ownerName + QStringLiteral(": ") + MarloHost::pointName(cloud, type, at);
            points.push_back({name, false, {owner, id}});
        }
    }
};

NullAccuracySource::NullAccuracySource() : m_data(std::make_unique<Data>())
{
}

NullAccuracySource::~NullAccuracySource() = default;

void NullAccuracySource::processNulls(QList<unsigned int> const& layerIds, KORV_ProjectManager const* project,
                                      std::vector<Anm::View> const&) const
{
    *m_data = {};
    if (!project)
    {
        return;
    }
    m_data->named = project->data().namedPoints;
    QSet<QString> owners;
    for (unsigned int const id : layerIds)
    {
        KORV_Layer const* const layer = project->sm()->layerFromNumericID(id, false);
        if (!layer)
        {
            continue;
        }
        owners.insert(layer->textID());
        MarloHost::LayerModel const& model = *layer->data().model;
        for (auto const& [type, cloud] : {std::pair(Korvane::CameraSolve::SurfacePoint, &model.surfacePoints),
                                          std::pair(Korvane::CameraSolve::TrackMeshPoint, &model.meshPoints)})
        {
            if (*cloud)
            {
                m_data->add(layer->textID(), model.name, type, **cloud);
            }
        }
    }
    for (auto const& features : project->scene3DParameters().features())
    {
        if (!features->hasParent() || owners.contains(features->parentID()))
        {
            m_data->add(features->name(), features->name(), Korvane::CameraSolve::FeaturePoint,
                        features->data().model->points);
        }
    }
}

QString NullAccuracySource::warnInaccurateNulls() const
{
    constexpr int MOST_NAMES = 10;
    QStringList names;
    for (Data::Point const& point : m_data->points)
    {
        bool const isExported = point.isAskedFor || (m_data->named && m_data->named->contains(point.place));
        names += isExported ? QStringList(point.name) : QStringList();
    }
    if (names.isEmpty())
    {
        return QString();
    }
    QString const listed = names.mid(0, MOST_NAMES).join(QStringLiteral(", "));
    if (names.size() <= MOST_NAMES)
    {
        return CameraSolveExporter::tr("The position of these points is too inaccurate to attach something to them: %1")
            .arg(listed);
    }
    return CameraSolveExporter::tr(
               "The position of these points is too inaccurate to attach something to them: %1 and %2 more")
        .arg(listed, QString::number(names.size() - MOST_NAMES));
}

bool NullAccuracySource::isInaccurate(QString const& owner, unsigned int pointId) const
{
    auto const points = m_data->placeByOwner.constFind(owner);
    if (points == m_data->placeByOwner.constEnd() || !points->contains(pointId))
    {
        return false;
    }
    m_data->points[points->value(pointId)].isAskedFor = true;
    return true;
}

}
