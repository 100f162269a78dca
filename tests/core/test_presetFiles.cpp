#include "CoreFixtures.h"
#include "PresetTexts.h"
#include "ScratchFolder.h"

#include <QFile>
#include <QMap>
#include <QTextCodec>
#include <QVariant>
#include <nlohmann/json.hpp>

using namespace Export;
using namespace PresetTexts;
using nlohmann::json;

namespace
{

using Info = Preset::ExportInfo;
using Presets = QHash<QString, Preset>;

Presets shapes(QStringList const& names)
{
    Presets presets;
    for (QString const& name : names)
    {
        presets.insert(name, Preset(Info{"f", Info::Shape, UserShapeOptions(), std::nullopt}));
    }
    return presets;
}

/// Type, source, words and detail of what the function throws.
std::string failure(std::function<void()> const& function)
{
    auto const line = [](char const* type, KORV_Exception const& error)
    { return std::string(type) + '|' + error.sourceFile() + '|' + error.what() + '|' + error.detail().toStdString(); };
    try
    {
        function();
    }
    catch (KORV_BadFile const& error)
    {
        return line("BadFile", error);
    }
    catch (KORV_ExternalException const& error)
    {
        return line("ExternalException", error);
    }
    return "none";
}

class PresetFiles : public testing::Test, protected ScratchFolder
{
};

TEST_F(PresetFiles, AreWrittenAndLoaded)
{
    QString const name = QString::fromUtf8("Vorgänge 日本.json");
    write(name, "an older and much longer text than that of the presets " + QByteArray(1000, 'x'));
    writePresetsToFile(shapes({"a", "b"}), path(name));
    EXPECT_EQ(read(name).toStdString(), serialisePresets(shapes({"a", "b"}), true));
    EXPECT_EQ(loadPresetsFromFile(path(name)).size(), 2);
    EXPECT_EQ(names(), QStringList({name}));
}

TEST_F(PresetFiles, LoadingSaysWhatIsWrong)
{
    write("comment", "// mine\n{}");
    write("version", R"({"version": 2})");
    write("key", "{}");
    write("word", R"({"presets": [{"name": "p", "exports": [{"type": "lens"}]}]})");
    write("deep", QByteArray(16'000'000, '['));
    write("long", QByteArray(17'000'000, '['));
    ASSERT_TRUE(QDir(path("")).mkdir("folder"));
    struct
    {
        char const* name;
        std::string words;
    } const cases[] = {
        {"comment", "ExternalException|Preset|[json.exception.parse_error.101] parse error at line 1, column 1: syntax "
                    "error while parsing value - invalid literal; last read: '/'|Error parsing json"},
        {"version", "BadFile|Preset|Bad preset file version.|"},
        {"key", "ExternalException|Preset|[json.exception.out_of_range.403] key 'presets' not found|Error parsing "
                "json"},
        {"word", "ExternalException|Preset|Invalid preset type: expected \"tracking\", \"shape\", \"camera\", but got "
                 "lens|Error parsing json"},
        {"deep", "ExternalException|Preset|The presets are nested deeper than 32 levels|Error parsing json"},
        {"long", "ExternalException|Preset|The presets are longer than 16777216 bytes|Error parsing json"},
    };
    for (auto const& testCase : cases)
    {
        EXPECT_EQ(failure([&] { loadPresetsFromFile(path(testCase.name)); }), testCase.words);
    }
    for (QString const& file : {path("none"), path("folder"), path("version/file")})
    {
        EXPECT_EQ(failure([&] { loadPresetsFromFile(file); }),
                  "BadFile|Preset|Failed to open preset file: " + file.toStdString() + "|Failed to open preset file");
    }
}

TEST_F(PresetFiles, AFailedWriteLeavesTheFileAsItWas)
{
    write("presets.json", "mine");
    ASSERT_TRUE(QDir(path("")).mkdir("folder"));
    QStringList const before = names();

    Presets const good = shapes({"a"});
    Presets const mixed = presetOf({"f", Info::Camera, UserShapeOptions(), std::nullopt});
    UserShapeOptions const nameless{{ZN::SpecifiedLayer, ""}, {}};
    struct
    {
        char const* target;
        Presets presets;
        QString words;
    } const cases[] = {
        {"presets.json", mixed, CoreTest::thrown<std::bad_variant_access>([&] { serialisePresets(mixed, true); })},
        // These two have a text, but it would never be loaded again.
        {"presets.json", presetOf({"f", Info::Shape, nameless, std::nullopt}),
         "'exportMode' mode is 'specified' but no 'layer' provided"},
        {"presets.json", shapes({QString(17 * 1024 * 1024, QLatin1Char('n'))}),
         "The presets are longer than 16777216 bytes"},
        {"missing/presets.json", good, "Failed to open preset file"},
        {"presets.json/presets.json", good, "Failed to open preset file"},
        {"folder", good, "Failed to open preset file"},
        {"folder/", good, "Failed to open preset file"},
    };
    for (auto const& [target, presets, words] : cases)
    {
        EXPECT_EQ(failure([&, &name = target, &written = presets] { writePresetsToFile(written, path(name)); }),
                  "ExternalException|Preset|" + words.toStdString() + "|Error writing preset file.");
        EXPECT_EQ(read("presets.json"), "mine") << target;
        EXPECT_EQ(names(), before) << target;
    }
}

/// In an encoding that lacks a letter of the name, Qt would write to another file.
TEST_F(PresetFiles, ANameOutsideOfTheLocaleIsNotReplaced)
{
    write("pr?fung.json", "mine");
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("US-ASCII"));
    EXPECT_NE(failure([this] { writePresetsToFile(shapes({"a"}), path(QString::fromUtf8("prüfung.json"))); }), "none");
    QTextCodec::setCodecForLocale(before);
    EXPECT_EQ(read("pr?fung.json"), "mine");
    EXPECT_EQ(names(), QStringList({"pr?fung.json"}));
}

TEST_F(PresetFiles, AreSortedByNameWhateverTheOrderOfTheHash)
{
    QStringList const sorted{"10", "9", "Plate", "a", "b", "c", "d", "e", "plate", "sign", "\u00fc"};
    json const root = json::parse(serialisePresets(shapes(sorted), false));
    QStringList found;
    for (json const& preset : root.at("presets"))
    {
        found.append(QString::fromStdString(preset.at("name")));
    }
    EXPECT_EQ(found, sorted);
}

QString document(QString const& name)
{
    QFile file(QStringLiteral(MARLO_SOURCE_DIR "/docs/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST(PresetDocuments, TheExampleLoadsAndShowsEachKindOfExport)
{
    Presets const presets =
        parsed(document("presets.md").section("```json\n", 1, 1).section("```", 0, 0).toStdString());
    ASSERT_EQ(presets.size(), 2);
    QSet<int> types;
    for (Preset const& preset : presets)
    {
        for (Info const& info : preset.exports)
        {
            types.insert(info.type);
        }
    }
    EXPECT_EQ(types.size(), 3);
}

TEST(PresetDocuments, TheSchemaHasTheWords)
{
    json const schema = json::parse(document("presets.schema.json").toStdString());
    struct
    {
        char const* place;
        std::string text;
    } const cases[] = {
        {"/$defs/export/properties/type/enum", exportWith("?", "{}")},
        {"/$defs/tracking/properties/trackingOption/enum", exportWith("tracking", R"({"trackingOption": "?"})")},
        {"/$defs/tracking/properties/layerExportMode/enum", exportWith("tracking", R"({"layerExportMode": "?"})")},
        {"/$defs/shape/properties/exportMode/enum", exportWith("shape", R"({"exportMode": "?"})")},
        {"/$defs/camera/properties/objectsToExport/enum", exportWith("camera", R"({"objectsToExport": "?"})")},
    };
    for (auto const& [place, text] : cases)
    {
        std::string words;
        for (json const& word : schema.at(json::json_pointer(place)))
        {
            words += word.dump() + ", ";
        }
        EXPECT_EQ(CoreTest::thrown<json::exception>([&, &refused = text] { parsed(refused); }).toStdString(),
                  "Invalid preset type: expected " + words + "but got ?");
    }
}

}
