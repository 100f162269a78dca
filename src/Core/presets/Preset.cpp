#include "Core/Preset.h"

#include "Core/presets/PresetJson.h"
#include "Core/PresetJsonException.h"
#include "Writing/ThrowHelpers.h"
#include "Host/Fnd.h"
#include "text/PartFile.h"

#include <QFile>
#include <QStringList>
#include <nlohmann/json.hpp>

#include <fstream>
#include <istream>
#include <stdexcept>
#include <utility>

namespace Export
{

using nlohmann::json;

namespace
{

constexpr char SOURCE[] = "Preset";
constexpr int VERSION = 1;

// A file of presets needs seven levels and some hundred bytes for each export; what
// is beyond these limits was made to eat memory.
constexpr std::size_t MOST_BYTES = 16 * 1024 * 1024;
constexpr int MOST_LEVELS = 32;

json toJson(QString const& name, Preset const& preset)
{
    json exports = json::array();
    for (Preset::ExportInfo const& info : preset.exports)
    {
        exports.push_back(toJson(info));
    }
    json target;
    target["name"] = name.toStdString();
    target["exports"] = std::move(exports);
    return target;
}

/// By name: the order of a hash changes from process to process.
json sortedToJson(QHash<QString, Preset> const& presets)
{
    QStringList names = presets.keys();
    names.sort();
    json sorted = json::array();
    for (QString const& name : names)
    {
        sorted.push_back(toJson(name, *presets.constFind(name)));
    }
    return sorted;
}

/// The rest of the stream, but not much more than may be taken. Goes through the
/// stream's buffer, as the JSON library does, so that no setting of the stream makes
/// its end an error.
std::string readText(std::istream& stream)
{
    std::string text;
    char chunk[16384];
    while (text.size() <= MOST_BYTES)
    {
        std::streamsize const size = stream.rdbuf()->sgetn(chunk, sizeof chunk);
        if (size <= 0)
        {
            break;
        }
        text.append(chunk, static_cast<std::size_t>(size));
    }
    return text;
}

/// Looks at brackets outside of strings only. Up to the first error of a text that is
/// no JSON this agrees with the parser, which goes no further.
void checkLevels(std::string const& text)
{
    int level = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char const c = text[i];
        if (c == '"')
        {
            isInString = !isInString;
        }
        else if (isInString)
        {
            i += c == '\\' ? 1 : 0;
        }
        else if (c == ']' || c == '}')
        {
            --level;
        }
        else if ((c == '[' || c == '{') && ++level > MOST_LEVELS)
        {
            throw CustomJsonException("The presets are nested deeper than " + std::to_string(MOST_LEVELS) + " levels");
        }
    }
}

void checkVersion(json const& root, std::string& place)
{
    // As a double: asked for an int, the library would take true and 1.5 for 1.
    if (!root.contains("version") || readKey<double>(root, "version", place) == VERSION)
    {
        return;
    }
    place = ".version";
    throwBadFile(SOURCE, __LINE__, QStringLiteral("Bad preset file version."), QString());
}

/// @param place as readAt() wants it
QHash<QString, Preset> parsePresets(std::string const& text, std::string& place)
{
    if (text.size() > MOST_BYTES)
    {
        throw CustomJsonException("The presets are longer than " + std::to_string(MOST_BYTES) + " bytes");
    }
    checkLevels(text);
    json const root = json::parse(text);
    checkVersion(root, place);
    QHash<QString, Preset> presets;
    auto const addPreset = [&](json const& source)
    {
        std::vector<Preset::ExportInfo> exports;
        json const& stored = source.at("exports");
        auto const addExport = [&](json const& element) { exports.push_back(readExport(element, place)); };
        readAt(place, ".exports", [&] { readEach(stored, place, addExport); });
        QString const name = QString::fromStdString(readKey<std::string>(source, "name", place));
        presets.insert(name, Preset(std::move(exports)));
    };
    json const& stored = root.at("presets");
    readAt(place, ".presets", [&] { readEach(stored, place, addPreset); });
    return presets;
}

[[noreturn]] void throwNotOpened(QString const& path)
{
    throwBadFile(SOURCE, __LINE__, QStringLiteral("Failed to open preset file: %1").arg(path),
                 QStringLiteral("Failed to open preset file"));
}

/// Writes to the very file that loadPresetsFromFile would open.
bool writeText(std::string const& text, QString const& path)
{
    // Qt names files in the encoding of the locale, which may lack letters of this name.
    QByteArray const name = QByteArray::fromStdString(Fnd::toFsPath(path).native());
    QString const qtName = QFile::decodeName(name);
    if (QFile::encodeName(qtName) != name)
    {
        return false;
    }
    Text::sweepPartFiles({qtName});
    return Text::writeWholeFile(qtName, QByteArray::fromStdString(text));
}

}

Preset::Preset() = default;

Preset::Preset(ExportInfo&& info)
{
    exports.push_back(std::move(info));
}

Preset::Preset(std::vector<ExportInfo>&& infos) : exports(std::move(infos))
{
}

std::string serialisePresets(QHash<QString, Preset> const& presets, bool pretty)
{
    json root;
    root["version"] = VERSION;
    root["presets"] = sortedToJson(presets);
    return root.dump(pretty ? 2 : -1);
}

QHash<QString, Preset> deserialisePresets(std::istream& stream)
{
    std::string place;
    return deserialisePresets(stream, place);
}

QHash<QString, Preset> deserialisePresets(std::istream& stream, std::string& place)
{
    place.clear();
    return readAt(place, "$", [&] { return parsePresets(readText(stream), place); });
}

QHash<QString, Preset> loadPresetsFromFile(QString const& path)
{
    std::ifstream stream(Fnd::toFsPath(path));
    if (!stream.is_open())
    {
        throwNotOpened(path);
    }
    try
    {
        return deserialisePresets(stream);
    }
    catch (json::exception const& error)
    {
        throwExternalException(SOURCE, __LINE__, QString::fromUtf8(error.what()), QStringLiteral("Error parsing json"));
    }
    catch (std::ios_base::failure const&)
    {
        // A folder opens like a file and fails when it is read.
        throwNotOpened(path);
    }
}

void writePresetsToFile(QHash<QString, Preset> const& presets, QString const& path)
{
    try
    {
        std::string const text = serialisePresets(presets, true);
        std::string place;
        parsePresets(text, place);
        if (!writeText(text, path))
        {
            throw std::runtime_error("Failed to open preset file");
        }
    }
    catch (std::exception const& error)
    {
        throwExternalException(SOURCE, __LINE__, QString::fromUtf8(error.what()),
                               QStringLiteral("Error writing preset file."));
    }
}

}
