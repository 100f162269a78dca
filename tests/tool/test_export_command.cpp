// `export` and `all`: which arguments give which status, words and files.

#include "ToolRun.h"

#include <gtest/gtest.h>

namespace
{

QString const PIN = QStringLiteral("after_effects_corner_pin");

/// The rows of the first block of keyframes.
QList<QByteArray> rowsOf(QByteArray const& document)
{
    QList<QByteArray> const lines = document.mid(document.indexOf("\tFrame\t")).split('\n');
    QList<QByteArray> rows;
    for (int i = 1; i < lines.size() && lines[i].startsWith('\t'); ++i)
    {
        rows += lines[i].mid(1);
    }
    return rows;
}

/// Layers of which none is current and one isn't tracked; two views.
ProjectBuilder crowdedProject()
{
    ProjectBuilder project = movingProject(QStringLiteral("A/b"));
    project.addLayer(QStringLiteral("Floor"));
    project.addLayer(QStringLiteral("Untracked"));
    project.layer().tracks.clear();
    project.layer().hidden = true;
    project.model.views = QStringList{"left", "right"};
    project.model.currentLayer.clear();
    return project;
}

struct Case
{
    QStringList arguments;
    int status;

    /// Part of stderr; empty when nothing may stand there.
    char const* words;

    /// What is in the folder afterwards, but for the projects.
    QStringList files;
};

void PrintTo(Case const& c, std::ostream* out)
{
    *out << c.arguments.join(' ').toStdString();
}

class Export : public testing::TestWithParam<Case>
{
};

TEST_P(Export, StatusWordsAndFiles)
{
    Case const& c = GetParam();
    ToolFolder folder;
    folder.write("shot.json", movingProject());
    folder.write("crowd.json", crowdedProject());
    ToolResult const result = folder.run(QStringList("export") + c.arguments);
    EXPECT_EQ(result.status, c.status) << result.err.toStdString();
    EXPECT_TRUE(*c.words ? result.err.contains(c.words) : result.err.isEmpty()) << result.err.toStdString();
    QStringList files = c.files + QStringList{"crowd.json", "shot.json"};
    files.sort();
    EXPECT_EQ(folder.files(), files);
    if (c.status != 0)
    {
        EXPECT_EQ(result.err.count('\n'), 1) << result.err.toStdString();
        EXPECT_TRUE(result.err.startsWith("marlo-export: "));
        EXPECT_TRUE(result.out.isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Targets, Export,
    testing::Values(Case{{"shot.json", PIN}, 0, "", {"Wall.txt"}},
                    Case{{"shot.json", PIN, "-o", "PIN.TXT"}, 0, "", {"PIN.TXT"}},
                    Case{{"shot.json", PIN, "-o", "pin"}, 0, "", {"pin.txt"}},
                    Case{{"shot.json", PIN, "-o", "pin.txt"}, 0, "", {"pin.txt"}},
                    Case{{"shot.json", PIN, "-o", "PIN.TXT"}, 0, "", {"PIN.TXT"}},
                    Case{{"shot.json", PIN, "-o", "new/deep/"}, 0, "", {"new/deep/Wall.txt"}},
                    Case{{"shot.json", PIN, "-o", "new/deep/pin"}, 0, "", {"new/deep/pin.txt"}},
                    Case{{"shot.json", PIN, "-o", "."}, 0, "", {"Wall.txt"}},
                    Case{{"shot.json", PIN, "-o", "ü %1 \"q\""}, 0, "", {"ü %1 \"q\".txt"}},
                    Case{{"shot.json", PIN, "-o", ""}, 2, "-o: needs a text", {}},
                    Case{{"shot.json", PIN, "-o", QString(300, 'n')}, 1, "Could not write to file", {}},
                    Case{
                        {"shot.json", PIN, "-o", "shot.json/pin"}, 1, "Cannot write to following paths. Make sure", {}},
                    Case{{"shot.json", PIN, "--dry-run"}, 0, "", {}},
                    Case{{"shot.json", PIN, "--dry-run", "-o", "shot.json/pin"}, 1, "Cannot write to", {}},
                    Case{{"shot.json", PIN, "-o", "-", "--each-layer"}, 2, "-o - takes one file", {}}));

INSTANTIATE_TEST_SUITE_P(
    FormatsAndOptions, Export,
    testing::Values(Case{{"shot.json", "after_effects_cornerpin"}, 2, "nearest: after_effects_corner_pin", {}},
                    Case{{"shot.json", ""}, 2, "there is no format \"\"", {}},
                    Case{{"shot.json", PIN, "--option", "a=1"}, 2, "after_effects_corner_pin has no option \"a\"", {}},
                    Case{{"shot.json", PIN, "--option", "a"}, 2, "isn't KEY=VALUE", {}},
                    Case{{"shot.json", PIN, "--track", "fast"}, 2, "\"fast\" isn't one of basic|adjusted", {}},
                    Case{{"shot.json", PIN, "--reference-frame", "1000"}, 2, "whose frames are 1001 to 1003", {}},
                    Case{{"shot.json", PIN, "--reference-frame", "1004"}, 2, "whose frames are 1001 to 1003", {}},
                    Case{{"shot.json", PIN, "--reference-frame", "2147483647"}, 2, "whose frames are 1001 to 1003", {}},
                    Case{{"shot.json", PIN, "--reference-frame", "first"}, 2, "\"first\" isn't a whole number", {}},
                    Case{{"shot.json", PIN, "--clip", "x"},
                         0,
                         "--clip has no effect on after_effects_corner_pin; a layer",
                         {"Wall.txt"}},
                    Case{{"shot.json", PIN, "--lang", "xx"}, 2, "--lang: there are no texts in \"xx\"; found en", {}},
                    Case{{"shot.json", PIN, "--frobnicate"}, 2, "--frobnicate", {}},
                    Case{{"shot.json"}, 2, "FORMAT is required", {}},
                    Case{{"shot.json", PIN, "--quiet", "--verbose"}, 2, "excludes", {}}));

INSTANTIATE_TEST_SUITE_P(
    LayersAndViews, Export,
    testing::Values(
        Case{{"shot.json", PIN, "--layer", "Ceiling"}, 2, "there is no layer \"Ceiling\"; found \"Wall\"", {}},
        Case{{"crowd.json", PIN}, 2, "\"A/b\", \"Floor\", \"Untracked\"", {}},
        Case{{"crowd.json", PIN, "--layer", "A/b"}, 0, "", {"A_b.txt"}},
        Case{{"crowd.json", PIN, "--layer", "Untracked"}, 1, "Layer \"Untracked\" has no tracking data", {}},
        Case{{"crowd.json", PIN, "--layers", "all"}, 0, "only \"A/b\" is in that of", {"crowd.txt"}},
        Case{{"crowd.json", PIN, "--layers", "selected"}, 0, "", {"A_b.txt"}},
        Case{{"crowd.json", PIN, "--layer", "Floor", "--layers", "all"}, 2, "excludes", {}},
        Case{{"crowd.json", PIN, "--each-layer"}, 0, "\"Untracked\" has no tracking data", {"A_b.txt", "Floor.txt"}},
        Case{{"crowd.json", PIN, "--each-layer", "--layers", "selected"}, 0, "", {"A_b.txt"}},
        Case{{"crowd.json", PIN, "--each-layer", "--layers", "visible", "-o", "{layer}/p_{layer}"},
             0,
             "",
             {"A_b/p_A_b.txt", "Floor/p_Floor.txt"}},
        Case{{"crowd.json", PIN, "--each-layer", "--layers", "visible", "-o", "out/"},
             0,
             "",
             {"out/A_b.txt", "out/Floor.txt"}},
        Case{{"crowd.json", PIN, "--each-layer", "-o", "out"}, 2, "needs {layer}", {}},
        Case{{"crowd.json", PIN, "--layer", "Floor", "--view", "mid"},
             2,
             "no view \"mid\"; found \"left\", \"right\"",
             {}},
        Case{{"crowd.json", PIN, "--layer", "Floor", "--view", "right"}, 1, "has no tracking data", {}},
        Case{{"crowd.json", PIN, "--layer", "Floor", "--view", "all"}, 0, "holds one view; \"left\"", {"Floor.txt"}},
        Case{{"none.json", PIN}, 3, "none.json: can't be opened", {}}, Case{{".", PIN}, 3, ".: can't be", {}}));

class ExportCommand : public testing::Test
{
protected:
    ToolFolder folder;
};

TEST_F(ExportCommand, StdoutCarriesTheFileOrTheList)
{
    folder.write("shot.json", movingProject());
    ToolResult const listed = folder.run({"export", "shot.json", PIN, "-o", "pin"});
    EXPECT_EQ(listed.out, "pin.txt\n");
    EXPECT_TRUE(folder.run({"export", "shot.json", PIN, "--quiet"}).out.isEmpty());
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "-"}).out, folder.read("pin.txt"));
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "new", "--dry-run"}).out, "would write new.txt\n");
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "pin", "--dry-run", "--overwrite"}).out,
              "would overwrite pin.txt\n");
}

TEST_F(ExportCommand, JsonTellsTheSameOnSuccessAndFailure)
{
    folder.write("shot.json", movingProject());
    ToolResult const good = folder.run({"export", "shot.json", PIN, "-o", "pin", "--json"});
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.json(), nlohmann::json({{"format", PIN.toStdString()},
                                           {"status", "written"},
                                           {"files", {{{"path", "pin.txt"}, {"bytes", folder.read("pin.txt").size()}}}},
                                           {"messages", nlohmann::json::array()},
                                           {"warnings", nlohmann::json::array()},
                                           {"notices", nlohmann::json::array()},
                                           {"failedCount", 0},
                                           {"reason", ""}}));
    EXPECT_TRUE(good.out.indexOf("\"format\"") < good.out.indexOf("\"status\""));

    struct
    {
        QStringList arguments;
        int status;
    } const failures[] = {{{"shot.json", PIN, "-o", "pin"}, 1},    {{"shot.json", "nope"}, 2},
                          {{"shot.json", PIN, "--layer", "x"}, 2}, {{"shot.json", PIN, "-o", "-"}, 2},
                          {{"shot.json", PIN, "--lang", "xx"}, 2}, {{"none.json", PIN}, 3}};
    for (auto const& [arguments, status] : failures)
    {
        ToolResult const bad = folder.run(QStringList("export") + arguments + QStringList("--json"));
        SCOPED_TRACE(bad.err.toStdString());
        EXPECT_EQ(bad.status, status);
        nlohmann::json const record = bad.json();
        EXPECT_EQ(record.at("status"), "failed");
        EXPECT_EQ(record.at("files").size(), 0u);
        EXPECT_EQ("marlo-export: " + record.at("reason").get<std::string>() + "\n", bad.err.toStdString());
    }
}

TEST_F(ExportCommand, ExistingFilesStayUnlessToldOtherwise)
{
    folder.write("crowd.json", crowdedProject());
    QStringList const eachLayer{"export", "crowd.json", PIN, "--each-layer", "--layers", "visible"};
    folder.write("Floor.txt", "old");
    ToolResult const refused = folder.run(eachLayer);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "marlo-export: Floor.txt exists; use --overwrite to replace it\n");
    EXPECT_EQ(folder.read("Floor.txt"), "old");
    EXPECT_EQ(folder.files(), (QStringList{"Floor.txt", "crowd.json"})) << "none of the two is written";
    EXPECT_EQ(folder.run(eachLayer + QStringList("--overwrite")).status, 0);
    EXPECT_TRUE(folder.read("Floor.txt").startsWith("Adobe After Effects"));

    QDir(folder.path(".")).mkdir("pin.txt");
    ToolResult const onFolder =
        folder.run({"export", "crowd.json", PIN, "--layer", "Floor", "-o", "pin", "--overwrite"});
    EXPECT_EQ(onFolder.status, 1);
    EXPECT_EQ(onFolder.err, "marlo-export: Could not write to file pin.txt: Is a directory\n");
}

TEST_F(ExportCommand, FailedFramesAreWrittenAndToldOrStopIt)
{
    ProjectBuilder project = movingProject(QStringLiteral("50% %1 of \"it\""), 30);
    auto& track = project.layer().tracks[0];
    track.frames.resize(1);
    track.homographies.resize(9);
    folder.write("shot.json", project);
    ToolResult const strict = folder.run({"export", "shot.json", PIN, "-o", "pin", "--strict", "--json"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.json().at("messages").size(), 29u);
    EXPECT_EQ(folder.files(), QStringList("shot.json"));

    ToolResult const lax = folder.run({"export", "shot.json", PIN, "-o", "%1"});
    EXPECT_EQ(lax.status, 4);
    EXPECT_EQ(lax.out, "%1.txt\n");
    EXPECT_TRUE(lax.err.contains("warning: %1.txt: Frame 1002: ")) << lax.err.toStdString();
    EXPECT_TRUE(lax.err.contains("19 more")) << "a long list is cut";
    EXPECT_EQ(folder.files(), (QStringList{"%1.txt", "shot.json"}));
    EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "%1", "--overwrite", "--quiet"}).status, 4);
}

TEST_F(ExportCommand, LayersOfOneNameAreToldApart)
{
    ProjectBuilder project = movingProject("Twin");
    project.addLayer("Twin");
    project.model.currentLayer.clear();
    folder.write("shot.json", project);
    ToolResult const one = folder.run({"export", "shot.json", PIN, "--layer", "Twin", "-o", "-"});
    EXPECT_TRUE(one.err.contains("several layers are called \"Twin\"; the topmost is exported"));
    EXPECT_EQ(rowsOf(one.out), (QList<QByteArray>{"0\t860\t490", "1\t862.5\t491", "2\t865\t492"}));
    ToolResult const each = folder.run({"export", "shot.json", PIN, "--each-layer"});
    EXPECT_EQ(each.status, 1);
    EXPECT_TRUE(each.err.contains("two layers would be written to Twin.txt")) << each.err.toStdString();
    EXPECT_EQ(folder.files(), QStringList("shot.json"));
}

TEST_F(ExportCommand, NamesOfLayersMakeSafeFileNames)
{
    struct
    {
        QString layer;
        QString file;
    } const cases[] = {{"../up", "___up.txt"},   {".hidden", "_hidden.txt"},
                       {"a\\b/c", "a_b_c.txt"},  {"Tür 門 %1 \"x\" 'y' *", "Tür 門 %1 \"x\" 'y' *.txt"},
                       {"done.txt", "done.txt"}, {QString(400, QChar(0x9580)), QString(66, QChar(0x9580)) + ".txt"}};
    for (auto const& [layer, file] : cases)
    {
        ToolFolder fresh;
        fresh.write("shot.json", movingProject(layer));
        EXPECT_EQ(fresh.run({"export", "shot.json", PIN}).status, 0);
        EXPECT_TRUE(fresh.files().contains(file)) << fresh.files().join(", ").toStdString();
        EXPECT_EQ(fresh.files().size(), 2);
    }
}

// The point that stays where it is in an inverted export says what the reference was.
TEST_F(ExportCommand, ReferenceFrameIsAShownNumber)
{
    folder.write("shot.json", movingProject());
    ToolResult const first = folder.run({"export", "shot.json", PIN, "--invert", "-o", "-"});
    EXPECT_EQ(rowsOf(first.out), (QList<QByteArray>{"0\t0\t0", "1\t-2.5\t-1", "2\t-5\t-2"}));
    ToolResult const last =
        folder.run({"export", "shot.json", PIN, "--invert", "--reference-frame", "1003", "-o", "-"});
    EXPECT_EQ(rowsOf(last.out), (QList<QByteArray>{"0\t5\t2", "1\t2.5\t1", "2\t0\t0"}));
}

TEST_F(ExportCommand, ReferenceFrameOfInterlacedMaterialIsHalved)
{
    ProjectBuilder project = movingProject("Wall", 6);
    project.clip().interlaced = true;
    project.clip().frameOffset = 21;
    folder.write("shot.json", project);
    // Fields 21 to 26 are shown as frames 10.5 to 13.
    for (char const* frame : {"10.5", "11", "12.5", "13"})
    {
        EXPECT_EQ(folder.run({"export", "shot.json", PIN, "-o", "-", "--reference-frame", frame}).status, 0);
    }
    for (char const* frame : {"10", "13.5"})
    {
        ToolResult const refused = folder.run({"export", "shot.json", PIN, "-o", "-", "--reference-frame", frame});
        EXPECT_EQ(refused.status, 2);
        EXPECT_TRUE(refused.err.contains("whose frames are 10.5 to 13")) << refused.err.toStdString();
    }
}

TEST_F(ExportCommand, ChosenViewIsExported)
{
    ProjectBuilder project = movingProject();
    project.model.views = QStringList{"left", "right"};
    project.track([](int) { return ProjectBuilder::translation(100, 0); }, "right");
    folder.write("shot.json", project);
    QStringList const command{"export", "shot.json", PIN, "-o", "-"};
    EXPECT_EQ(rowsOf(folder.run(command).out).value(0), "0\t860\t490");
    EXPECT_EQ(rowsOf(folder.run(command + QStringList{"--view", "right"}).out).value(0), "0\t960\t490");
    // In front of the words that are no options, several times, and with a name that
    // could be taken for a list.
    EXPECT_EQ(
        rowsOf(folder.run({"export", "--view", "right", "--view", "left", "shot.json", PIN, "-o", "-"}).out).value(0),
        "0\t860\t490");
    ToolResult const brackets = folder.run(command + QStringList{"--view", "[right]"});
    EXPECT_TRUE(brackets.err.contains("no view \"[right]\"")) << brackets.err.toStdString();
    project.model.currentView = "right";
    folder.write("shot.json", project);
    EXPECT_EQ(rowsOf(folder.run(command).out).value(0), "0\t960\t490");
}

TEST_F(ExportCommand, AnInaccuratePointIsToldAndANoticeComesWithoutTheTagsOfADialog)
{
    ProjectBuilder project(1);
    project.model.solve.emplace();
    project.model.solve->features.resize(1);
    project.model.solve->features[0].name = "set";
    project.model.solve->features[0].points.positions = {1, 0, -1};
    project.model.solve->features[0].points.inaccurate = {0};
    folder.write("shot.json", project);
    ToolResult const result = folder.run({"export", "shot.json", "after_effects_3D_motion"});
    EXPECT_EQ(result.status, 0) << "no frame has failed";
    EXPECT_TRUE(result.err.contains("set: Feature 1")) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains("to be installed. If you") && !result.err.contains('<'))
        << result.err.toStdString();
}

TEST_F(ExportCommand, AllWritesWhatTheProjectCanFeed)
{
    folder.write("shot.json", movingProject());
    nlohmann::json const formats = folder.run({"formats", "--kind", "tracking", "--json"}).json();
    ToolResult const all = folder.run({"all", "shot.json", "-o", "out", "--kind", "tracking", "--json"});
    EXPECT_NE(all.status, 2) << all.err.toStdString();
    ASSERT_EQ(all.json().size(), formats.size());
    for (std::size_t i = 0; i < formats.size(); ++i)
    {
        nlohmann::json const record = all.json()[i];
        EXPECT_EQ(record.at("format"), formats[i].at("key"));
        if (record.at("status") != "written")
        {
            EXPECT_NE(record.at("reason"), "");
            continue;
        }
        for (nlohmann::json const& file : record.at("files"))
        {
            QString const path = QString::fromStdString(file.at("path"));
            EXPECT_TRUE(path.startsWith("out/" + QString::fromStdString(record.at("format")) + "/Wall"));
            EXPECT_EQ(QFileInfo(folder.path(path)).size(), file.at("bytes").get<qint64>());
        }
    }
    EXPECT_TRUE(folder.files().contains("out/after_effects_corner_pin/Wall.txt"));

    ToolResult const again = folder.run({"all", "shot.json", "-o", "out", "--kind", "tracking"});
    EXPECT_EQ(again.status, 1) << "every file exists";
    EXPECT_TRUE(again.err.contains("out/after_effects_transform/Wall.txt exists")) << "it goes on after a failure";
}

TEST_F(ExportCommand, AllSkipsWithAReasonAndNoEffectOnTheStatus)
{
    ProjectBuilder project = movingProject();
    project.layer().tracks.clear();
    folder.write("shot.json", project);
    ToolResult const all = folder.run({"all", "shot.json", "-o", "out"});
    EXPECT_EQ(all.status, 0) << all.err.toStdString();
    EXPECT_TRUE(all.err.contains("skipped after_effects_corner_pin: Layer \"Wall\" has no tracking data"));
    EXPECT_EQ(folder.files(), QStringList("shot.json"));
    EXPECT_EQ(folder.run({"all", "shot.json", "-o", "out", "--option", "nope=1"}).status, 2);
    EXPECT_EQ(folder.run({"all", "shot.json", "-o", "out", "--layer", "nope"}).status, 2);
    EXPECT_EQ(folder.run({"all", "none.json", "-o", "out"}).status, 3);
    EXPECT_EQ(folder.run({"all", "shot.json"}).status, 2);
}

}
