#include "Core/presets/PresetJson.h"

#include "Core/PresetJsonException.h"

#include <QMap>
#include <QVariant>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <string>

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

template <typename Enum>
struct Word
{
    Enum value;
    char const* word;
};

// Error texts list the words in this order.
constexpr Word<Preset::ExportInfo::Type> TYPE_WORDS[] = {
    {Preset::ExportInfo::Tracking, "tracking"},
    {Preset::ExportInfo::Shape, "shape"},
    {Preset::ExportInfo::Camera, "camera"},
};
constexpr Word<ZN_TRACKING_OPTION> TRACKING_OPTION_WORDS[] = {
    {ZN_TRACKING_OPTION_BASIC, "basic"},
    {ZN_TRACKING_OPTION_ADJUSTED, "adjusted"},
    {ZN_TRACKING_OPTION_OFFSET, "offset"},
    {ZN_TRACKING_OPTION_STABILIZED, "stabilized"},
};
constexpr Word<ZN::LayerExportMode> LAYER_WORDS[] = {
    {ZN::SelectedLayer, "selected"},
    {ZN::AllLayers, "all"},
    {ZN::VisibleLayers, "visible"},
    {ZN::SpecifiedLayer, "specified"},
};
constexpr Word<KV::CameraSolveExporter::ObjectsToExport> OBJECT_WORDS[] = {
    {KV::CameraSolveExporter::AllObjects, "all"},
    {KV::CameraSolveExporter::SelectedObjects, "selected"},
    {KV::CameraSolveExporter::VisibleObjects, "visible"},
};

template <typename Enum, std::size_t count>
std::string wordOf(Word<Enum> const (&table)[count], Enum value)
{
    for (Word<Enum> const& row : table)
    {
        if (row.value == value)
        {
            return row.word;
        }
    }
    throw CustomJsonException("Enum missing from options array.");
}

template <typename Enum, std::size_t count>
Enum valueOf(Word<Enum> const (&table)[count], std::string const& word)
{
    std::string text = "Invalid preset type: expected ";
    for (Word<Enum> const& row : table)
    {
        if (row.word == word)
        {
            return row.value;
        }
        text += '"' + std::string(row.word) + "\", ";
    }
    throw CustomJsonException(text + "but got " + word);
}

QString toText(json const& source)
{
    return QString::fromStdString(source.get<std::string>());
}

// Writing

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

/// The number without its fraction.
int toInt(double number, char const* key)
{
    using Limits = std::numeric_limits<int>;
    double const whole = std::trunc(number);
    if (whole < Limits::min() || whole > Limits::max())
    {
        throw CustomJsonException(std::string("'") + key + "' must be from " + std::to_string(Limits::min()) + " to " +
                                  std::to_string(Limits::max()) + " but got " + json(number).dump());
    }
    return static_cast<int>(whole);
}

Anm::Context readReferenceFrame(json const& options)
{
    constexpr char key[] = "referenceFrame";
    if (!options.contains(key))
    {
        return Anm::Context::invalid();
    }
    int const frame = toInt(options.at(key).get<double>(), key);
    return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView());
}

std::vector<Anm::View> readViews(json const& options)
{
    constexpr char key[] = "viewsToExport";
    if (!options.contains(key))
    {
        return {Anm::View::defaultView()};
    }
    std::vector<Anm::View> views;
    for (double const number : options.at(key).get<std::vector<double>>())
    {
        int const id = toInt(number, key);
        if (id != number)
        {
            throw CustomJsonException("'viewsToExport' must hold whole numbers but got " + json(number).dump());
        }
        views.emplace_back(id);
    }
    return views;
}

LayerSelection readSelection(json const& options, char const* modeKey, char const* absent)
{
    LayerSelection selection;
    selection.mode = valueOf(LAYER_WORDS, options.value(modeKey, absent));
    if (selection.mode == ZN::SpecifiedLayer)
    {
        selection.layerName = QString::fromStdString(options.value("layer", ""));
        if (selection.layerName.isEmpty())
        {
            throw CustomJsonException("'exportMode' mode is 'specified' but no 'layer' provided");
        }
    }
    return selection;
}

// In each of these value() comes first, which refuses options that are no object.

UserTrackingOptions readTrackingOptions(json const& source)
{
    UserTrackingOptions options;
    options.trackingOption = valueOf(TRACKING_OPTION_WORDS, source.value("trackingOption", "basic"));
    options.invert = source.value("invert", false);
    options.undistort = source.value("undistort", false);
    options.referenceFrame = readReferenceFrame(source);
    options.layerSelection = readSelection(source, "layerExportMode", "selected");
    options.viewsToExport = readViews(source);
    return options;
}

UserShapeOptions readShapeOptions(json const& source)
{
    UserShapeOptions options;
    options.layerSelection = readSelection(source, "exportMode", "all");
    options.viewsToExport = readViews(source);
    return options;
}

QVariant readCustomValue(json const& source)
{
    if (source.is_string())
    {
        return toText(source);
    }
    if (source.is_boolean())
    {
        return source.get<bool>();
    }
    throw CustomJsonException(std::string("expected bool or string but got ") + source.type_name());
}

UserCameraSolveOptions readCameraOptions(json const& source)
{
    UserCameraSolveOptions options;
    options.objectsToExport = valueOf(OBJECT_WORDS, source.value("objectsToExport", "all"));
    if (source.contains("customData"))
    {
        QMap<QString, QVariant> map;
        for (auto const& [key, value] : source.at("customData").get<json::object_t>())
        {
            map.insert(QString::fromStdString(key), readCustomValue(value));
        }
        // Exporters take options that a map lacks for switched off, but fall back on their
        // defaults when there is no map. That is what was written as an empty object.
        if (!map.isEmpty())
        {
            options.customData = std::move(map);
        }
    }
    return options;
}

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

void from_json(json const& source, Preset::ExportInfo& info)
{
    info.type = valueOf(TYPE_WORDS, source.at("type").get<std::string>());
    info.format = toText(source.at("format"));
    json const& options = source.at("options");
    switch (info.type)
    {
    case Preset::ExportInfo::Tracking:
        info.options = readTrackingOptions(options);
        break;
    case Preset::ExportInfo::Shape:
        info.options = readShapeOptions(options);
        break;
    case Preset::ExportInfo::Camera:
        info.options = readCameraOptions(options);
        break;
    }
    if (source.contains("filePath"))
    {
        info.filePath = toText(source.at("filePath"));
    }
}

}
