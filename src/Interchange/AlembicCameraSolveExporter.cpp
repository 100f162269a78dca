// Alembic 3D data: any program that imports Alembic reads it. AlembicSceneWriter.cpp shows the
// archive; it is made of the same scene as matchmove projects are.

#include "Interchange/AlembicCameraSolveExporter.h"

#include "Interchange/parts/AlembicSceneWriter.h"
#include "Interchange/parts/MatchmoveScene.h"
#include "Writing/Results.h"
#include "Writing/Values.h"

#include <QMap>
#include <QVariant>

namespace Export
{

namespace
{

constexpr char SCENE_NAME[] = "Marlo Scene";

/// Of the distance of points and the focal length in millimetres, as a single float.
constexpr double POINT_SCALE = 0.20000000447034846;

/// The reference frame isn't among them: it is about meshes that are taken for one frame, and
/// here they all move as they do.
struct Choices
{
    bool includeFeatures = true;
    bool sceneAtOrigin = false;
    bool suggestScale = false;
};

Choices choicesOf(KV::ExportSpec const& spec)
{
    auto const* const map = std::any_cast<QMap<QString, QVariant>>(&spec.customData);
    if (!map)
    {
        return {};
    }
    KV::StringsUI const texts = KV::CameraSolveExporter::UI();
    return {map->value(texts.includeFeatures.key).toBool(), map->value(texts.sceneAtOrigin.key).toBool(),
            map->value(texts.pointSizeMode.key).toString() == texts.pointSizeSuggested};
}

// As far as the points are from the camera, so large are the marks that a viewer shows of
// them: the whole scene is made to suit.
double sceneScale(MatchmoveScene& model, Choices const& choices)
{
    KestreliaLib::Scene const& scene = model.scene();
    auto const& camera = scene.shots.front().camera;
    if (!choices.suggestScale || !camera || camera->poses.isEmpty() || camera->lens.isEmpty())
    {
        return 1.0;
    }
    int const first = scene.shots.front().firstFrame;
    KestreliaLib::Vector3 const eye = camera->poses.at(first).position;
    double const distance = model.helper().suggestPointScale(true, choices.includeFeatures, {eye.x, eye.y, eye.z});
    double const scale = distance * POINT_SCALE / camera->lens.at(first).focalLength;
    return isWritable(scale) && scale > 0.0 ? scale : 1.0;
}

}

AlembicCameraSolveExporter::AlembicCameraSolveExporter() = default;
AlembicCameraSolveExporter::~AlembicCameraSolveExporter() = default;

Korvane::ExportedFiles AlembicCameraSolveExporter::exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                                     KV::ExportSpec const& spec,
                                                                     ObjectsToExport objects) const
{
    Choices const choices = choicesOf(spec);
    MatchmoveScene model(project, spec, {objects, choices.includeFeatures, KestreliaLib::Config::RigCamera});
    Korvane::ExportedFiles result;
    QStringList messages = model.messages();
    if (model.isValid())
    {
        KestreliaLib::Scene& scene = model.scene();
        scene.name = SCENE_NAME;
        scene.pose.reset();
        if (!choices.sceneAtOrigin)
        {
            scene.pose = model.scenePose();
        }
        result.files.insert(path, writeAlembicScene(scene, sceneScale(model, choices), messages));
        result.failedCount = model.failedCount();
    }
    else
    {
        messages += QStringLiteral("There is nothing to export without a view and a clip");
    }
    appendFailures(result, path, messages);
    return result;
}

void AlembicCameraSolveExporter::setUserOptions(KV::ExportOptionsReceiver& receiver) const
{
    KV::StringsUI const texts = UI();
    auto const addCheckBox = [&](KV::OptionTexts const& option, bool isChecked)
    { receiver.addBoolOption(option.key, option.label, option.toolTip, isChecked); };
    addCheckBox(texts.includeFeatures, true);
    addCheckBox(texts.useReferenceFrame, true);
    addCheckBox(texts.sceneAtOrigin, false);
    receiver.addChoiceOption(texts.pointSizeMode.key, texts.pointSizeMode.label, texts.pointSizeMode.toolTip,
                             {texts.pointSizeSuggested, texts.pointSizeFixed});
}

}
