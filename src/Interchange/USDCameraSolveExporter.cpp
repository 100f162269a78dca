// USD 3D Data: a camera solve as the text of a stage, which 3D programs reference or import.
//
//   #usda 1.0
//   (
//       defaultPrim = "MarloExport"
//       ...
//       metersPerUnit = 0.01
//       startTimeCode = 1001
//       upAxis = "Y"
//   )
//
//   def Xform "MarloExport"                      <- carries the pose of the scene
//   {
//       def Xform "CameraTransform"              <- translate and rotateXYZ, a sample per frame
//       {
//           def Camera "Camera"                  <- lens and film back in millimetres
//           ...
//       def Xform "Wall"                         <- a layer; below it its mesh and its points
//       {
//           def Mesh "Wall_TrackMesh"
//           def Xform "Point_1"
//           ...
//       def Xform "SolvedFeatures"               <- feature sets that move with no layer
//       def Xform "house"                        <- a model from a file
//
// Time codes are frame numbers as the user sees them.

#include "Interchange/USDCameraSolveExporter.h"

#include "Interchange/parts/USDSceneWriter.h"
#include "Writing/Results.h"
#include "Writing/TextBuffer.h"

#include <QMap>
#include <QVariant>

namespace Export
{

namespace
{

constexpr char ROOT_NAME[] = "MarloExport";

// An empty holder leaves the choice as it is; in a map, what isn't there is false.
USDChoice choiceOf(KV::ExportSpec const& spec, ZN::Scene3DParameterSet const& scene)
{
    USDChoice choice;
    if (spec.referenceContext)
    {
        choice.reference = *spec.referenceContext;
    }
    if (!spec.customData.has_value())
    {
        return choice;
    }
    auto const& options = std::any_cast<QMap<QString, QVariant> const&>(spec.customData);
    KV::StringsUI const ui = KV::CameraSolveExporter::UI();
    choice.includeFeatures = options.value(ui.includeFeatures.key).toBool();
    choice.sceneAtOrigin = options.value(ui.sceneAtOrigin.key).toBool();
    choice.suggestPointSize = options.value(ui.pointSizeMode.key).toString() == ui.pointSizeSuggested;
    if (options.value(ui.useReferenceFrame.key).toBool())
    {
        unsigned int const frame = scene.referenceFrame().staticValue(Anm::View::defaultView());
        choice.reference = Anm::Context(Anm::Time::fromUInt(frame), Anm::View::defaultView());
    }
    return choice;
}

QString listed(QStringList const& names)
{
    constexpr int MOST_NAMES = 10;
    QString const text = names.mid(0, MOST_NAMES).join(QStringLiteral(", "));
    return names.size() <= MOST_NAMES ? text : text + QStringLiteral(", ...");
}

}

Korvane::ExportedFiles USDCameraSolveExporter::exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                                 KV::ExportSpec const& spec,
                                                                 ObjectsToExport objects) const
{
    ZN::Scene3DParameterSet const& scene = project.scene3DParameters();
    USDChoice choice = choiceOf(spec, scene);

    Korvane::CameraSolve::ExporterHelper solve;
    Anm::View const view = spec.views.empty() ? Anm::View::defaultView() : spec.views.front();
    solve.initialise(project, view, spec.layers, spec.framesToExport, objects == SelectedObjects,
                     objects == VisibleObjects, choice.includeFeatures, nullptr);
    // What the solver found by itself isn't kept well enough in legacy solves.
    choice.includeFeatures = choice.includeFeatures && !solve.isOldSolveData();
    solve.setFocalLengthExportUnits(Korvane::CameraSolve::Millimetres);
    Sabrel::Matrix33 const unit;
    solve.setCoordinateTransform(
        unit, unit, 0.0, choice.sceneAtOrigin ? Korvane::CameraSolve::SceneLeftOut : Korvane::CameraSolve::SceneApart);
    KV::NullAccuracySource accuracy;
    accuracy.processNulls(solve.layerIDsToExport(), &project, spec.views);

    KV::BasicUSDGraph graph((QLatin1String(ROOT_NAME)));
    USDSceneWriter writer(project, solve, graph, choice);
    writer.write();

    QStringList failures = writer.failures();
    failures += accuracy.warnInaccurateNulls();
    if (scene.hasStereoCamera())
    {
        failures += tr("The camera is that of the stereo rig, which stands between the eyes.");
    }
    if (writer.names().renamedCount() > 0)
    {
        failures += tr("Several objects would have one name: %1. All but the first got a number behind it.")
                        .arg(listed(writer.names().clashes()));
    }
    std::string const text = graph.toString();
    requireTextSize(static_cast<qint64>(text.size()), tr("Export fewer layers, or leave the features out."));
    return fileResult(path, QByteArray(text.data(), static_cast<int>(text.size())), writer.failedCount(), failures);
}

void USDCameraSolveExporter::setUserOptions(KV::ExportOptionsReceiver& receiver) const
{
    KV::StringsUI const ui = UI();
    auto const add = [&](KV::OptionTexts const& texts, bool isOn)
    { receiver.addBoolOption(texts.key, texts.label, texts.toolTip, isOn); };
    add(ui.includeFeatures, true);
    add(ui.useReferenceFrame, true);
    add(ui.sceneAtOrigin, false);
    KV::OptionTexts const& size = ui.pointSizeMode;
    receiver.addChoiceOption(size.key, size.label, size.toolTip, {ui.pointSizeSuggested, ui.pointSizeFixed});
}

}
