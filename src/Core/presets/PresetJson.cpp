#include "Core/presets/PresetJson.h"

#include "Core/presets/PresetWords.h"

#include <QMap>
#include <QVariant>
#include <nlohmann/json.hpp>

// {
//   "filePath": "sign.txt",
//   "format": "after_effects_corner_pin",
//   "options": { "invert": false, "layer": "Sign", "layerExportMode": "specified", ... },
//   "type": "tracking"
// }

namespace Export
{

using nlohmann::json;

namespace
{

json viewIds(std::vector<Anm::View> const& views)
{
    json ids = json::array();
    for (Anm::View const& view : views)
    {
        ids.push_back(view.id());
    }
    return ids;
}

void addSelection(json& target, char const* modeKey, LayerSelection const& selection)
{
    target[modeKey] = wordOf(LAYER_WORDS, selection.mode);
    if (auto const layer = selection.specifiedLayer())
    {
        target["layer"] = layer->toStdString();
    }
}

json toJson(UserTrackingOptions const& options)
{
    Anm::Context const& reference = options.referenceFrame;
    json target;
    target["trackingOption"] = wordOf(TRACKING_OPTION_WORDS, options.trackingOption);
    target["invert"] = options.invert;
    target["undistort"] = options.undistort;
    target["referenceFrame"] = reference.time().isValid() ? reference.frameValue() : -1;
    addSelection(target, "layerExportMode", options.layerSelection);
    target["viewsToExport"] = viewIds(options.viewsToExport);
    return target;
}

json toJson(UserShapeOptions const& options)
{
    json target;
    addSelection(target, "exportMode", options.layerSelection);
    target["viewsToExport"] = viewIds(options.viewsToExport);
    return target;
}

json toJson(QVariant const& value)
{
    switch (value.userType())
    {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::QString:
        return value.toString().toStdString();
    default:
        throw CustomJsonException("QVariant type conversion to json not implemented");
    }
}

json toJson(UserCameraSolveOptions const& options)
{
    json customData = json::object();
    if (auto const* map = std::any_cast<QMap<QString, QVariant>>(&options.customData))
    {
        for (auto entry = map->constBegin(); entry != map->constEnd(); ++entry)
        {
            customData[entry.key().toStdString()] = toJson(entry.value());
        }
    }
    json target;
    target["objectsToExport"] = wordOf(OBJECT_WORDS, options.objectsToExport);
    target["customData"] = std::move(customData);
    return target;
}

json optionsToJson(Preset::ExportInfo const& info)
{
    switch (info.type)
    {
    case Preset::ExportInfo::Tracking:
        return toJson(std::get<UserTrackingOptions>(info.options));
    case Preset::ExportInfo::Shape:
        return toJson(std::get<UserShapeOptions>(info.options));
    case Preset::ExportInfo::Camera:
        break;
    }
    return toJson(std::get<UserCameraSolveOptions>(info.options));
}

// Reading. Numbers are taken as doubles: asked for an int, the library would take
// true for 1 and overflow on what doesn't fit.

}

json toJson(Preset::ExportInfo const& info)
{
    json target;
    target["type"] = wordOf(TYPE_WORDS, info.type);
    target["format"] = info.format.toStdString();
    target["options"] = optionsToJson(info);
    if (info.filePath)
    {
        target["filePath"] = info.filePath->toStdString();
    }
    return target;
}

}
