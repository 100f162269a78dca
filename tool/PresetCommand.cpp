// `marlo-export preset list`, `preset add` and `preset remove`

#include "Commands.h"
#include "Console.h"
#include "ExportPlan.h"
#include "FormatOptions.h"
#include "PresetFile.h"
#include "Record.h"

#include <QFileInfo>

namespace
{

using ExportInfo = Export::Preset::ExportInfo;
using Json = nlohmann::ordered_json;

// Adding

Export::LayerSelection selectionOf(ExportChoices const& choices)
{
    if (choices.layer)
    {
        if (choices.layer->isEmpty())
        {
            throw usageError(QStringLiteral("--layer: needs a text that isn't empty"));
        }
        return {ZN::SpecifiedLayer, *choices.layer};
    }
    return {choices.layers.value_or(ZN::SelectedLayer), QString()};
}

/// Names belong to a project, of which there is none here.
std::vector<Anm::View> viewsOf(ExportChoices const& choices)
{
    std::vector<Anm::View> views;
    for (QString const& text : choices.views)
    {
        bool isNumber = false;
        int const id = text.toInt(&isNumber);
        if (!isNumber || id < 0)
        {
            throw usageError(QStringLiteral("--view: \"") + text +
                             QStringLiteral("\" isn't the number of a view; the first view of a project is 0, the "
                                            "second 1"));
        }
        views.emplace_back(id);
    }
    return views;
}

Anm::Context referenceFrameOf(ExportChoices const& choices)
{
    if (!choices.referenceFrame)
    {
        return Anm::Context::invalid();
    }
    int const frame = static_cast<int>(*choices.referenceFrame);
    if (frame < 0 || frame != *choices.referenceFrame)
    {
        throw usageError(QStringLiteral("--reference-frame: %1 isn't a host frame; these are whole numbers from 0 on")
                             .arg(*choices.referenceFrame));
    }
    return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView());
}

ExportInfo exportOf(FormatEntry const& format, Options const& options)
{
    ExportChoices const& choices = options.choices;
    ExportInfo info;
    info.format = format.key();
    info.filePath = options.writing.output;
    QMap<QString, QVariant> const values = optionValues(format, choices.formatOptions);
    switch (format.kind())
    {
    case Kind::Tracking:
        info.type = ExportInfo::Tracking;
        info.options = Export::UserTrackingOptions{choices.track,        choices.invert,
                                                   choices.undistort,    referenceFrameOf(choices),
                                                   selectionOf(choices), viewsOf(choices)};
        return info;
    case Kind::Shape:
        info.type = ExportInfo::Shape;
        info.options = Export::UserShapeOptions{selectionOf(choices), viewsOf(choices)};
        return info;
    case Kind::Camera:
        info.type = ExportInfo::Camera;
        info.options = Export::UserCameraSolveOptions{choices.objects, values};
        return info;
    case Kind::Lens:
        break;
    }
    throw usageError(QStringLiteral("lens formats such as ") + format.key() +
                     QStringLiteral(" can't be presets; use marlo-export export"));
}

// Listing

QString targetText(Json const& stored)
{
    return !stored.at("filePath").is_null()
               ? QStringLiteral(" to ") + QString::fromStdString(stored.at("filePath").get<std::string>())
               : QStringLiteral(" to a file named after layer or project");
}

/// The presets as the file holds them, sorted.
Json listOf(Presets const& presets)
{
    Json const file = Json::parse(Export::serialisePresets(presets, false));
    Json list = Json::array();
    for (Json const& preset : file.at("presets"))
    {
        Json exports = Json::array();
        for (Json const& stored : preset.at("exports"))
        {
            exports.push_back({{"format", stored.at("format")},
                               {"type", stored.at("type")},
                               {"filePath", stored.contains("filePath") ? stored.at("filePath") : Json()},
                               {"options", stored.at("options")}});
        }
        list.push_back({{"name", preset.at("name")}, {"exports", exports}});
    }
    return list;
}

}

ExitStatus runPresetList(Options const& options, Console& console)
{
    Json const list = listOf(readPresets(options.presets.file));
    if (options.json)
    {
        console.result(jsonBytes(list));
        return Success;
    }
    for (Json const& preset : list)
    {
        console.result(oneLine(QString::fromStdString(preset.at("name").get<std::string>())));
        for (Json const& stored : preset.at("exports"))
        {
            QString const type = QString::fromStdString(stored.at("type").get<std::string>());
            QString const format = QString::fromStdString(stored.at("format").get<std::string>());
            console.result(QStringLiteral("  ") + oneLine(type + QLatin1Char(' ') + format + targetText(stored)));
        }
    }
    return Success;
}

ExitStatus runPresetAdd(Options const& options, Console& console)
{
    FormatEntry const format = findFormat(options.format);
    if (options.writing.output == QStringLiteral("-"))
    {
        throw usageError(QStringLiteral("preset add: -o needs the path of a file"));
    }
    if (options.choices.layer && !options.writing.unsafeNames)
    {
        refuseUnsafeName(format, QStringLiteral("layer \"") + *options.choices.layer + QLatin1Char('"'),
                         *options.choices.layer);
    }
    ExportInfo const info = exportOf(format, options);
    bool const isOld = QFileInfo::exists(options.presets.file);
    Presets presets = isOld ? readPresets(options.presets.file) : Presets();
    presets[options.presets.name].exports.push_back(info);
    writePresets(presets, options.presets.file);
    for (Unheard const& choice : optionsWithoutEffect(format, options.choices.given))
    {
        console.warning(choice.text(format.key()));
    }
    return Success;
}

ExitStatus runPresetRemove(Options const& options, Console&)
{
    Presets presets = readPresets(options.presets.file);
    checkName(presets, options.presets.name);
    presets.remove(options.presets.name);
    writePresets(presets, options.presets.file);
    return Success;
}
