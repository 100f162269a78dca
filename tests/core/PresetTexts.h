#pragma once
// Preset files of one export.

#include "Core/Preset.h"

#include <sstream>
#include <string>

namespace PresetTexts
{

inline QHash<QString, Export::Preset> parsed(std::string const& text)
{
    std::istringstream stream(text);
    return Export::deserialisePresets(stream);
}

/// A file of one preset "p" with one export.
inline std::string fileWith(std::string const& exported)
{
    return R"({"presets": [{"name": "p", "exports": [)" + exported + "]}]}";
}

inline std::string exportWith(std::string const& type, std::string const& options)
{
    return fileWith(R"({"type": ")" + type + R"(", "format": "f", "options": )" + options + "}");
}

inline QHash<QString, Export::Preset> presetOf(Export::Preset::ExportInfo info)
{
    return {{"p", Export::Preset(std::move(info))}};
}

}
