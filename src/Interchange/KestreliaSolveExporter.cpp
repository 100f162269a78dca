// Kestrelia 3D Data: the user opens the file in the matchmoving application. It is a project
// with one shot, whose camera is solved (docs/kestrelia-file.md):
//
//   kestrelia 1
//   name "Marlo Scene"
//   pose ...                       <- of the scene as a whole
//   object 1 "Car" ... end         <- a layer that moves
//   shot 1 "plate"
//     camera "Camera" ... end
//     group 1 "Car"
//     tracker 1 "Point 1" ... end  <- in the space of its object
//   end
//   mesh 1 "lamp" ... end          <- meshes of layers, models
//
// What goes into it is decided here; putting it together is the host's business.

#include "Interchange/KestreliaSolveExporter.h"

#include "Interchange/parts/KestreliaNames.h"
#include "Interchange/parts/MatchmoveScene.h"
#include "Writing/Results.h"

#include <QMap>
#include <QVariant>

namespace Export
{

namespace
{

// An empty holder means true; a map without the key means false.
bool optionOf(std::any const& customData, QString const& key)
{
    return !customData.has_value() || std::any_cast<QMap<QString, QVariant> const&>(customData).value(key).toBool();
}

}

KestreliaSolveExporter::KestreliaSolveExporter() = default;
KestreliaSolveExporter::~KestreliaSolveExporter() = default;

Korvane::ExportedFiles KestreliaSolveExporter::exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                                 KV::ExportSpec const& spec,
                                                                 ObjectsToExport objects) const
{
    MatchmoveChoice choice;
    choice.objects = objects;
    choice.includeFeatures = optionOf(spec.customData, UI().includeFeatures.key);
    choice.stereoCamera = KestreliaLib::Config::EyeCamera;
    MatchmoveScene matchmove(project, spec, choice);

    Korvane::ExportedFiles result;
    if (choice.includeFeatures && matchmove.helper().isOldSolveData())
    {
        appendFailures(result, path,
                       {tr("Auto feature tracks will not be exported for this solve; please re-solve to get the "
                           "required data.")});
    }
    if (!matchmove.isValid())
    {
        appendFailures(result, path, {tr("Could not initialise Kestrelia project")});
        return result;
    }
    matchmove.scene().pose = matchmove.scenePose();
    QByteArray const contents = matchmove.setup().writeProject();
    appendFailures(result, path, matchmove.messages());
    if (contents.isEmpty())
    {
        appendFailures(result, path, {tr("Empty Kestrelia project")});
        return result;
    }
    appendFailures(result, path, {KestreliaNames::renamed(matchmove.setup().clashingNames())});
    result.files.insert(path, contents);
    result.failedCount = matchmove.failedCount();
    return result;
}

void KestreliaSolveExporter::setUserOptions(KV::ExportOptionsReceiver& receiver) const
{
    KV::OptionTexts const texts = UI().includeFeatures;
    receiver.addBoolOption(texts.key, texts.label, texts.toolTip, true);
}

}
