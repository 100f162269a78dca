// Matchmove projects: the shot, its camera and what moves. Points and meshes are in
// KestreliaPoints, tracked surfaces in KestreliaLayers.

#include "KestreliaProject.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "kestrelia/ProjectFile.h"
#include "marlohost/ClipLens.h"
#include "Solve.h"
#include "text/Names.h"

#include <boost/make_shared.hpp>

#include <cmath>

namespace Rig3D
{

using Korvane::CameraSolve::CameraAnimData;
using Korvane::CameraSolve::ExporterHelper;
using Korvane::CameraSolve::PointAnimData;

namespace
{

constexpr double LARGEST_FRAME = 1e9;

bool hasFrames(Anm::ContextRange const& range, double offset)
{
    return !range.isEmpty() && std::abs(range.first().time().value() + offset) <= LARGEST_FRAME &&
           std::abs(range.last().time().value() + offset) <= LARGEST_FRAME;
}

// The camera of a view, and null where there is none.
boost::shared_ptr<ZN::Camera3DParameterSet> cameraOf(ZN::Scene3DParameterSet const& scene, Anm::View const& view,
                                                     KestreliaLib::Config const& config)
{
    if (config.isStereo && config.stereoCamera == KestreliaLib::Config::EyeCamera)
    {
        return scene.stereoCameraParameters(0)->buildViewCamera(view);
    }
    ZN::Camera3DParameterSet const* camera = scene.cameraParameters(static_cast<unsigned int>(view.id()));
    camera = camera ? camera : scene.cameraParameters(0);
    return camera ? boost::make_shared<ZN::Camera3DParameterSet>(*camera) : nullptr;
}

// How far the picture of an eye is shifted; null for cameras that are no eyes.
MarloHost::KeyedNumber const* shiftOf(ZN::Camera3DParameterSet const& camera)
{
    ZN::Camera3DParameterSet::Data const& data = camera.data();
    return data.rig ? &data.rig->shift[data.side < 0 ? 0 : 1] : nullptr;
}

}

KestreliaSetup::KestreliaSetup(KORV_Clip const& clip, Anm::ContextRange const& range,
                               KestreliaLib::Config const& config, double frameRate, double frameOffset)
    : m_data(std::make_unique<Data>())
{
    ZN_BaseClipInfo const& info = clip.info();
    m_data->config = config;
    bool const hasPicture = info.width() > 0 && info.height() > 0 && info.format().par() > 0;
    m_data->isValid = hasFrames(range, frameOffset) && hasPicture && std::isfinite(frameRate) && frameRate > 0;
    if (!m_data->isValid)
    {
        return;
    }
    m_data->first = range.first().frameValue();
    m_data->last = range.last().frameValue();
    m_data->offset = static_cast<int>(frameOffset);
    m_data->filling = MarloHost::SampleFilling(m_data->first, m_data->last, m_data->offset);

    KestreliaLib::Shot shot;
    shot.number = 1;
    shot.name = clip.name().toStdString();
    shot.firstFrame = m_data->first + m_data->offset;
    shot.lastFrame = m_data->last + m_data->offset;
    shot.frameRate = frameRate;
    shot.isInterlaced = info.bIsInterlaced();
    shot.width = static_cast<int>(info.width());
    shot.height = static_cast<int>(info.height());
    shot.pixelAspect = info.format().par();
    m_data->scene.name = "Marlo Scene";
    m_data->scene.shots.push_back(std::move(shot));
    if (config.referenceFrame)
    {
        m_data->scene.referenceFrame = *config.referenceFrame + m_data->offset;
    }
}

KestreliaSetup::~KestreliaSetup() = default;

bool KestreliaSetup::isValid() const
{
    return m_data->isValid;
}

// Mirroring everything twice changes nothing but that an old solve comes in the scene's own
// axes, too: with unit matrices it has axes of its own. Its angles are about moving axes then,
// so that is the order for all.
void KestreliaSetup::applyHelperSettings(ExporterHelper& helper)
{
    Sabrel::Matrix33 const mirror = Sabrel::Matrix33::diagonal(-1.0, -1.0, -1.0);
    helper.setCoordinateTransform(mirror, mirror, -1.0, Korvane::CameraSolve::SceneApart);
    helper.setRotateOrder(MarloHost::KESTRELIA_ORDER);
    helper.setFocalLengthExportUnits(Korvane::CameraSolve::Millimetres);
}

void KestreliaSetup::updateConfig(KestreliaLib::Config& config, ZN::Scene3DParameterSet const& scene)
{
    config.isStereo = scene.hasStereoCamera();
    config.referenceFrame.reset();
    if (scene.cameraParameters(0))
    {
        config.referenceFrame = static_cast<int>(scene.referenceFrame().staticValue(Anm::View::defaultView()));
    }
}

void KestreliaSetup::initMovingObjectIds(KORV_ProjectManager const& project, ExporterHelper& helper)
{
    for (unsigned int const id : helper.layerIDsToExport())
    {
        boost::shared_ptr<KORV_Layer> const layer = project.sm()->findLayer(id, false);
        if (layer && layer->isMoving())
        {
            m_data->addObject(*layer, helper);
        }
    }
    ZN::Scene3DParameterSet const& scene = project.scene3DParameters();
    for (auto const& features : scene.features())
    {
        helper.setCurrentFeatureSet(*features, false);
        auto const layer = features->hasParent() ? project.sm()->layerFromID(features->parentID()) : nullptr;
        if (layer && layer->isMoving() && !helper.isOldSolveData() && helper.numPoints(std::nullopt) > 0)
        {
            m_data->addObject(*layer, helper);
        }
    }
    helper.clearParamData();
    for (auto const& asset : helper.fileAssetsToExport())
    {
        auto const layer = asset->parentID().isEmpty() ? nullptr : project.sm()->layerFromID(asset->parentID());
        if (layer)
        {
            m_data->addObject(*layer, helper);
        }
    }
}

void KestreliaSetup::Data::addObject(Korvane::LayerBase const& layer, Helper const& helper)
{
    if (objects.contains(layer.textID()))
    {
        return;
    }
    PointAnimData const place = helper.collectPointData(layer.points(), true, false);
    KestreliaLib::Object object;
    object.id = static_cast<unsigned int>(scene.objects.size()) + 1;
    object.name = layer.name().toStdString();
    object.poses = filling.samples<KestreliaLib::Pose>(place.contexts,
                                                       [&](std::size_t i)
                                                       {
                                                           return MarloHost::kestreliaPose(
                                                               place.positions[i], place.rotations[i], place.scales[i],
                                                               MarloHost::KESTRELIA_ORDER);
                                                       });
    if (object.poses.isEmpty())
    {
        object.poses = KestreliaLib::Samples<KestreliaLib::Pose>::atRest({});
    }
    objects.insert(layer.textID(), object.id);
    scene.objects.push_back(std::move(object));
}

void KestreliaSetup::addSolveData(ExporterHelper& helper, KORV_ProjectManager const& project, bool includeFeatures)
{
    ZN::Scene3DParameterSet const& scene = project.scene3DParameters();
    m_data->addCamera(helper, scene);
    for (unsigned int const id : helper.layerIDsToExport())
    {
        boost::shared_ptr<KORV_Layer> const layer = project.sm()->findLayer(id, false);
        unsigned int const object = m_data->objectOf(layer->textID());
        helper.setCurrentLayer(layer, Anm::Context::invalid(), object == 0);
        m_data->addPoints(helper, layer->name(), object);
    }
    bool const withFeatures = includeFeatures && !helper.isOldSolveData();
    int number = 0;
    for (auto const& features : scene.features())
    {
        ++number;
        unsigned int const object = features->hasParent() ? m_data->objectOf(features->parentID()) : 0;
        helper.setCurrentFeatureSet(*features, object == 0);
        if (withFeatures)
        {
            m_data->addPoints(helper, QStringLiteral("Marlo Features %1").arg(number), object);
        }
    }
    helper.clearParamData();
}

void KestreliaSetup::Data::addCamera(Helper const& helper, ZN::Scene3DParameterSet const& parameters)
{
    auto const camera = cameraOf(parameters, helper.view(), config);
    if (!camera)
    {
        return;
    }
    CameraAnimData const data = helper.cameraAnimData(*camera);
    MarloHost::KeyedNumber const* const shift = shiftOf(*camera);
    ZN::ImageFormat const& format = helper.baseClipInfo()->format();
    Mtx_Vector2 const filmBack = helper.filmBack();
    // Old solves have pixels.
    double const millimetres = helper.isOldSolveData() ? filmBack.y / format.size().height() : 1.0;

    KestreliaLib::Camera made;
    made.name = "Camera";
    made.filmBack = {filmBack.x * format.par(), filmBack.y};
    Sabrel::Vector3 const noScale{1.0, 1.0, 1.0};
    made.poses = filling.samples<KestreliaLib::Pose>(
        data.contexts,
        [&](std::size_t i) {
            return MarloHost::kestreliaPose(data.positions[i], data.rotations[i], noScale, MarloHost::KESTRELIA_ORDER);
        });
    auto const lensAt = [&](std::size_t i)
    {
        double const shifted = shift ? MarloHost::valueAt(*shift, data.contexts[i].frameValue()) : 0.0;
        return KestreliaLib::Lens{static_cast<double>(data.focalLengths[i]) * millimetres, shifted};
    };
    bool const lensMoves = data.focalIsAnimated || (shift && !shift->frames.empty());
    std::vector<Anm::Context> contexts = data.contexts;
    if (!lensMoves && !contexts.empty())
    {
        contexts.resize(1, contexts.front());
    }
    made.lens = filling.samples<KestreliaLib::Lens>(contexts, lensAt);
    shot().camera = std::move(made);
}

QByteArray KestreliaSetup::writeProject()
{
    if (!m_data->isValid || m_data->scene.isEmpty())
    {
        return {};
    }
    m_data->nameUniquely();
    try
    {
        return KestreliaLib::writeProject(m_data->scene);
    }
    catch (KestreliaLib::FileError const& error)
    {
        throw KORV_OperationFailed(__FILE__, __LINE__, QStringLiteral("Operation failed"),
                                   QStringLiteral("writeProject"), error.text());
    }
}

void KestreliaSetup::Data::nameUniquely()
{
    auto const rename = [this](auto& records)
    {
        Text::UniqueNames names;
        for (auto& record : records)
        {
            record.name = names.take(QString::fromStdString(record.name)).toStdString();
        }
        clashes += names.clashes();
    };
    rename(scene.objects);
    rename(shot().groups);
    rename(shot().trackers);
    rename(scene.meshes);
    clashes.removeDuplicates();
}

KestreliaLib::Scene& KestreliaSetup::scene()
{
    return m_data->scene;
}

KestreliaLib::Scene const& KestreliaSetup::scene() const
{
    return m_data->scene;
}

QStringList KestreliaSetup::failureMessages() const
{
    return m_data->failures;
}

QStringList KestreliaSetup::clashingNames() const
{
    return m_data->clashes;
}

int KestreliaSetup::failedCount() const
{
    return m_data->filling.leftOut();
}

}
