// What the program tells of choices without effect and of what a format can't hold, and the
// names that it refuses.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

namespace
{

using Json = nlohmann::json;

QString const PIN = QStringLiteral("nuke_corner_pin");
QString const AE_PIN = QStringLiteral("after_effects_corner_pin");
QString const MESH = QStringLiteral("nuke_warp_lattice_to_tracker");
QString const ROTO = QStringLiteral("nuke_roto_basic");
QString const FXS = QStringLiteral("glimmerset_shape");
QString const MOTION = QStringLiteral("after_effects_3D_motion");

MarloHost::ContourModel outline(QString const& name)
{
    MarloHost::ContourModel contour;
    contour.name = name;
    contour.keys = {{0, {100, 100, 0, 0, 0, 0, 200, 100, 0, 0, 0, 0, 150, 200, 0, 0, 0, 0}, {}}};
    return contour;
}

void addMesh(MarloHost::LayerModel& layer)
{
    layer.mesh = MarloHost::MeshModel{3, {3}, {0, 1, 2}, {{QString(), {0, 1, 2}, std::vector<double>(18, 9.0)}}};
}

/// Two layers with contours, of which "Wall" is current, two views and a solve.
ProjectBuilder fullProject()
{
    ProjectBuilder project = movingProject("Floor");
    project.addLayer("Wall");
    project.layer().selected = true;
    for (MarloHost::LayerModel& layer : project.model.layers)
    {
        layer.contours = {outline("edge")};
    }
    project.model.views = QStringList{"left", "right"};
    project.model.solve.emplace();
    return project;
}

struct Case
{
    QStringList arguments;

    /// Parts of the lines on stderr that are warnings, one for each.
    QList<QByteArray> warnings;
    void (*change)(ProjectBuilder& project) = nullptr;
};

void PrintTo(Case const& c, std::ostream* out)
{
    *out << c.arguments.join(' ').toStdString();
}

class Warns : public testing::TestWithParam<Case>
{
};

TEST_P(Warns, OnceAndWritesAllTheSame)
{
    ProjectBuilder project = fullProject();
    if (GetParam().change)
    {
        GetParam().change(project);
    }
    ToolFolder folder;
    folder.write("shot.json", project);
    ToolResult const run =
        folder.run(QStringList{"export", "shot.json"} + GetParam().arguments + QStringList("--json"));
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    Json const warnings = run.json().at("warnings");
    ASSERT_EQ(warnings.size(), static_cast<std::size_t>(GetParam().warnings.size())) << warnings.dump(1);
    for (int i = 0; i < GetParam().warnings.size(); ++i)
    {
        std::string const text = warnings.at(static_cast<std::size_t>(i));
        EXPECT_TRUE(QByteArray::fromStdString(text).contains(GetParam().warnings[i])) << text;
        EXPECT_EQ(run.err.count(QByteArray::fromStdString(text)), 1) << run.err.toStdString();
    }
}

void withMesh(ProjectBuilder& project)
{
    addMesh(project.layer());
}

void withLens(ProjectBuilder& project)
{
    project.clip().lens.emplace();
    project.clip().lens->radial[0].value = -0.02;
}

void withStillLens(ProjectBuilder& project)
{
    project.clip().lens.emplace();
}

void withMoreThanFxsHolds(ProjectBuilder& project)
{
    project.model.groups.push_back({"Set", QString(), true, false, false});
    project.layer().group = "Set";
    project.model.clips.push_back(project.clip());
    project.model.clips.back().name = "second";
    project.model.clips.back().frameOffset = 7;
    project.model.layers[0].clip = "second";
}

void withShortInterlacedLayer(ProjectBuilder& project)
{
    project.clip().interlaced = true;
    project.layer().outPoint = 1;
    project.layer().contours[0].keys[0].feather = project.layer().contours[0].keys[0].points;
}

void withOpenInvertedSubtractingLayer(ProjectBuilder& project)
{
    project.layer().contours[0].closed = false;
    project.layer().invert = true;
    project.layer().subtract = true;
}

INSTANTIATE_TEST_SUITE_P(
    Choices, Warns,
    testing::Values(
        Case{{PIN}, {}}, Case{{ROTO, "--layers", "all", "--view", "left"}, {}},
        Case{{PIN, "--layers", "all"}, {"only \"Wall\" is in that of nuke_corner_pin; --each-layer"}},
        Case{{PIN, "--layers", "all", "--each-layer", "-o", "o/"}, {}},
        Case{{ROTO, "--layers", "selected"}, {"only \"Wall\" is in that of nuke_roto_basic"}},
        Case{{AE_PIN, "--view", "all"}, {"holds one view; \"left\" is exported, --view NAME"}},
        Case{{"glimmerset_corner_pin", "--view", "all"}, {"glimmerset_corner_pin: holds one view"}},
        Case{{MESH, "--invert", "--track", "basic", "--undistort"},
             {"--track has no effect on nuke_warp", "--invert has no effect", "--undistort has no effect"},
             withMesh},
        Case{{ROTO, "--undistort", "--reference-frame", "1002"}, {"--undistort has no effect on nuke_roto", "--ref"}},
        Case{{PIN, "--undistort"}, {"--undistort has no effect on nuke_corner_pin; no lens that distorts is on clip"}},
        Case{{PIN, "--undistort"}, {"no lens that distorts"}, withStillLens}, Case{{PIN, "--undistort"}, {}, withLens},
        Case{{MOTION, "--each-layer", "--clip", "clip"}, {"--objects chooses", "--clip has no effect"}},
        Case{{PIN, "--objects", "all"}, {"--objects has no effect"}}));

INSTANTIATE_TEST_SUITE_P(
    Losses, Warns,
    testing::Values(
        Case{{FXS, "--layers", "all"},
             {"doesn't hold that layers are hidden: \"Wall\"", "holds no groups: layers \"Wall\""},
             withMoreThanFxsHolds},
        Case{{ROTO, "--layers", "all"}, {"holds no groups", "holds one clip: layers \"Floor\""}, withMoreThanFxsHolds},
        Case{{PIN}, {}, withMoreThanFxsHolds},
        Case{{ROTO}, {"set the lifetimes of \"Wall\""}, withShortInterlacedLayer},
        Case{{FXS}, {}, withShortInterlacedLayer},
        Case{{"shake_rotoshape"},
             {"holds no open contours: those of layers \"Wall\"", "doesn't hold that layers are inverted: \"Wall\"",
              "doesn't hold that layers subtract: \"Wall\""},
             withOpenInvertedSubtractingLayer},
        Case{{"premiere_shape"},
             {"holds no open contours", "doesn't hold that layers subtract"},
             withOpenInvertedSubtractingLayer},
        Case{{ROTO}, {}, withOpenInvertedSubtractingLayer}));

class Loud : public testing::Test
{
protected:
    ToolFolder folder;
};

TEST_F(Loud, AllTellsOfAChoiceInOneLineForAllFormats)
{
    ProjectBuilder project = fullProject();
    withMesh(project);
    folder.write("shot.json", project);
    ToolResult const run = folder.run({"all", "shot.json", "-o", "out", "--invert", "--quiet"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.count("--invert has no effect on"), 3) << run.err.toStdString();
    QRegularExpression const meshes("--invert has no effect on [^;\n]*\\bnuke_warp_lattice_to_tracker\\b[^;\n]*; ");
    EXPECT_TRUE(meshes.match(QString(run.err)).hasMatch());
    EXPECT_TRUE(run.err.contains("--invert has no effect on shape formats; "));
    EXPECT_TRUE(run.err.contains("--invert has no effect on camera formats; "));
}

TEST_F(Loud, EachLayerIsAloneInItsFileWhateverIsSelected)
{
    ProjectBuilder project = fullProject();
    for (MarloHost::LayerModel& layer : project.model.layers)
    {
        layer.selected = true;
    }
    folder.write("shot.json", project);
    ASSERT_EQ(folder.run({"export", "shot.json", "kestrelia_2D", "--each-layer", "-o", "o/{layer}"}).status, 0);
    for (MarloHost::LayerModel const& layer : project.model.layers)
    {
        QByteArray const text = folder.read("o/" + layer.name + ".kst");
        EXPECT_EQ(text.count("group 1 \"" + layer.name.toUtf8() + '"'), 1) << text.constData();
        EXPECT_EQ(text.count("\n  tracker "), 4);
    }
}

TEST_F(Loud, AMeshFormatWithoutAMeshIsSkippedByAllAndRefusedByExport)
{
    folder.write("shot.json", fullProject());
    ToolResult const all = folder.run({"all", "shot.json", "-o", "out"});
    EXPECT_EQ(all.status, 0);
    EXPECT_TRUE(all.err.contains("skipped nuke_warp_lattice_to_tracker: Layer \"Wall\" has no tracked mesh"));
    ToolResult const one = folder.run({"export", "shot.json", MESH});
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(one.err, "marlo-export: Layer \"Wall\" has no tracked mesh\n");
}

TEST_F(Loud, GapsThatAreAcceptedAreToldButAreNoFailures)
{
    ProjectBuilder project = movingProject("Wall; Frame 1", 4);
    auto& track = project.layer().tracks[0];
    track.frames = {0, 3};
    track.homographies.resize(18);
    folder.write("gaps.json", project);
    track.homographies[6] = track.homographies[15] = -1.0 / 960;
    folder.write("broken.json", project);
    ToolResult const accepted = folder.run({"export", "gaps.json", AE_PIN, "--accept-gaps", "--strict", "--json"});
    EXPECT_EQ(accepted.status, 0) << accepted.err.toStdString();
    EXPECT_EQ(accepted.json().at("messages").size(), 2u);
    EXPECT_EQ(folder.run({"export", "gaps.json", AE_PIN, "-o", "b"}).status, 4);
    EXPECT_EQ(folder.run({"export", "broken.json", AE_PIN, "-o", "c", "--accept-gaps"}).status, 4);
}

TEST_F(Loud, ShapesTellOfGapsAsTracksDo)
{
    ProjectBuilder project = movingProject("Wall", 4);
    MarloHost::ContourModel contour;
    contour.name = "edge";
    contour.keys.push_back({0, {9, 9, 0, 0, 0, 0, 90, 9, 0, 0, 0, 0, 90, 90, 0, 0, 0, 0}, {}});
    project.layer().contours = {contour};
    auto& track = project.layer().tracks[0];
    track.frames = {0, 3};
    track.homographies.resize(18);
    folder.write("gaps.json", project);
    for (QString const& format : {QString(ROTO), QString(FXS), QString("after_effects_mask")})
    {
        ToolResult const told = folder.run({"export", "gaps.json", format, "-o", "a/", "--overwrite", "--json"});
        EXPECT_EQ(told.status, 4) << format.toStdString() << told.err.toStdString();
        ASSERT_EQ(told.json().at("messages").size(), 2u) << format.toStdString();
        std::string const first = told.json().at("messages").at(0);
        EXPECT_NE(first.find(": Frame 1002: no tracking data, frame 1001 stands in for it"), std::string::npos)
            << first;
        EXPECT_EQ(folder.run({"export", "gaps.json", format, "-o", "b/", "--accept-gaps", "--overwrite"}).status, 0);
    }
}

TEST_F(Loud, NamesThatLeaveTheirFieldAreRefusedBeforeAnythingIsWritten)
{
    struct
    {
        QStringList arguments;
        int status;
        char const* words;
    } const cases[] = {
        {{"export", "layer.json", PIN}, 1, "nuke_corner_pin: the name of layer \"Sign};exec\" holds } ;, which"},
        {{"export", "layer.json", AE_PIN, "--dry-run"}, 0, ""},
        {{"export", "contour.json", ROTO}, 1, "contour \"a\"b\" of layer \"Wall\" holds \", which"},
        {{"export", "contour.json", PIN, "--dry-run"}, 0, ""},
        {{"export", "view.json", ROTO, "--view", "le$ft"}, 1, "the name of view \"le$ft\" holds $, which"},
        {{"export", "blanks.json", PIN, "--dry-run"}, 0, ""},
        {{"export", "layer.json", PIN, "--unsafe-names", "--dry-run"}, 0, ""},
        {{"all", "layer.json", "-o", "out", "--dry-run"}, 1, "nuke_tracker: the name of layer"},
        {{"batch", "layer.json", "presets.json"}, 1, "nuke_corner_pin: the name of layer"},
        {{"preset", "add", "presets.json", "p", PIN, "--layer", "a{b"}, 1, "layer \"a{b\" holds {, which"},
    };
    auto const write = [&](char const* file, auto change)
    {
        ProjectBuilder project = fullProject();
        change(project);
        folder.write(file, project);
    };
    write("layer.json",
          [](ProjectBuilder& p)
          {
              p.layer().name = "Sign};exec";
              p.model.currentLayer = p.layer().name;
          });
    write("contour.json", [](ProjectBuilder& p) { p.layer().contours[0].name = "a\"b"; });
    write("view.json", [](ProjectBuilder& p) { p.model.views[0] = "le$ft"; });
    write("blanks.json",
          [](ProjectBuilder& p)
          {
              p.layer().name = QString::fromUtf8("a b\u00a0c");
              p.model.currentLayer = p.layer().name;
          });
    EXPECT_EQ(folder.run({"preset", "add", "presets.json", "p", PIN}).status, 0);
    QStringList const before = folder.files();
    for (auto const& [arguments, status, words] : cases)
    {
        ToolResult const run = folder.run(arguments);
        EXPECT_EQ(run.status, status) << arguments.join(' ').toStdString() << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(words)) << run.err.toStdString();
        EXPECT_EQ(folder.files(), before) << arguments.join(' ').toStdString();
    }
    EXPECT_EQ(folder.run({"preset", "add", "presets.json", "p", PIN, "--layer", "a{b", "--unsafe-names"}).status, 0);
}

TEST_F(Loud, ControlCharactersInNamesAndPathsAreRefusedWithTheirPlace)
{
    QByteArray const good = MarloHost::writeProject(fullProject().model);
    struct
    {
        char const* before;
        char const* after;
        char const* words;
    } const cases[] = {
        {"\"Floor\"", "\"Fl\\tor\"", "$.layers[0].name: holds the control character U+0009"},
        {"\"edge\"", "\"ed\\u2028ge\"", "$.layers[0].contours[0].name: holds the control character U+2028"},
        {"\"left\"", "\"le\\u0085ft\"", "$.views[0]: holds the control character U+0085"},
        {"\"clips\": [",
         "\"clips\": [{\"name\": \"a\", \"width\": 9, \"height\": 9, \"frameCount\": 3, "
         "\"footage\": {\"kind\": \"movie\", \"file\": \"a\\u007f\"}}, ",
         "$.clips[0].footage.file: holds the control character U+007F"}};
    for (auto const& [before, after, words] : cases)
    {
        QByteArray text = good;
        ASSERT_TRUE(text.contains(before)) << before;
        folder.write("bad.json", text.replace(text.indexOf(before), static_cast<int>(qstrlen(before)), after));
        ToolResult const run = folder.run({"export", "bad.json", PIN});
        EXPECT_EQ(run.status, 3);
        EXPECT_TRUE(run.err.contains(words)) << run.err.toStdString();
        EXPECT_EQ(run.err.count('\n'), 1);
    }
}

TEST_F(Loud, InfoOfAFormatIsWhatTheListSaysAndWhatItDeclares)
{
    Json const info = folder.run({"info", PIN, "--json"}).json();
    Json const formats = folder.run({"formats", "--json"}).json();
    Json const listed = *std::find_if(formats.begin(), formats.end(),
                                      [](Json const& format) { return format.at("key") == PIN.toStdString(); });
    for (auto const& [key, value] : listed.items())
    {
        EXPECT_EQ(info.at(key), value) << key;
    }
    EXPECT_EQ(info.at("follows"), Json({"views", "track", "invert", "undistort"}));
    EXPECT_EQ(info.at("needs"), Json({"track"}));
    EXPECT_EQ(info.at("breaksField"), "{}[]\"\\;$");
    EXPECT_NE(info.at("wayIn"), "");
    QByteArray const text = folder.run({"info", PIN}).out;
    EXPECT_TRUE(text.contains("\nfollows     views, track, invert, undistort\n")) << text.toStdString();
    QDir(folder.path(".")).mkdir(PIN);
    EXPECT_EQ(folder.run({"info", PIN}).out, text) << "a folder of that name is no project";
    folder.write(AE_PIN, movingProject());
    EXPECT_TRUE(folder.run({"info", AE_PIN}).out.startsWith("clip "));
}

/// The rows of all blocks of a keyframe text whose frame is within a range.
QList<QByteArray> rowsWithin(QByteArray const& text, double first, double last)
{
    QList<QByteArray> rows;
    for (QByteArray const& line : text.split('\n'))
    {
        bool isNumber = false;
        double const frame = line.split('\t').value(1).toDouble(&isNumber);
        rows += isNumber && frame >= first && frame <= last ? QList<QByteArray>{line} : QList<QByteArray>();
    }
    return rows;
}

TEST_F(Loud, FramesRestrictWhatIsExportedAndChangeNothingInIt)
{
    ProjectBuilder project = movingProject("Wall", 9);
    project.addLayer("Late").range(7, 8);
    project.track([](int) { return ProjectBuilder::identity(); });
    project.layer().contours = {outline("edge")};
    project.model.layers[0].contours = {outline("edge")};
    folder.write("shot.json", project);
    QStringList const wall{"export", "shot.json", AE_PIN, "--layer", "Wall", "-o", "-"};
    for (QStringList const& motion :
         {QStringList{}, QStringList{"--invert"}, QStringList{"--track", "stabilized", "--reference-frame", "1002"}})
    {
        QByteArray const whole = folder.run(wall + motion).out;
        QByteArray const part = folder.run(wall + motion + QStringList{"--frames", "1003-1005"}).out;
        EXPECT_EQ(rowsWithin(part, -99, 99), rowsWithin(whole, 2, 4));
    }
    struct
    {
        QStringList arguments;
        int status;
        char const* words;
    } const cases[] = {
        {{PIN, "--frames", "1001-1003"}, 1, "--frames: there is no frame in that range of layer \"Late\""},
        {{PIN, "--layer", "Late", "--frames", "1001-1003"}, 1, "no frame in that range of layer \"Late\""},
        {{ROTO, "--layers", "all", "--frames", "1001-1003"}, 0, "--frames leaves layers out that have no frame in it"},
        {{PIN, "--frames", "900-1000"}, 2, "--frames: 900-1000 misses the project, whose frames are 1001 to 1009"},
        {{PIN, "--frames", "1009-1003"}, 2, "isn't FIRST-LAST"},
        {{PIN, "--frames", "-5-2000"}, 0, ""},
    };
    for (auto const& [arguments, status, words] : cases)
    {
        ToolResult const run = folder.run(QStringList{"export", "shot.json"} + arguments + QStringList{"--overwrite"});
        EXPECT_EQ(run.status, status) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(words)) << run.err.toStdString();
        EXPECT_LE(run.err.count('\n'), 1);
    }
}

TEST_F(Loud, FramesOfASceneAreAllThatThereIsInIt)
{
    ProjectBuilder project(9);
    project.clip().frameOffset = 1001;
    project.model.solve.emplace().camera.pose.frames = {0, 8};
    project.model.solve->camera.pose.positions = {0, 0, 0, 8, 0, 0};
    project.model.playbackIn = 1;
    folder.write("shot.json", project);
    QStringList const command{"export", "shot.json", MOTION, "-o", "-", "--frames"};
    QByteArray const whole = folder.run(command + QStringList("1001-1009")).out;
    QByteArray const part = folder.run(command + QStringList("1004-1006")).out;
    auto const xOf = [](QByteArray const& text)
    {
        QList<QByteArray> values;
        QByteArray const block = text.mid(text.indexOf("X pixels"));
        for (QByteArray const& line : block.left(block.indexOf("\n\n")).split('\n').mid(1))
        {
            values += line.split('\t').value(2);
        }
        return values;
    };
    EXPECT_EQ(xOf(whole).size(), 9);
    EXPECT_EQ(xOf(part), xOf(whole).mid(3, 3));
}

}
