// `marlo-export formats`

#include "Commands.h"
#include "Console.h"
#include "FindFormat.h"
#include "FormatOptions.h"
#include "Record.h"

#include <algorithm>

namespace
{

using Json = nlohmann::ordered_json;

Json valueToJson(QVariant const& value)
{
    switch (value.userType())
    {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::QString:
        return jsonText(value.toString());
    default:
        return nullptr;
    }
}

Json optionsToJson(FormatEntry const& entry)
{
    Json list = Json::array();
    for (FormatOption const& option : optionsOf(entry))
    {
        Json object{{"key", jsonText(option.key)},
                    {"type", jsonText(option.typeWord())},
                    {"default", valueToJson(option.defaultValue)}};
        if (option.type == FormatOption::Choice)
        {
            object["choices"] = jsonTexts(option.choices);
        }
        list.push_back(object);
    }
    return list;
}

Json toJson(FormatEntry const& entry)
{
    Export::DataFormatBase const& format = entry.format();
    QStringList categories = format.options().values();
    std::sort(categories.begin(), categories.end());
    return {{"key", jsonText(format.internalName())},
            {"kind", jsonText(kindWord(entry.kind()))},
            {"name", jsonText(format.displayName())},
            {"extension", jsonText(format.extension())},
            {"files", format.numFiles()},
            {"legacy", format.isLegacy()},
            {"categories", jsonTexts(categories)},
            {"saveToFile", format.supportsSaveToFile()},
            {"saveToClipboard", format.supportsSaveToClipboard()},
            {"description", jsonText(format.description())},
            {"options", optionsToJson(entry)}};
}

/// A line for people; the columns are as wide as their widest text.
QString tableLine(FormatEntry const& entry, int keyWidth, int nameWidth)
{
    Export::DataFormatBase const& format = entry.format();
    QString const line = format.internalName().leftJustified(keyWidth) + QStringLiteral("  ") +
                         format.displayName().leftJustified(nameWidth) + QStringLiteral("  ") +
                         format.extension().leftJustified(11) + QStringLiteral("  ") + kindWord(entry.kind());
    return format.isLegacy() ? line + QStringLiteral(" (legacy)") : line;
}

}

ExitStatus runFormats(Options const& options, Console& console)
{
    std::vector<FormatEntry> const entries = formatsOfKind(options.kind);
    if (options.json)
    {
        Json list = Json::array();
        for (FormatEntry const& entry : entries)
        {
            list.push_back(toJson(entry));
        }
        console.result(jsonBytes(list));
        return Success;
    }
    int keyWidth = 0;
    int nameWidth = 0;
    for (FormatEntry const& entry : entries)
    {
        keyWidth = std::max(keyWidth, entry.key().size());
        nameWidth = std::max(nameWidth, entry.format().displayName().size());
    }
    for (FormatEntry const& entry : entries)
    {
        console.result(tableLine(entry, keyWidth, nameWidth));
    }
    return Success;
}
