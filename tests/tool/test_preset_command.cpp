// `preset list`, `preset add` and `preset remove`: what gets into the file, and what
// leaves it as it was.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace
{

using Json = nlohmann::json;

QString const PIN = QStringLiteral("after_effects_corner_pin");

char const OLD[] = R"({"presets": [{"name": "old", "exports": [
    {"type": "tracking", "format": "after_effects_transform", "options": {}}]}]})";

class PresetCommand : public testing::Test
{
protected:
    ToolResult add(QStringList const& arguments)
    {
        return folder.run(QStringList{"preset", "add"} + arguments);
    }

    Json stored(QString const& file = "p.json") const
    {
        return Json::parse(folder.read(file).toStdString());
    }

    ToolFolder folder;
};

}

TEST_F(PresetCommand, AddStoresWhatTheOptionsSay)
{
    Json const defaults{{"trackingOption", "adjusted"},
                        {"invert", false},
                        {"undistort", false},
                        {"referenceFrame", -1},
                        {"layerExportMode", "selected"},
                        {"viewsToExport", Json::array()}};
    struct
    {
        QStringList arguments;
        Json differences;
    } const cases[] = {
        {{}, Json::object()},
        {{"--track", "stabilized", "--invert", "--undistort"},
         {{"trackingOption", "stabilized"}, {"invert", true}, {"undistort", true}}},
        {{"--reference-frame", "12"}, {{"referenceFrame", 12}}},
        {{"--layer", "Wand ü"}, {{"layerExportMode", "specified"}, {"layer", "Wand ü"}}},
        {{"--layers", "visible"}, {{"layerExportMode", "visible"}}},
        {{"--view", "1", "--view", "0"}, {{"viewsToExport", {1, 0}}}},
    };
    for (auto const& [arguments, differences] : cases)
    {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        QFile::remove(folder.path("p.json"));
        ToolResult const result = add(QStringList{"p.json", "pin", PIN} + arguments);
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        EXPECT_TRUE(result.err.isEmpty() && result.out.isEmpty());
        Json options = defaults;
        options.update(differences);
        EXPECT_EQ(stored().at("presets").at(0).at("exports"),
                  Json({{{"format", PIN.toStdString()}, {"type", "tracking"}, {"options", options}}}));
    }
}

TEST_F(PresetCommand, ANameAgainAddsAnExportAndFilesAreSorted)
{
    EXPECT_EQ(add({"new/deep/p.json", "b", PIN, "-o", "../x"}).status, 0);
    EXPECT_EQ(add({"new/deep/p.json", "a", PIN}).status, 0);
    EXPECT_EQ(add({"new/deep/p.json", "b", "after_effects_transform", "-o", "/abs/y.txt"}).status, 0);
    Json const presets = stored("new/deep/p.json").at("presets");
    ASSERT_EQ(presets.size(), 2u);
    EXPECT_EQ(presets[0].at("name"), "a");
    EXPECT_FALSE(presets[0].at("exports")[0].contains("filePath"));
    ASSERT_EQ(presets[1].at("exports").size(), 2u);
    EXPECT_EQ(presets[1].at("exports")[0].at("filePath"), "../x") << "kept as given";
    EXPECT_EQ(presets[1].at("exports")[1].at("filePath"), "/abs/y.txt");

    EXPECT_EQ(folder.run({"preset", "list", "new/deep/p.json"}).out,
              "a\n  tracking after_effects_corner_pin to a file named after layer or project\n"
              "b\n  tracking after_effects_corner_pin to ../x\n  tracking after_effects_transform to /abs/y.txt\n");
    Json const list = folder.run({"preset", "list", "new/deep/p.json", "--json"}).json();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].at("name"), "a");
    EXPECT_TRUE(list[0].at("exports")[0].at("filePath").is_null());
    EXPECT_EQ(list[1].at("exports")[1].at("format"), "after_effects_transform");
    EXPECT_EQ(list[1].at("exports")[1].at("options"), presets[1].at("exports")[1].at("options"));

    EXPECT_EQ(folder.run({"preset", "remove", "new/deep/p.json", "b"}).status, 0);
    EXPECT_EQ(stored("new/deep/p.json").at("presets"), Json({presets[0]}));
    EXPECT_EQ(folder.run({"preset", "remove", "new/deep/p.json", "a"}).status, 0);
    EXPECT_EQ(stored("new/deep/p.json").at("presets"), Json::array());
}

TEST_F(PresetCommand, RefusalsLeaveTheFileAsItWas)
{
    struct
    {
        QStringList arguments;
        int status;
        char const* words;
    } const cases[] = {
        {{"add", "p.json", "x", "after_effects_cornerpin"}, 2, "nearest: after_effects_corner_pin"},
        {{"add", "p.json", "", PIN}, 2, "NAME: needs a text"},
        {{"add", "p.json", "x", PIN, "-o", "-"}, 2, "-o needs the path of a file"},
        {{"add", "p.json", "x", PIN, "--layer", ""}, 2, "--layer: needs a text"},
        {{"add", "p.json", "x", PIN, "--view", "left"}, 2, "\"left\" isn't the number of a view"},
        {{"add", "p.json", "x", PIN, "--view", "-1"}, 2, "--view"},
        {{"add", "p.json", "x", PIN, "--reference-frame", "-1"}, 2, "-1 isn't a host frame"},
        {{"add", "p.json", "x", PIN, "--option", "a=1"}, 2, "has no option \"a\""},
        {{"add", "p.json", "x", PIN, "--clip", "c"}, 2, "--clip"},
        {{"add", "p.json", "x"}, 2, "FORMAT is required"},
        {{"remove", "p.json", "x"}, 2, "there is no preset \"x\"; found \"old\""},
        {{"remove", "none.json", "x"}, 3, "none.json: can't be opened (No such file or directory)"},
        {{"list", "none.json"}, 3, "none.json: can't be opened (No such file or directory)"},
        {{"list", "."}, 3, ".: can't be read (Is a directory)"},
        {{"list", "bad.json"}, 3, "bad.json: "},
        {{"add", "bad.json", "x", PIN}, 3, "bad.json: "},
        {{"remove", "bad.json", "x"}, 3, "bad.json: "},
        {{"add", "later.json", "x", PIN}, 3, "later.json: $.version: this program reads version 1"},
        {{"add", "p.json/p.json", "x", PIN}, 1, "Could not write to file p.json/p.json: Not a directory"},
        {{"rename", "p.json"}, 2, "no command \"rename\"; there are list, add, remove"},
    };
    for (auto const& [arguments, status, words] : cases)
    {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        folder.write("p.json", OLD);
        folder.write("bad.json", "{\"presets\":\n\n oops");
        folder.write("later.json", "{\"version\": 2, \"presets\": []}");
        ToolResult const result = folder.run(QStringList("preset") + arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_TRUE(result.err.contains(words)) << result.err.toStdString();
        EXPECT_EQ(result.err.count('\n'), 1) << result.err.toStdString();
        EXPECT_TRUE(result.out.isEmpty());
        EXPECT_EQ(folder.read("p.json"), OLD);
        EXPECT_EQ(folder.read("bad.json"), "{\"presets\":\n\n oops");
        EXPECT_EQ(folder.files(), (QStringList{"bad.json", "later.json", "p.json"}));
    }
}

TEST_F(PresetCommand, AFailingWriteLeavesTheOldFile)
{
    folder.write("p.json", OLD);
    auto const allowNoBytes = []
    {
        struct rlimit const limit = {16, 16};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    for (QStringList const& arguments :
         {QStringList{"add", "p.json", "x", PIN}, QStringList{"remove", "p.json", "old"}})
    {
        ToolResult const result = folder.run(QStringList("preset") + arguments, allowNoBytes);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, "marlo-export: Could not write to file p.json: File too large\n");
        EXPECT_EQ(folder.read("p.json"), OLD);
        EXPECT_EQ(folder.files(), QStringList("p.json")) << "no part file stays";
    }
}

TEST_F(PresetCommand, OptionsThatTheFormatHasNoUseForAreTold)
{
    ToolResult const result = add({"p.json", "x", PIN, "--objects", "visible"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.err.contains("--objects has no effect on after_effects_corner_pin; --layer"))
        << result.err.toStdString();
}
