#pragma once
// The words that stand for enumerators in a preset file. Error texts list them in this
// order.

#include "Core/Preset.h"
#include "Core/PresetJsonException.h"

#include <string>

namespace Export
{

template <typename Enum>
struct Word
{
    Enum value;
    char const* word;
};

inline constexpr Word<Preset::ExportInfo::Type> TYPE_WORDS[] = {
    {Preset::ExportInfo::Tracking, "tracking"},
    {Preset::ExportInfo::Shape, "shape"},
    {Preset::ExportInfo::Camera, "camera"},
};
inline constexpr Word<ZN_TRACKING_OPTION> TRACKING_OPTION_WORDS[] = {
    {ZN_TRACKING_OPTION_BASIC, "basic"},
    {ZN_TRACKING_OPTION_ADJUSTED, "adjusted"},
    {ZN_TRACKING_OPTION_OFFSET, "offset"},
    {ZN_TRACKING_OPTION_STABILIZED, "stabilized"},
};
inline constexpr Word<ZN::LayerExportMode> LAYER_WORDS[] = {
    {ZN::SelectedLayer, "selected"},
    {ZN::AllLayers, "all"},
    {ZN::VisibleLayers, "visible"},
    {ZN::SpecifiedLayer, "specified"},
};
inline constexpr Word<KV::CameraSolveExporter::ObjectsToExport> OBJECT_WORDS[] = {
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

}
