// Texts that are no presets.

#include "Core/PresetJsonException.h"
#include "CoreFixtures.h"
#include "PresetTexts.h"

#include <nlohmann/json.hpp>

#include <streambuf>

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

TEST(PresetRefusals, OurOwnWords)
{
    std::string const expected = "Invalid preset type: expected ";
    std::string const modes = R"("selected", "all", "visible", "specified", but got )";
    std::string const noLayer = "'exportMode' mode is 'specified' but no 'layer' provided";
    struct
    {
        std::string text;
        std::string words;
    } const cases[] = {
        {fileWith(R"({"type": "lens"})"), expected + R"("tracking", "shape", "camera", but got lens)"},
        {fileWith(R"({"type": "Shape"})"), expected + R"("tracking", "shape", "camera", but got Shape)"},
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
    };
    for (auto const& [text, words] : cases)
    {
        EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&, &refused = text] { parsed(refused); }).toStdString(), words)
            << text;
    }
}

TEST(PresetRefusals, WordsOfTheJsonLibrary)
{
    std::string const noKey = "[json.exception.out_of_range.403] key ";
    std::string const noObject = "[json.exception.type_error.304] cannot use at() with ";
    std::string const noOptions = "[json.exception.type_error.306] cannot use value() with ";
    std::string const wrongType = "[json.exception.type_error.302] type must be ";
    struct
    {
        std::string text;
        std::string words;
    } const cases[] = {
        {"{}", noKey + "'presets' not found"},
        {"[]", noObject + "array"},
        {"null", noObject + "null"},
        {"1", noObject + "number"},
        {R"({"presets": {}})", wrongType + "array, but is object"},
        {R"({"presets": 3})", wrongType + "array, but is number"},
        {R"({"presets": [[]]})", noObject + "array"},
        {R"({"presets": [{"name": "p"}]})", noKey + "'exports' not found"},
        {R"({"presets": [{"exports": []}]})", noKey + "'name' not found"},
        {R"({"presets": [{"name": 7, "exports": []}]})", wrongType + "string, but is number"},
        {R"({"presets": [{"name": "p", "exports": {"a": 1}}]})", wrongType + "array, but is object"},
        {R"({"presets": [{"name": "p", "exports": "a"}]})", wrongType + "array, but is string"},
        {R"({"version": "1", "presets": []})", wrongType + "number, but is string"},
        {R"({"version": true, "presets": []})", wrongType + "number, but is boolean"},
        {R"({"version": null, "presets": []})", wrongType + "number, but is null"},
        {fileWith("1"), noObject + "number"},
        {fileWith("{}"), noKey + "'type' not found"},
        {fileWith(R"({"type": 1})"), wrongType + "string, but is number"},
        {fileWith(R"({"type": "shape"})"), noKey + "'format' not found"},
        {fileWith(R"({"type": "shape", "format": null})"), wrongType + "string, but is null"},
        {fileWith(R"({"type": "shape", "format": "f"})"), noKey + "'options' not found"},
        {fileWith(R"({"type": "shape", "format": "f", "options": {}, "filePath": null})"),
         wrongType + "string, but is null"},
        {tracking("[]"), noOptions + "array"},
        {shape("null"), noOptions + "null"},
        {camera(R"("all")"), noOptions + "string"},
        {tracking(R"({"trackingOption": 1})"), wrongType + "string, but is number"},
        {tracking(R"({"invert": 1})"), wrongType + "boolean, but is number"},
        {tracking(R"({"undistort": "true"})"), wrongType + "boolean, but is string"},
        {tracking(R"({"referenceFrame": "12"})"), wrongType + "number, but is string"},
        {tracking(R"({"referenceFrame": true})"), wrongType + "number, but is boolean"},
        {tracking(R"({"layerExportMode": null})"), wrongType + "string, but is null"},
        {tracking(R"({"layerExportMode": "specified", "layer": 1})"), wrongType + "string, but is number"},
        {tracking(R"({"viewsToExport": 0})"), wrongType + "array, but is number"},
        {shape(R"({"viewsToExport": [true]})"), wrongType + "number, but is boolean"},
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

TEST(PresetRefusals, WhatIsNoJson)
{
    std::string const good = R"({"presets": []})";
    for (std::string const& text :
         {std::string(), "// mine\n" + good, "/* mine */" + good, good + good, good + ",",
          std::string(R"({"presets": [],})"), std::string(R"({'presets': []})"), std::string(R"({"presets": [NaN]})"),
          std::string("{\"presets\xff\": []}"), std::string("{\"presets\": [\"\n\"]}"), std::string("\xef\xbb" + good)})
    {
        EXPECT_THROW(parsed(text), json::parse_error) << text;
    }
    EXPECT_TRUE(parsed("\xef\xbb\xbf" + good).isEmpty()) << "editors put a byte order mark there";
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
    EXPECT_TRUE(parsed(R"({"version": 1.0, "presets": []})").isEmpty());
}

/// Whatever is done to a good file, it is taken or refused in the ways that are told.
TEST(PresetRefusals, DamagedFiles)
{
    std::string const good = R"({"presets": [{"name": "\u00e4\"", "exports": [
        {"type": "tracking", "format": "f", "filePath": "p", "options": {"trackingOption": "offset", "invert": true,
         "referenceFrame": 12, "layerExportMode": "specified", "layer": "Sign", "viewsToExport": [0, 1]}},
        {"type": "camera", "format": "f", "options": {"customData": {"a": true, "b": "c"}}}]}], "version": 1})";
    ASSERT_EQ(parsed(good).size(), 1);
    for (std::size_t length = 0; length < good.size(); ++length)
    {
        EXPECT_THROW(parsed(good.substr(0, length)), json::parse_error) << length;
    }
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

/// Gives one character for ever, as a device might.
class Endless : public std::streambuf
{
public:
    explicit Endless(char c) : m_chunk(4096, c)
    {
    }

    std::size_t given = 0;

protected:
    int_type underflow() override
    {
        given += m_chunk.size();
        setg(m_chunk.data(), m_chunk.data(), m_chunk.data() + m_chunk.size());
        return traits_type::to_int_type(m_chunk[0]);
    }

private:
    std::string m_chunk;
};

TEST(PresetRefusals, Size)
{
    constexpr std::size_t most = 16 * 1024 * 1024;
    std::string text = R"({"presets": []})";
    text.append(most - text.size(), ' ');
    EXPECT_TRUE(parsed(text).isEmpty());
    std::string const tooLong = "The presets are longer than 16777216 bytes";
    EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&] { parsed(text + ' '); }).toStdString(), tooLong);

    Endless buffer('[');
    std::istream stream(&buffer);
    EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&] { deserialisePresets(stream); }).toStdString(), tooLong);
    EXPECT_LT(buffer.given, most + 100'000) << "nothing is read that isn't looked at";
}

TEST(PresetRefusals, TheEndOfAStreamIsNoError)
{
    std::istringstream stream(R"({"presets": []})");
    stream.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
    EXPECT_TRUE(deserialisePresets(stream).isEmpty());
}

}
