// Texts that are no presets.

#include "Core/PresetJsonException.h"
#include "CoreFixtures.h"
#include "PresetTexts.h"

#include <nlohmann/json.hpp>

using namespace Export;
using namespace PresetTexts;
using nlohmann::json;

namespace
{

std::string tracking(std::string const& options)
{
    return exportWith("tracking", options);
}

std::string shape(std::string const& options)
{
    return exportWith("shape", options);
}

std::string camera(std::string const& options)
{
    return exportWith("camera", options);
}

TEST(PresetRefusals, Words)
{
    std::string const expected = "Invalid preset type: expected ";
    std::string const modes = R"("selected", "all", "visible", "specified", but got )";
    std::string const wrongType = "[json.exception.type_error.302] type must be ";
    std::string const noLayer = "'exportMode' mode is 'specified' but no 'layer' provided";
    struct
    {
        std::string text;
        std::string words;
    } const cases[] = {
        {fileWith(R"({"type": "lens"})"), expected + R"("tracking", "shape", "camera", but got lens)"},
        {tracking(R"({"trackingOption": ""})"), expected + R"("basic", "adjusted", "offset", "stabilized", but got )"},
        {tracking(R"({"layerExportMode": "none"})"), expected + modes + "none"},
        {shape(R"({"exportMode": "fü"})"), expected + modes + "fü"},
        {camera(R"({"objectsToExport": "specified"})"),
         expected + R"("all", "selected", "visible", but got specified)"},
        {tracking(R"({"layerExportMode": "specified"})"), noLayer},
        {tracking(R"({"layerExportMode": "specified", "layer": ""})"), noLayer},
        {shape(R"({"exportMode": "specified", "layer": ""})"), noLayer},
        {camera(R"({"customData": {"a": "b", "c": 1}})"), "expected bool or string but got number"},
        {camera(R"({"customData": {"a": null}})"), "expected bool or string but got null"},
        {camera(R"({"customData": {"a": ["b"]}})"), "expected bool or string but got array"},
        {tracking(R"({"referenceFrame": 2147483648})"),
         "'referenceFrame' must be from -2147483648 to 2147483647 but got 2147483648.0"},
        {tracking(R"({"referenceFrame": -1e300})"),
         "'referenceFrame' must be from -2147483648 to 2147483647 but got -1e+300"},
        {shape(R"({"viewsToExport": [0, 18446744073709551615]})"),
         "'viewsToExport' must be from -2147483648 to 2147483647 but got 1.8446744073709552e+19"},
        {shape(R"({"viewsToExport": [0.5]})"), "'viewsToExport' must hold whole numbers but got 0.5"},
        // In the library's words. Which keys of tracking presets are asked for and which types they
        // have, a reader holds against the schema.
        {R"({"version": true, "presets": []})", wrongType + "number, but is boolean"},
        {shape("null"), "[json.exception.type_error.306] cannot use value() with null"},
        {camera(R"("all")"), "[json.exception.type_error.306] cannot use value() with string"},
        {tracking(R"({"undistort": "true"})"), wrongType + "boolean, but is string"},
        {tracking(R"({"viewsToExport": [true]})"), wrongType + "number, but is boolean"},
        {shape(R"({"viewsToExport": ["left"]})"), wrongType + "number, but is string"},
        {camera(R"({"customData": []})"), wrongType + "object, but is array"},
        {R"({"version": 1e999})", "[json.exception.out_of_range.406] number overflow parsing '1e999'"},
    };
    for (auto const& [text, words] : cases)
    {
        EXPECT_EQ(CoreTest::thrown<json::exception>([&, &refused = text] { parsed(refused); }).toStdString(), words)
            << text;
    }
}

TEST(PresetRefusals, OtherVersions)
{
    for (std::string const version : {"2", "0", "-1", "1.5", "1e300"})
    {
        // Whatever a later version keeps in the file, its version is what is told.
        EXPECT_EQ(CoreTest::thrown<KORV_BadFile>([&] { parsed(R"({"version": )" + version + "}"); }),
                  "Bad preset file version.")
            << version;
    }
    EXPECT_TRUE(parsed("\xef\xbb\xbf{\"version\": 1.0, \"presets\": []}").isEmpty()) << "with a byte order mark";
}

/// Whatever is done to a good file, it is taken or refused in the ways that are told.
TEST(PresetRefusals, DamagedFiles)
{
    std::string const good = R"({"presets": [{"name": "\u00e4\"", "exports": [
        {"type": "tracking", "format": "f", "filePath": "p", "options": {"trackingOption": "offset", "invert": true,
         "referenceFrame": 12, "layerExportMode": "specified", "layer": "Sign", "viewsToExport": [0, 1]}},
        {"type": "camera", "format": "f", "options": {"customData": {"a": true, "b": "c"}}}]}], "version": 1})";
    ASSERT_EQ(parsed(good).size(), 1);
    int refused = 0;
    for (std::size_t i = 0; i < good.size(); ++i)
    {
        for (char const put : {'"', '\\', '[', '}', ',', ':', '0', '-', 'e', '\0', '\xc3'})
        {
            std::string damaged = good;
            damaged[i] = put;
            try
            {
                parsed(damaged);
            }
            catch (json::exception const&)
            {
                ++refused;
            }
            catch (KORV_BadFile const&)
            {
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, static_cast<int>(good.size()) * 5);
}

std::string nested(int levels, std::string const& inside = "")
{
    auto const count = static_cast<std::size_t>(levels);
    return std::string(count, '[') + inside + std::string(count, ']');
}

TEST(PresetRefusals, Depth)
{
    std::string const tooDeep = "The presets are nested deeper than 32 levels";
    auto const refusal = [](std::string const& extra)
    {
        std::string const text = R"({"presets": [], "extra": )" + extra + "}";
        return CoreTest::thrown<CustomJsonException>([&] { parsed(text); }).toStdString();
    };
    EXPECT_EQ(refusal(nested(31)), "");
    EXPECT_EQ(refusal(nested(32)), tooDeep);
    EXPECT_EQ(refusal("[" + nested(30) + "," + nested(30) + "]"), "") << "levels, not brackets";
    // Brackets in strings are no levels; what follows an escaped quote is still the string.
    std::string const text = R"("\"[{\\)" + std::string(100, '[') + R"(")";
    EXPECT_EQ(refusal(nested(31, text)), "");
    EXPECT_EQ(refusal(nested(32, text)), tooDeep);
    EXPECT_EQ(refusal("[" + text + "," + nested(31) + "]"), tooDeep) << "the string has ended";
}

TEST(PresetRefusals, Size)
{
    constexpr std::size_t most = 16 * 1024 * 1024;
    std::string text = R"({"presets": []})";
    text.append(most - text.size(), ' ');
    EXPECT_TRUE(parsed(text).isEmpty());
    std::string const tooLong = "The presets are longer than 16777216 bytes";
    EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&] { parsed(text + ' '); }).toStdString(), tooLong);

    std::istringstream stream(std::string(2 * most, '['));
    EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&] { deserialisePresets(stream); }).toStdString(), tooLong);
    EXPECT_LT(static_cast<std::size_t>(stream.tellg()), most + 100'000) << "nothing is read that isn't looked at";
}

TEST(PresetRefusals, TheEndOfAStreamIsNoError)
{
    std::istringstream stream(R"({"presets": []})");
    stream.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
    EXPECT_TRUE(deserialisePresets(stream).isEmpty());
}

}
