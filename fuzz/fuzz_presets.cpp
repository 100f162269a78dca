// Any bytes as a preset file: presets that can be written back to the same text, or
// one of the errors that are documented.

#include "Core/Preset.h"
#include "Core/PresetJsonException.h"

#include "Host/KORV_Exception.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <variant>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QHash<QString, Export::Preset> presets;
    try
    {
        std::istringstream stream(std::string(reinterpret_cast<char const*>(data), size));
        presets = Export::deserialisePresets(stream);
    }
    catch (nlohmann::json::exception const&)
    {
        return 0;
    }
    catch (KORV_BadFile const&)
    {
        return 0;
    }
    std::string const text = Export::serialisePresets(presets, true);
    std::istringstream again(text);
    if (Export::serialisePresets(Export::deserialisePresets(again), true) != text)
    {
        std::abort();
    }
    return 0;
}
