// Camera solves as binary FBX. Three formats derive from this class, which builds the scene;
// FBX3DExporterMaya.cpp and FBX3DExporterNuke.cpp say which programs read them. Its shape:
//
//   MarloScene                        <- the scene's pose; not there for an old solve
//     MarloCameraNode                 <- "camera", or the rig "stereoCamera" with its eyes
//     Street                          <- null of a moving group
//       Poster                        <- null of a layer
//         Poster_TrackMesh, Poster_Surface
//         Lower left                  <- a pyramid for each point
//     Static_auto_features            <- null, a feature set below it, points below that
//     lamp                            <- null of a model from a file
//
// One animation stack with one layer holds a linear key of every frame for what moves, at the
// shown frame numbers and the rate of FBX that is nearest to the project's.

#include "FBX/FBX3DExporterBase.h"

#include "FBX/parts/Camera.h"
#include "FBX/parts/Contents.h"
#include "FBX/parts/Keys.h"
#include "FBX/parts/Objects.h"
#include "FBX/parts/SceneContext.h"
#include "FBX/parts/SceneFile.h"
#include "FBX/parts/StereoRig.h"
#include "Host/MessageBox.h"
#include "Writing/Results.h"
#include "Writing/ThrowHelpers.h"

#include <QMap>
#include <QVariant>

#include <cmath>
#include <limits>
#include <memory>

namespace Export
{

using namespace FBXParts;

namespace
{

constexpr double METRES_TO_CENTIMETRES = 100.0;
constexpr double FIXED_POINT_SIZE = 0.01;

struct ManagerEnd
{
    void operator()(FbxManager* manager) const
    {
        manager->Destroy();
    }
};

Choices choicesOf(std::any const& customData)
{
    Choices choices;
    if (!customData.has_value())
    {
        return choices;
    }
    KV::StringsUI const texts = KV::CameraSolveExporter::UI();
    auto const& map = std::any_cast<QMap<QString, QVariant> const&>(customData);
    choices.includeFeatures = map.value(texts.includeFeatures.key).toBool();
    choices.useReferenceFrame = map.value(texts.useReferenceFrame.key).toBool();
    choices.sceneAtOrigin = map.value(texts.sceneAtOrigin.key).toBool();
    choices.suggestPointSize = map.value(texts.pointSizeMode.key).toString() == texts.pointSizeSuggested;
    return choices;
}

Anm::Context referenceOf(KORV_ProjectManager const& project, KV::ExportSpec const& spec, Choices const& choices)
{
    Anm::Context reference = spec.referenceContext ? *spec.referenceContext : Anm::Context::invalid();
    if (choices.useReferenceFrame)
    {
        Anm::View const view = Anm::View::defaultView();
        reference.setTime(Anm::Time::fromUInt(project.scene3DParameters().referenceFrame().staticValue(view)));
    }
    return reference;
}

/// The rate of FBX that is nearest to a rate; the earlier of two that are as near. Neither the
/// default nor the custom mode has a rate of its own.
FbxTime::EMode nearestTimeMode(double rate)
{
    constexpr double EQUAL = 1e-8;
    FbxTime::EMode nearest = FbxTime::eDefaultMode;
    double least = std::numeric_limits<double>::infinity();
    for (int i = FbxTime::eDefaultMode + 1; i < FbxTime::eModesCount && least > EQUAL; ++i)
    {
        auto const mode = static_cast<FbxTime::EMode>(i);
        double const difference = std::abs(FbxTime::GetFrameRate(mode) - rate);
        if (mode != FbxTime::eCustom && difference < least)
        {
            nearest = mode;
            least = difference;
        }
    }
    return nearest;
}

void setUpTime(SceneContext& context)
{
    constexpr double VISIBLE = 0.01;
    double const wanted = context.project.frameRate();
    context.fbxTimeMode = nearestTimeMode(wanted);
    context.sceneFrameRate = FbxTime::GetFrameRate(context.fbxTimeMode);
    context.lastFrame = Anm::Time::fromUInt(context.project.playbackOutPoint(false));
    if (std::abs(context.sceneFrameRate - wanted) > VISIBLE)
    {
        QString const text =
            FBX3DExporterBase::tr("Warning: FBX 7.7.0 does not support %1 fps. Solve will be exported as %2 fps")
                .arg(wanted)
                .arg(context.sceneFrameRate);
        KORV_MessageBox(&context.project.callbacks())
            .warning(FBX3DExporterBase::tr("FBX exporter").toStdString(), text.toStdString(), KORV_MESSAGEBOX_OK);
    }
    context.scene->GetGlobalSettings().SetTimeMode(context.fbxTimeMode);
    context.scene->GetGlobalSettings().SetCustomFrameRate(context.sceneFrameRate);
    FbxTime::SetGlobalTimeMode(FbxTime::eCustom, context.sceneFrameRate);
    FbxTime::SetGlobalTimeProtocol(FbxTime::eFrameCount);
}

void setUpScene(SceneContext& context)
{
    context.scene = FbxScene::Create(context.manager, "Marlo 3D Camera Data");
    FbxAnimStack* const stack = FbxAnimStack::Create(context.scene, "MarloAnimations");
    context.animLayer = FbxAnimLayer::Create(context.scene, "MarloAnimLayer");
    stack->AddMember(context.animLayer);
    makeMaterials(context);
    if (!context.exporter.applyPixelScale() && !context.isOldSolve)
    {
        FbxSystemUnit::m.ConvertScene(context.scene);
    }
}

void buildSceneRoot(SceneContext& context)
{
    bool const isApart = !context.choices.sceneAtOrigin && !context.exporter.applyPixelScale();
    Korvane::CameraSolve::KeyframePRS const pose =
        isApart ? context.solve.sceneTransformForExport() : Korvane::CameraSolve::KeyframePRS();
    FbxNode* const node = FbxNode::Create(context.scene, context.nodeName(QStringLiteral("MarloScene")));
    setVectors(context, node->LclTranslation, {}, {pose.position});
    setVectors(context, node->LclRotation, {}, {pose.rotation});
    setVectors(context, node->LclScaling, {}, {pose.scale});
    context.scene->GetRootNode()->AddChild(node);
    context.sceneRootNode = node;
}

/// The camera of one view, or the rig of two.
void buildCameras(SceneContext& context, std::vector<Anm::View> const& views)
{
    ZN::Scene3DParameterSet const& scene = context.project.scene3DParameters();
    ZN::StereoCamera3DParameterSet const* const rig = scene.stereoCameraParameters(0);
    if (scene.hasMonoCamera() && views.size() == 1)
    {
        buildCamera(context, *scene.cameraParameters(0), *FbxCamera::Create(context.scene, "camera"));
        return;
    }
    if (!scene.hasMonoCamera() && views.size() == 1)
    {
        context.positionFactor = METRES_TO_CENTIMETRES;
        if (auto const eye = rig->buildViewCamera(views.front()))
        {
            buildCamera(context, *eye, *FbxCamera::Create(context.scene, "camera"));
            return;
        }
    }
    else if (scene.hasStereoCamera() && views.size() > 1)
    {
        context.isStereoRig = true;
        FbxCameraStereo* const camera = FbxCameraStereo::Create(context.scene, "stereoCamera");
        auto const data = buildCamera(context, *scene.cameraParameters(0), *camera);
        buildStereoRig(context, *rig, *camera, data);
        return;
    }
    context.messages += FBX3DExporterBase::tr("The file has no camera, as the solve has none for these views");
}

/// Markers are as large beside their distance as they are in the picture.
void setUpPointScale(SceneContext& context)
{
    if (!context.choices.suggestPointSize)
    {
        context.pointScale = FIXED_POINT_SIZE;
    }
    else if (!context.isOldSolve)
    {
        double const distance =
            context.solve.suggestPointScale(true, context.choices.includeFeatures, context.cameraStart);
        double const scale = context.pointScale * context.positionFactor * distance;
        if (distance > 0.0 && areKeyable({scale}))
        {
            context.pointScale = scale;
        }
    }
}

}

FBX3DExporterBase::FBX3DExporterBase(int fbxVersion) : m_fbxVersion(fbxVersion)
{
}

FBX3DExporterBase::~FBX3DExporterBase() = default;

Korvane::ExportedFiles FBX3DExporterBase::exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                            KV::ExportSpec const& spec, ObjectsToExport objects) const
{
    using namespace Korvane::CameraSolve;
    Choices const choices = choicesOf(spec.customData);
    ExporterHelper solve;
    Anm::View const view = spec.views.empty() ? Anm::View::defaultView() : spec.views.front();
    solve.initialise(project, view, spec.layers, spec.framesToExport, objects == SelectedObjects,
                     objects == VisibleObjects, choices.includeFeatures, nullptr);
    bool const inPixels = applyPixelScale();
    double const scale = inPixels ? solve.referenceFocalLength(ScaledMillimetres) : 0.0;
    SceneTransformMode const mode = inPixels ? SceneApplied : (choices.sceneAtOrigin ? SceneLeftOut : SceneApart);
    solve.setFocalLengthExportUnits(Millimetres);
    solve.setCoordinateTransform(Sabrel::Matrix33(), Sabrel::Matrix33(), scale, mode);

    KV::NullAccuracySource accuracy;
    if (!solve.isOldSolveData())
    {
        accuracy.processNulls(solve.layerIDsToExport(), &project, spec.views);
    }
    ZN::Scene3DParameterSet const& parameters = project.scene3DParameters();
    if (!parameters.hasMonoCamera() && !parameters.hasStereoCamera())
    {
        throwOperationFailed("FBX\\FBX3DExporterBase", __LINE__,
                             QStringLiteral("FBX exporter: empty camera data in the export structure"),
                             tr("No 3D solution ready, please solve the scene first"));
    }

    std::unique_ptr<FbxManager, ManagerEnd> const manager(FbxManager::Create());
    SceneContext context{
        *this, project, solve, accuracy, choices, referenceOf(project, spec, choices), solve.isOldSolveData()};
    context.manager = manager.get();
    if (m_fbxVersion == VERSION_6)
    {
        // Objects are told apart by their names there, and the root goes by this one.
        context.names.take(QStringLiteral("Scene"));
    }
    setUpScene(context);
    if (!context.isOldSolve)
    {
        buildSceneRoot(context);
    }
    setUpTime(context);
    buildCameras(context, spec.views);
    setUpPointScale(context);
    buildLayers(context);
    buildFeatures(context);
    buildAssets(context);

    QByteArray const bytes = fileOf(*manager, *context.scene, m_fbxVersion);
    return fileResult(path, bytes, context.failedCount,
                      QStringList{accuracy.warnInaccurateNulls()} + context.messages +
                          QStringList{renamedMessage(context)});
}

void FBX3DExporterBase::setUserOptions(KV::ExportOptionsReceiver& receiver) const
{
    KV::StringsUI const ui = UI();
    auto const addBool = [&](KV::OptionTexts const& texts, bool defaultValue)
    { receiver.addBoolOption(texts.key, texts.label, texts.toolTip, defaultValue); };
    addBool(ui.includeFeatures, true);
    addBool(ui.useReferenceFrame, true);
    if (!applyPixelScale())
    {
        addBool(ui.sceneAtOrigin, false);
    }
    KV::OptionTexts const& size = ui.pointSizeMode;
    receiver.addChoiceOption(size.key, size.label, size.toolTip, {ui.pointSizeSuggested, ui.pointSizeFixed});
}

bool FBX3DExporterBase::applyPixelScale() const
{
    return false;
}

}
