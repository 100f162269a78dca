#pragma once
// One stored export as JSON.

#include "Core/Preset.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace Export
{

/// Not the to_json that the library would call by itself: values under construction
/// leak when that throws.
/// @throws std::bad_variant_access when the options aren't those of the type
/// @throws CustomJsonException for an enumerator without a word and for custom data
///         that is neither bool nor text
nlohmann::json toJson(Preset::ExportInfo const& info);

/// Absent optional keys take the defaults of
/// docs/presets.md; unknown keys are passed over.
/// @param place gets steps as readAt() gives them
/// @throws nlohmann::json::exception for an absent key, a wrong type, an unknown word
Preset::ExportInfo readExport(nlohmann::json const& source, std::string& place);

/// What `read` gives. When that throws, the step to what was read is put in front of
/// the place, so that it grows to a JSON path on the way out.
template <typename Read>
auto readAt(std::string& place, std::string const& step, Read const& read)
{
    try
    {
        return read();
    }
    catch (...)
    {
        place.insert(0, step);
        throw;
    }
}

/// The value of a key that must be there.
template <typename Value, typename Json>
Value readKey(Json const& object, char const* key, std::string& place)
{
    Json const& value = object.at(key);
    return readAt(place, std::string(".") + key, [&] { return value.template get<Value>(); });
}

/// Calls `read(element)` for each element of an array.
template <typename Json, typename Read>
void readEach(Json const& array, std::string& place, Read const& read)
{
    if (!array.is_array())
    {
        array.template get<std::vector<Json>>(); // throws in the library's words
    }
    for (std::size_t i = 0; i < array.size(); ++i)
    {
        readAt(place, '[' + std::to_string(i) + ']', [&] { read(array[i]); });
    }
}

}
