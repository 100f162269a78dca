#include "FormatSheet.h"

#include "FormatOptions.h"
#include "Record.h"

#include <algorithm>

namespace
{

using Json = nlohmann::ordered_json;
using Words = std::initializer_list<std::pair<int, char const*>>;

template <typename Flags>
QStringList wordsOf(Flags flags, Words const& words)
{
    QStringList found;
    for (auto const& [flag, word] : words)
    {
        found += static_cast<int>(flags) & flag ? QStringList(QLatin1String(word)) : QStringList();
    }
    return found;
}

/// The options that change what is written.
QStringList followedBy(FormatEntry const& entry)
{
    using namespace Export;
    return wordsOf(entry.traits().honours, {{HonoursLayers, "layers"},
                                            {HonoursViews, "views"},
                                            {HonoursMotion, "track"},
                                            {HonoursInvert, "invert"},
                                            {HonoursUndistort, "undistort"},
                                            {HonoursObjects, "objects"}});
}

QStringList neededBy(FormatEntry const& entry)
{
    using namespace Export;
    return wordsOf(entry.traits().needs, {{NeedsTrack, "track"},
                                          {NeedsMesh, "mesh"},
                                          {NeedsContours, "contours"},
                                          {NeedsSolve, "solve"},
                                          {NeedsLens, "lens"}});
}

QStringList heldBy(FormatEntry const& entry)
{
    using namespace Export;
    return wordsOf(entry.traits().holds, {{HoldsFeather, "feather"},
                                          {HoldsHidden, "hidden"},
                                          {HoldsGroups, "groups"},
                                          {HoldsSecondClips, "secondClips"},
                                          {HoldsFieldLifetimes, "fieldLifetimes"},
                                          {HoldsOpen, "open"},
                                          {HoldsInvert, "invert"},
                                          {HoldsSubtract, "subtract"}});
}

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

QStringList sortedCategories(FormatEntry const& entry)
{
    QStringList categories = entry.format().options().values();
    std::sort(categories.begin(), categories.end());
    return categories;
}

QString optionText(FormatOption const& option)
{
    QString text = option.key + QStringLiteral(" (") +
                   (option.type == FormatOption::Choice ? option.choices.join(QLatin1Char('|')) : option.typeWord());
    text += option.defaultValue.isValid() && !option.defaultValue.toString().isEmpty()
                ? QStringLiteral(", default ") + option.defaultValue.toString()
                : QString();
    return text + QLatin1Char(')');
}

QString line(char const* label, QString const& text)
{
    constexpr int LABEL_WIDTH = 12;
    return QString::fromUtf8(label).leftJustified(LABEL_WIDTH) + (text.isEmpty() ? QStringLiteral("none") : text);
}

QString joined(QStringList const& words)
{
    return words.join(QStringLiteral(", "));
}

}

Json listedFormat(FormatEntry const& entry)
{
    Export::DataFormatBase const& format = entry.format();
    return {{"key", jsonText(format.internalName())},
            {"kind", jsonText(kindWord(entry.kind()))},
            {"name", jsonText(format.displayName())},
            {"extension", jsonText(format.extension())},
            {"files", format.numFiles()},
            {"legacy", format.isLegacy()},
            {"categories", jsonTexts(sortedCategories(entry))},
            {"saveToFile", format.supportsSaveToFile()},
            {"saveToClipboard", format.supportsSaveToClipboard()},
            {"description", jsonText(format.description())},
            {"options", optionsToJson(entry)}};
}

Json wholeFormat(FormatEntry const& entry)
{
    Json whole = listedFormat(entry);
    whole["follows"] = jsonTexts(followedBy(entry));
    whole["needs"] = jsonTexts(neededBy(entry));
    whole["holds"] = jsonTexts(heldBy(entry));
    whole["breaksField"] = entry.traits().breaksField;
    whole["wayIn"] = entry.traits().wayIn;
    whole["limits"] = entry.traits().limits;
    return whole;
}

QStringList formatLines(FormatEntry const& entry)
{
    Export::DataFormatBase const& format = entry.format();
    QStringList targets;
    targets += format.supportsSaveToFile() ? QStringList(QStringLiteral("file")) : QStringList();
    targets += format.supportsSaveToClipboard() ? QStringList(QStringLiteral("clipboard")) : QStringList();
    QStringList options;
    for (FormatOption const& option : optionsOf(entry))
    {
        options += optionText(option);
    }
    QString const legacy = format.isLegacy() ? QStringLiteral(", legacy") : QString();
    QString const files = format.numFiles() == 0 ? QStringLiteral("a sequence") : QString::number(format.numFiles());
    QStringList lines{line("key", entry.key()),
                      line("name", format.displayName()),
                      line("kind", kindWord(entry.kind()) + legacy),
                      line("files", files + QStringLiteral(", ") + format.extension()),
                      line("made for", joined(targets)),
                      line("categories", joined(sortedCategories(entry))),
                      line("about", format.description()),
                      line("options", joined(options)),
                      line("follows", joined(followedBy(entry))),
                      line("needs", joined(neededBy(entry)))};
    if (entry.kind() == Kind::Shape)
    {
        lines += line("holds", joined(heldBy(entry)));
    }
    lines += line("names", *entry.traits().breaksField
                               ? QStringLiteral("without any of ") + QString::fromUtf8(entry.traits().breaksField)
                               : QStringLiteral("any"));
    return lines + QStringList{line("way in", QString::fromUtf8(entry.traits().wayIn)),
                               line("limits", QString::fromUtf8(entry.traits().limits))};
}
