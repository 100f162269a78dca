#pragma once
// The errors of preset texts. Kept apart from Preset.h, so that only those who want
// to tell these errors from others need the JSON library's headers.

#include "Core/ExportApi.h"

#include <nlohmann/json.hpp>

#include <string>

namespace Export
{

/// A preset text that is good JSON but no presets, or presets that can't be told as
/// JSON. One handler of nlohmann::json::exception takes these and the library's own.
class MARLO_EXPORT_API CustomJsonException : public nlohmann::json::exception
{
public:
    /// @param what all that what() gives, without the library's "[json.exception...]"
    explicit CustomJsonException(std::string const& what);
    ~CustomJsonException() override;
};

}
