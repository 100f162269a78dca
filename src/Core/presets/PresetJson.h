#pragma once
// One stored export as JSON.

#include "Core/Preset.h"

#include <nlohmann/json_fwd.hpp>

namespace Export
{

/// Not the to_json that the library would call by itself: values under construction
/// leak when that throws.
/// @throws std::bad_variant_access when the options aren't those of the type
/// @throws CustomJsonException for an enumerator without a word and for custom data
///         that is neither bool nor text
nlohmann::json toJson(Preset::ExportInfo const& info);

/// What the library's get() calls. Absent optional keys take the defaults of
/// docs/presets.md; unknown keys are passed over.
/// @throws nlohmann::json::exception for an absent key, a wrong type, an unknown word
void from_json(nlohmann::json const& source, Preset::ExportInfo& info);

}
