// `formats`, `info`, help and version.

#include "ToolRun.h"

#include <gtest/gtest.h>

namespace
{

using Json = nlohmann::json;

TEST(FormatsCommand, ListsWhatScriptsNeed)
{
    ToolFolder folder;
    Json const formats = folder.run({"formats", "--json"}).json();
    ASSERT_FALSE(formats.empty());
    std::vector<std::string> const kinds{"tracking", "shape", "camera", "lens"};
    std::ptrdiff_t lastKind = 0;
    QString lastName;
    std::set<std::string> keys;
    for (Json const& format : formats)
    {
        SCOPED_TRACE(format.dump());
        std::ptrdiff_t const kind = std::find(kinds.begin(), kinds.end(), format.at("kind")) - kinds.begin();
        QString const name = QString::fromStdString(format.at("name"));
        EXPECT_TRUE(kind > lastKind || (kind == lastKind && lastName < name)) << "by kind, then by name";
        EXPECT_TRUE(keys.insert(format.at("key")).second);
        EXPECT_TRUE(std::is_sorted(format.at("categories").begin(), format.at("categories").end()));
        for (Json const& option : format.at("options"))
        {
            EXPECT_TRUE(option.contains("key") && option.contains("type") && option.contains("default"));
        }
        lastKind = kind;
        lastName = name;
    }
    Json const pin = *std::find_if(formats.begin(), formats.end(),
                                   [](Json const& f) { return f.at("key") == "after_effects_cc_power_pin"; });
    EXPECT_EQ(pin, Json({{"key", "after_effects_cc_power_pin"},
                         {"kind", "tracking"},
                         {"name", "After Effects CC Power Pin"},
                         {"extension", ".txt"},
                         {"files", 1},
                         {"legacy", false},
                         {"categories", {"aftereffects", "vegas"}},
                         {"saveToFile", true},
                         {"saveToClipboard", true},
                         {"description", "CC Power Pin (Corner Pin) Data for After Effects."},
                         {"options", Json::array()}}));
    EXPECT_EQ(folder.run({"formats", "--kind", "tracking"}).out.count('\n'),
              std::count_if(formats.begin(), formats.end(), [](Json const& f) { return f.at("kind") == "tracking"; }));
    EXPECT_EQ(folder.run({"formats", "--kind", "sound"}).status, 2);
}

// Part of every command, before or behind its name.
TEST(FormatsCommand, SpeaksTheLanguageThatItIsToldTo)
{
    ToolFolder folder;
    QByteArray const english = folder.run({"formats"}).out;
    QByteArray const german = folder.run({"formats", "--lang", "de"}).out;
    EXPECT_TRUE(english.contains("After Effects Corner Pin "));
    EXPECT_TRUE(german.contains("After Effects-Corner-Pin"));
    EXPECT_EQ(folder.run({"--lang", "de", "formats"}).out, german);
    EXPECT_EQ(folder.run({"formats", "--lang", "en"}).out, english);
    EXPECT_EQ(folder.run({"formats", "--lang", "../../x"}).status, 2);
}

TEST(InfoCommand, ShowsWhatAProjectHolds)
{
    ProjectBuilder project = movingProject("Wall %1");
    project.model.groups.push_back({"Set", QString(), true, false, false});
    project.layer().group = "Set";
    std::vector<double> const triangle{0, 0, 0, 9, 0, 0, 0, 0, 9, 0, 0, 0, 9, 9, 0, 0, 0, 0};
    project.layer().contours.resize(3);
    for (MarloHost::ContourModel& contour : project.layer().contours)
    {
        contour.name = "outline";
        contour.keys = {{0, triangle, {}}};
    }
    project.layer().contours[1].active = false;
    project.layer().mesh = MarloHost::MeshModel{3, {3}, {0, 1, 2}, {{"left", {0}, {0, 0, 9, 0, 9, 9}}}};
    project.model.views = QStringList{"left", "right"};
    project.track([](int) { return ProjectBuilder::identity(); }, "right");
    project.addLayer("Floor").range(1, 2);
    project.layer().tracks.clear();
    project.layer().hidden = true;
    project.clip().pixelAspect = 2;
    ToolFolder folder;
    folder.write("shot.json", project);
    Json const info = folder.run({"info", "shot.json", "--json"}).json();
    EXPECT_EQ(info.at("views"), Json({"left", "right"}));
    EXPECT_EQ(info.at("currentLayer"), "Floor");
    EXPECT_EQ(info.at("clips"), Json::array({{{"name", "clip"},
                                              {"width", 1920},
                                              {"height", 1080},
                                              {"pixelAspect", 2.0},
                                              {"interlaced", false},
                                              {"frameCount", 3},
                                              {"firstFrame", 1001},
                                              {"lastFrame", 1003}}}));
    EXPECT_EQ(info.at("layers").at(0), Json({{"name", "Wall %1"},
                                             {"current", false},
                                             {"group", "Set"},
                                             {"clip", "clip"},
                                             {"firstFrame", 1001},
                                             {"lastFrame", 1003},
                                             {"referenceFrame", 1001},
                                             {"trackedFrames", {{"left", 3}, {"right", 3}}},
                                             {"contours", 2},
                                             {"meshVertices", 3},
                                             {"hidden", false},
                                             {"selected", true},
                                             {"moving", false}}));
    EXPECT_EQ(folder.run({"info", "shot.json"}).out,
              "clip   1920x1080, pixel aspect 2, 24 fps, 3 frames, shown as 1001 to 1003: clip\n"
              "views  left, right; current: left\n"
              "layer  Wall %1: frames 1001 to 1003, 3 tracked in left, 3 tracked in right, 2 contours, mesh of 3 "
              "vertices, in group Set, selected\n"
              "layer* Floor: frames 1002 to 1003, not tracked, hidden\n");
}

TEST(InfoCommand, TellsWhatASolveHolds)
{
    ProjectBuilder project(3);
    project.addLayer("A").layer().surfacePoints.emplace();
    project.layer().surfacePoints->positions = {0, 0, 0, 1, 0, 0};
    ToolFolder folder;
    folder.write("shot.json", project);
    EXPECT_TRUE(folder.run({"info", "shot.json", "--json"}).json().at("solve").is_null());
    project.model.solve.emplace();
    project.model.solve->legacy = true;
    project.model.solve->features.resize(1);
    project.model.solve->features[0].name = "set";
    project.model.solve->features[0].points.positions.resize(9);
    folder.write("solved.json", project);
    EXPECT_EQ(folder.run({"info", "solved.json", "--json"}).json().at("solve"), Json({{"camera", "mono"},
                                                                                      {"legacy", true},
                                                                                      {"layerPoints", 2},
                                                                                      {"featureSets", 1},
                                                                                      {"featurePoints", 3},
                                                                                      {"assets", 0}}));
    EXPECT_TRUE(
        folder.run({"info", "solved.json"})
            .out.endsWith("\nsolve  one camera, points of layers: 2, features: 3 in sets: 1, models: 0, legacy\n"));
}

TEST(InfoCommand, InterlacedFieldsAreShownAsFrames)
{
    ProjectBuilder project(7);
    project.clip().interlaced = true;
    project.clip().frameOffset = 20;
    ToolFolder folder;
    folder.write("shot.json", project);
    Json const clip = folder.run({"info", "shot.json", "--json"}).json().at("clips")[0];
    EXPECT_EQ(clip.at("firstFrame"), 10);
    EXPECT_EQ(clip.at("lastFrame"), 13);
    EXPECT_EQ(clip.at("interlaced"), true);
    EXPECT_EQ(folder.run({"export", "shot.json", "after_effects_corner_pin"}).err, "marlo-export: No selected layer\n");
}

TEST(Program, HelpVersionAndWrongCommands)
{
    ToolFolder folder;
    EXPECT_TRUE(folder.run({"--version"}).out.startsWith("marlo-export "));
    struct
    {
        QStringList arguments;
        int status;
        char const* out;
    } const cases[] = {
        {{"--help"}, 0, "Subcommands:"}, {{}, 2, ""}, {{"frobnicate"}, 2, ""}, {{"formats", "extra"}, 2, ""}};
    for (auto const& c : cases)
    {
        ToolResult const result = folder.run(c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.out.contains(c.out));
        EXPECT_EQ(result.err.count('\n'), c.status == 0 ? 0 : 1) << result.err.toStdString();
    }
}

}
