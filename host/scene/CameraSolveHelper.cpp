// Cameras and points of a solve, as exporters ask for them. What is computed for points is
// in SolvePoints, axes and angles in SolveSpace, poses over time in ScenePose.

#include "Host/CameraSolveHelper.h"

#include "marlohost/ClipLens.h"
#include "model/Median.h"
#include "model/Project.h"
#include "SolvePoints.h"
#include "SolveSpace.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace Korvane
{
namespace CameraSolve
{

using MarloHost::Placement;
using MarloHost::SolvePoints;
using Sabrel::Vector3;

namespace
{

constexpr unsigned int CLIP_OF_PROJECT = 1;

/// In the place of a layer's id, for the current feature set.
constexpr unsigned int FEATURES = 0;

MarloHost::PointCloudModel const* pointerTo(std::optional<MarloHost::PointCloudModel> const& cloud)
{
    return cloud ? &*cloud : nullptr;
}

SolvePoints::Clouds cloudsOf(KORV_Layer const& layer)
{
    MarloHost::LayerModel const& model = *layer.data().model;
    return {pointerTo(model.surfacePoints), pointerTo(model.meshPoints), nullptr};
}

SolvePoints::Clouds cloudsOf(ZN::Features3DParameterSet const& features)
{
    return {nullptr, nullptr, &features.data().model->points};
}

bool hasPoints(KORV_Layer const& layer)
{
    auto const clouds = cloudsOf(layer);
    return std::any_of(clouds.begin(), clouds.end(),
                       [](auto const* cloud) { return cloud && cloud->pointCount() > 0; });
}

bool isChosen(KORV_Layer const& layer, ExporterHelper::LayerChoice const& choice, KORV_ProjectManager const& project)
{
    if (std::holds_alternative<KV::Layers::AllSelected>(choice))
    {
        return layer.isSelected();
    }
    if (std::holds_alternative<KV::Layers::Current>(choice))
    {
        return project.currentLayer() == &layer;
    }
    if (auto const* const list = std::get_if<QVector<boost::shared_ptr<KORV_Layer const>>>(&choice))
    {
        return std::any_of(list->begin(), list->end(), [&](auto const& listed) { return listed.get() == &layer; });
    }
    return true;
}

bool differ(MarloHost::KeyedNumber const& number)
{
    return std::any_of(number.values.begin(), number.values.end(),
                       [&](double value) { return value != number.values.front(); });
}

}

struct ExporterHelper::Data
{
    KORV_ProjectManager const* project = nullptr;
    ZN_BaseClipInfo const* clip = nullptr;
    MarloHost::SolveModel const* solve = nullptr;
    Anm::View view = Anm::View::defaultView();
    int frameCount = 0;

    bool selectedOnly = false;
    bool visibleOnly = false;
    bool includeFeatures = false;
    QList<unsigned int> layerIds;

    MarloHost::SolveSpace space;
    UnitConversion unit = Millimetres;
    std::optional<double> factor;
    float filmSize = 0.0F;

    // What points are asked of: a layer, a feature set, or nothing.
    unsigned int layerId = FEATURES;
    ZN::Features3DParameterSet const* features = nullptr;
    std::size_t referenceFrame = 0;
    bool worldSpace = false;

    /// By space and layer, made when they are first asked for.
    std::map<std::pair<bool, unsigned int>, SolvePoints> points;

    /// By space, layer and id.
    std::map<std::tuple<bool, unsigned int, unsigned int>, PointAnimData> cache;

    Mtx_Vector2 filmBack() const;

    /// What millimetres are multiplied with.
    double focalFactor(UnitConversion wanted, std::optional<double> const& wantedFactor) const;
    double firstFocalLength(UnitConversion wanted, std::optional<double> const& wantedFactor) const;

    bool isExported(ZN::Features3DParameterSet const& set) const;

    /// Whose points are the current ones, as accuracy sources know it.
    QString owner() const;
    SolvePoints makePoints(bool inWorld, unsigned int id) const;
    SolvePoints const& pointsOf(bool inWorld, unsigned int id);

    SolvePoints const& current()
    {
        return pointsOf(worldSpace, layerId);
    }

    void forget(unsigned int id);
    void forgetAll();
};

Mtx_Vector2 ExporterHelper::Data::filmBack() const
{
    if (!solve)
    {
        return {};
    }
    double const seenWidth = MarloHost::filmBackWidth(solve->camera, project->data().model.clips.front());
    ZN::ImageFormat const& format = clip->format();
    double const width = seenWidth / format.par();
    return {width, width * format.size().height() / format.size().width()};
}

// Pixels per millimetre are full-frame lines by the height of the film back: pixels are as
// wide as high then, whatever the shape of those in the file.
double ExporterHelper::Data::focalFactor(UnitConversion wanted, std::optional<double> const& wantedFactor) const
{
    bool const isInPixels = wanted == ScaledMillimetres && !wantedFactor;
    if (solve && (solve->legacy || isInPixels))
    {
        return clip->format().size().height() / filmBack().y;
    }
    return wanted == ScaledMillimetres ? wantedFactor.value_or(1.0) : 1.0;
}

double ExporterHelper::Data::firstFocalLength(UnitConversion wanted, std::optional<double> const& wantedFactor) const
{
    return solve ? focalFactor(wanted, wantedFactor) * MarloHost::valueAt(solve->camera.focalLength, 0) : 0.0;
}

QString ExporterHelper::Data::owner() const
{
    KORV_Layer const* const layer =
        project && layerId != FEATURES ? project->sm()->layerFromNumericID(layerId, false) : nullptr;
    return layer ? layer->textID() : (features ? features->name() : QString());
}

bool ExporterHelper::Data::isExported(ZN::Features3DParameterSet const& set) const
{
    MarloHost::FeatureSetModel const& model = *set.data().model;
    if (!includeFeatures || (selectedOnly && !model.selected))
    {
        return false;
    }
    boost::shared_ptr<LayerBase> const parent = set.hasParent() ? project->sm()->layerFromID(set.parentID()) : nullptr;
    return !visibleOnly || (!model.hidden && !(parent && parent->isHidden(true)));
}

SolvePoints ExporterHelper::Data::makePoints(bool inWorld, unsigned int id) const
{
    ZN::Point3DParameterSet const* carrier = nullptr;
    SolvePoints::Clouds clouds{};
    KORV_Layer const* const layer = project && id != FEATURES ? project->sm()->layerFromNumericID(id, false) : nullptr;
    if (layer)
    {
        carrier = &layer->points();
        clouds = cloudsOf(*layer);
    }
    else if (id == FEATURES && features)
    {
        carrier = features->data().carrier;
        clouds = cloudsOf(*features);
    }
    return SolvePoints(space, inWorld ? carrier : nullptr, clouds, view, frameCount);
}

SolvePoints const& ExporterHelper::Data::pointsOf(bool inWorld, unsigned int id)
{
    auto const key = std::make_pair(inWorld, id);
    auto const found = points.find(key);
    return found != points.end() ? found->second : points.emplace(key, makePoints(inWorld, id)).first->second;
}

void ExporterHelper::Data::forget(unsigned int id)
{
    for (bool const inWorld : {false, true})
    {
        points.erase({inWorld, id});
        cache.erase(cache.lower_bound({inWorld, id, 0U}), cache.upper_bound({inWorld, id, ~0U}));
    }
}

void ExporterHelper::Data::forgetAll()
{
    points.clear();
    cache.clear();
}

ExporterHelper::ExporterHelper() : ExporterHelperBase(false), m_data(std::make_unique<Data>())
{
}

ExporterHelper::ExporterHelper(ExporterHelper const& other)
    : ExporterHelperBase(other), m_data(std::make_unique<Data>(*other.m_data))
{
}

ExporterHelper::ExporterHelper(ExporterHelper&& other) noexcept = default;

ExporterHelper& ExporterHelper::operator=(ExporterHelper const& other)
{
    ExporterHelperBase::operator=(other);
    m_data = std::make_unique<Data>(*other.m_data);
    return *this;
}

ExporterHelper& ExporterHelper::operator=(ExporterHelper&& other) noexcept = default;

ExporterHelper::~ExporterHelper() = default;

void ExporterHelper::initialise(KORV_ProjectManager const& project, Anm::View const& view, LayerChoice const& layers,
                                int, bool selectedOnly, bool visibleOnly, bool includeFeatures, KORV_Clip const* clip)
{
    int const frameCount = project.frameCount();
    startWithoutLayer(project, view, 0, frameCount - 1);
    setClip(clip ? *clip : *project.parameterManager()->getClip(CLIP_OF_PROJECT));

    project.data().namedPoints->clear();
    auto data = std::make_unique<Data>();
    std::optional<MarloHost::SolveModel> const& solve = project.data().model.solve;
    data->project = &project;
    data->clip = baseClipInfo();
    data->solve = solve ? &*solve : nullptr;
    data->view = view;
    data->frameCount = frameCount;
    data->selectedOnly = selectedOnly;
    data->visibleOnly = visibleOnly;
    data->includeFeatures = includeFeatures;
    data->space = MarloHost::SolveSpace(data->solve);
    QVector<boost::shared_ptr<KORV_Layer const>> const stack = project.sm()->layers({});
    for (boost::shared_ptr<KORV_Layer const> const& layer : stack)
    {
        bool const isLeftOut = (selectedOnly && !layer->isSelected()) || (visibleOnly && layer->isHidden(true));
        if (!isLeftOut && hasPoints(*layer) && isChosen(*layer, layers, project))
        {
            data->layerIds.append(layer->numericID());
        }
    }
    m_data = std::move(data);
}

void ExporterHelper::setCoordinateTransform(Sabrel::Matrix33 const& a, Sabrel::Matrix33 const& b, double scale,
                                            SceneTransformMode mode)
{
    m_data->space.setCoordinateTransform(a, b, scale, mode);
    m_data->forgetAll();
}

void ExporterHelper::setRotateOrder(int order)
{
    m_data->space.setRotateOrder(order);
    m_data->forgetAll();
}

void ExporterHelper::setFocalLengthExportUnits(UnitConversion unit)
{
    m_data->unit = unit;
    m_data->factor.reset();
}

void ExporterHelper::setFocalLengthExportUnits(UnitConversion unit, double factor)
{
    m_data->unit = unit;
    m_data->factor = factor;
}

double ExporterHelper::referenceFocalLength(UnitConversion unit) const
{
    return m_data->firstFocalLength(unit, std::nullopt);
}

double ExporterHelper::referenceFocalLength(UnitConversion unit, double factor) const
{
    return m_data->firstFocalLength(unit, factor);
}

void ExporterHelper::setFocalDistanceFromCamera(ZN::Camera3DParameterSet const& camera)
{
    double const millimetres = MarloHost::valueAt(camera.data().model->focalLength, 0);
    setFocalDistance(static_cast<float>(m_data->focalFactor(m_data->unit, m_data->factor) * millimetres));
}

float ExporterHelper::filmSize() const
{
    return m_data->filmSize;
}

void ExporterHelper::setFilmSize(float size)
{
    m_data->filmSize = size;
}

Mtx_Vector2 ExporterHelper::filmBack() const
{
    return m_data->filmBack();
}

QList<unsigned int> const& ExporterHelper::layerIDsToExport() const
{
    return m_data->layerIds;
}

std::vector<boost::shared_ptr<ZN::FileAsset3DParameterSet const>> ExporterHelper::fileAssetsToExport() const
{
    if (!m_data->project)
    {
        return {};
    }
    auto const& assets = m_data->project->scene3DParameters().fileAssets();
    return {assets.begin(), assets.end()};
}

void ExporterHelper::setCurrentLayer(boost::shared_ptr<KORV_Layer const> const& layer, Anm::Context const& reference,
                                     bool worldSpace)
{
    m_data->forget(FEATURES);
    m_data->features = nullptr;
    m_data->layerId = layer ? layer->numericID() : FEATURES;
    int const frame = reference.time().isValid() ? reference.frameValue() : 0;
    m_data->referenceFrame = static_cast<std::size_t>(std::clamp(frame, 0, std::max(0, m_data->frameCount - 1)));
    m_data->worldSpace = worldSpace;
}

void ExporterHelper::setCurrentFeatureSet(ZN::Features3DParameterSet const& features, bool worldSpace)
{
    m_data->forget(FEATURES);
    m_data->features = m_data->project && m_data->isExported(features) ? &features : nullptr;
    m_data->layerId = FEATURES;
    m_data->referenceFrame = 0;
    m_data->worldSpace = worldSpace;
}

void ExporterHelper::clearParamData()
{
    m_data->forgetAll();
    m_data->layerId = FEATURES;
    m_data->features = nullptr;
}

std::size_t ExporterHelper::numPoints(std::optional<PointType> type) const
{
    SolvePoints const& points = m_data->current();
    std::size_t count = 0;
    for (PointType const each : MarloHost::ALL_POINT_TYPES)
    {
        count += !type || *type == each ? points.count(each) : 0;
    }
    return count;
}

std::vector<unsigned int> ExporterHelper::pointIDsToExport(std::optional<PointType> type, bool meshOnly) const
{
    SolvePoints const& points = m_data->current();
    std::vector<unsigned int> ids;
    ids.reserve(numPoints(type));
    for (PointType const each : MarloHost::ALL_POINT_TYPES)
    {
        std::size_t const count = !type || *type == each ? points.count(each) : 0;
        std::vector<bool> taken(count, !meshOnly);
        if (meshOnly && count > 0)
        {
            for (int const index : points.cloud(each).faceIndices)
            {
                taken[static_cast<std::size_t>(index)] = true;
            }
        }
        for (std::size_t index = 0; index < count; ++index)
        {
            if (taken[index])
            {
                ids.push_back(MarloHost::pointId(each, index));
            }
        }
    }
    return ids;
}

PointType ExporterHelper::pointTypeFromID(unsigned int& id) const
{
    return MarloHost::splitPointId(id);
}

QString ExporterHelper::pointName(unsigned int id, KV::NullAccuracySource const* accuracy) const
{
    unsigned int index = id;
    PointType const type = pointTypeFromID(index);
    QString const name = MarloHost::pointName(m_data->current().cloud(type), type, index);
    if (!accuracy)
    {
        if (m_data->project)
        {
            m_data->project->data().namedPoints->insert({m_data->owner(), id});
        }
        return name;
    }
    return accuracy->isInaccurate(m_data->owner(), id) ? name + QStringLiteral(" (inaccurate)") : name;
}

Sabrel::Vector2Adapter<Mtx_Vector2_f> ExporterHelper::pointUVByType(PointType type, unsigned int index) const
{
    std::vector<double> const& uvs = m_data->current().cloud(type).uvs;
    std::size_t const at = 2 * static_cast<std::size_t>(index);
    if (at + 1 >= uvs.size())
    {
        return {};
    }
    return {{static_cast<float>(uvs[at]), static_cast<float>(uvs[at + 1])}};
}

CameraAnimData ExporterHelper::cameraAnimData(ZN::Camera3DParameterSet const& camera) const
{
    CameraAnimData data;
    MarloHost::KeyedNumber const& focal = camera.data().model->focalLength;
    data.focalIsAnimated = differ(focal);
    auto const count = static_cast<std::size_t>(m_data->frameCount);
    data.contexts.reserve(count);
    data.positions.reserve(count);
    data.rotations.reserve(count);
    data.focalLengths.reserve(count);
    MarloHost::CameraCurve const curve(camera.data());
    MarloHost::AngleSequence angles(m_data->space);
    double const factor = m_data->focalFactor(m_data->unit, m_data->factor);
    for (int frame = 0; frame < m_data->frameCount; ++frame)
    {
        Placement const placement = m_data->space.inScene(curve.at(frame));
        data.contexts.emplace_back(Anm::Time::fromInt(frame), m_data->view);
        data.positions.push_back(m_data->space.positionMatrix() * placement.position);
        data.rotations.push_back(angles.next(placement.rotation));
        data.focalLengths.push_back(static_cast<float>(factor * MarloHost::valueAt(focal, frame)));
    }
    return data;
}

PointAnimData ExporterHelper::pointAnimData(unsigned int id) const
{
    PointType const type = pointTypeFromID(id);
    return pointAnimDataByType(type, id);
}

PointAnimData ExporterHelper::pointAnimDataByType(PointType type, unsigned int index) const
{
    return m_data->current().data(type, index);
}

PointAnimData const* ExporterHelper::cachedPointAnimData(bool worldSpace, unsigned int layerId, unsigned int id) const
{
    auto const key = std::make_tuple(worldSpace, layerId, id);
    auto const found = m_data->cache.find(key);
    if (found != m_data->cache.end())
    {
        return &found->second;
    }
    unsigned int index = id;
    PointType const type = pointTypeFromID(index);
    SolvePoints const& points = m_data->pointsOf(worldSpace, layerId);
    return index < points.count(type) ? &m_data->cache.emplace(key, points.data(type, index)).first->second : nullptr;
}

PointAnimData ExporterHelper::collectPointData(ZN::Point3DParameterSet const& points, bool worldSpace,
                                               bool firstOnly) const
{
    PointAnimData data;
    MarloHost::PoseChain const chain(points, worldSpace);
    int const samples = chain.isMoving() && !firstOnly ? m_data->frameCount : 1;
    auto const count = static_cast<std::size_t>(samples);
    data.contexts.reserve(count);
    data.positions.reserve(count);
    data.rotations.reserve(count);
    data.scales.reserve(count);
    MarloHost::AngleSequence angles(m_data->space);
    for (int frame = 0; frame < samples; ++frame)
    {
        Placement const placement = m_data->space.placementOf(chain, frame);
        data.contexts.emplace_back(Anm::Time::fromInt(frame), m_data->view);
        data.positions.push_back(m_data->space.positionMatrix() * placement.position);
        data.rotations.push_back(angles.next(placement.rotation));
        data.scales.push_back({placement.scale, placement.scale, placement.scale});
    }
    return data;
}

MeshAnimData ExporterHelper::meshData(PointType type, bool animated) const
{
    return m_data->current().mesh(type, animated, m_data->referenceFrame);
}

KeyframePRS ExporterHelper::sceneTransformForExport() const
{
    return m_data->space.sceneTransform();
}

double ExporterHelper::suggestPointScale(bool includeLayers, bool includeFeatures, Vector3 const& reference)
{
    if (!m_data->project)
    {
        return 0.0;
    }
    std::vector<double> distances;
    auto const add = [&](ZN::Point3DParameterSet const& carrier, SolvePoints::Clouds const& clouds)
    {
        // The first frame is enough.
        SolvePoints const points(m_data->space, &carrier, clouds, m_data->view, 1);
        for (PointType const type : MarloHost::ALL_POINT_TYPES)
        {
            for (std::size_t index = 0; index < points.count(type); ++index)
            {
                Vector3 const away = points.position(type, index, 0) - reference;
                distances.push_back(std::hypot(away.x, away.y, away.z));
            }
        }
    };
    for (unsigned int const id : includeLayers ? m_data->layerIds : QList<unsigned int>())
    {
        KORV_Layer const& layer = *m_data->project->sm()->layerFromNumericID(id, false);
        add(layer.points(), cloudsOf(layer));
    }
    for (auto const& features : m_data->project->scene3DParameters().features())
    {
        if (includeFeatures && m_data->isExported(*features))
        {
            add(*features->data().carrier, cloudsOf(*features));
        }
    }
    return distances.empty() ? 0.0 : MarloHost::median(distances);
}

bool ExporterHelper::isOldSolveData() const
{
    return m_data->solve && m_data->solve->legacy;
}

}
}
