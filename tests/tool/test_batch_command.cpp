// `batch`: which exports run, where their files go, and what is told.

#include "ToolRun.h"

#include <QSet>

#include <gtest/gtest.h>

namespace
{

using Json = nlohmann::json;

std::string const PIN = "after_effects_corner_pin";
std::string const TRANSFORM = "after_effects_transform";

Json tracking(std::string const& format, char const* path = nullptr, Json const& options = Json::object())
{
    Json stored{{"type", "tracking"}, {"format", format}, {"options", options}};
    if (path)
    {
        stored["filePath"] = path;
    }
    return stored;
}

/// Two views and two tracked layers, of which the second is current.
ProjectBuilder twoLayers()
{
    ProjectBuilder project = movingProject(QStringLiteral("Wall"));
    project.layer().selected = false;
    project.model.views = QStringList{"left", "right"};
    project.track([](int frame) { return ProjectBuilder::translation(7 * frame, frame); }, QStringLiteral("right"));
    project.addLayer(QStringLiteral("Floor"));
    project.track([](int frame) { return ProjectBuilder::translation(-frame, 2 * frame); });
    project.layer().selected = true;
    project.addLayer(QStringLiteral("Blank"));
    project.layer().tracks.clear();
    project.model.currentLayer = QStringLiteral("Floor");
    return project;
}

class Batch : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.write("shot.json", twoLayers());
        QDir(folder.path(".")).mkpath("show");
    }

    void writePresets(std::map<std::string, std::vector<Json>> const& presets)
    {
        Json file{{"presets", Json::array()}};
        for (auto const& [name, exports] : presets)
        {
            file["presets"].push_back({{"name", name}, {"exports", exports}});
        }
        folder.write("show/p.json", QByteArray::fromStdString(file.dump()));
    }

    ToolResult run(QStringList const& arguments = {})
    {
        return folder.run(QStringList{"batch", "shot.json", "show/p.json"} + arguments);
    }

    /// What is in the folder but project and presets.
    QStringList written() const
    {
        QStringList files = folder.files();
        files.removeAll("shot.json");
        files.removeAll("show/p.json");
        return files;
    }

    ToolFolder folder;
};

}

TEST_F(Batch, FilesGoWhereTheExportSays)
{
    struct
    {
        char const* path;
        QStringList arguments;
        char const* file;
    } const cases[] = {
        {nullptr, {}, "Floor.txt"},
        {"", {}, "Floor.txt"},
        {nullptr, {"-o", "out"}, "out/Floor.txt"},
        {"comp/pin.txt", {}, "show/comp/pin.txt"},
        {"pin", {}, "show/pin.txt"},
        {"comp/", {}, "show/comp/Floor.txt"},
        {"../pin.txt", {}, "pin.txt"},
        {"comp/pin.txt", {"-o", "out"}, "out/pin.txt"},
        {"/nowhere/pin.txt", {"-o", "out/"}, "out/pin.txt"},
        {"comp/", {"-o", "out"}, "out/Floor.txt"},
    };
    for (auto const& [path, arguments, file] : cases)
    {
        SCOPED_TRACE(std::string(path ? path : "none") + " " + arguments.join(' ').toStdString());
        writePresets({{"a", {tracking(PIN, path)}}});
        ToolResult const result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        EXPECT_EQ(written(), QStringList(file));
        EXPECT_EQ(result.err, "marlo-export: 1 written, 0 skipped, 0 failed\n");
        QFile::remove(folder.path(file));
    }
}

TEST_F(Batch, BytesAreThoseOfExport)
{
    // The order matters: no export may see what the one before it made current.
    struct
    {
        Json options;
        QStringList arguments;
    } const cases[] = {
        {{{"layerExportMode", "specified"}, {"layer", "Wall"}}, {"--layer", "Wall", "--track", "basic"}},
        {Json::object(), {"--track", "basic", "--view", "left"}},
        {{{"layerExportMode", "specified"},
          {"layer", "Wall"},
          {"viewsToExport", {1, 0}},
          {"trackingOption", "adjusted"}},
         {"--layer", "Wall", "--view", "right"}},
        {{{"viewsToExport", Json::array()}, {"invert", true}, {"referenceFrame", 2}},
         {"--invert", "--reference-frame", "1003", "--track", "basic"}},
        {{{"referenceFrame", -1}, {"invert", true}}, {"--invert", "--track", "basic"}},
        {{{"layerExportMode", "all"}, {"trackingOption", "stabilized"}}, {"--layers", "all", "--track", "stabilized"}},
    };
    std::vector<Json> exports;
    for (auto const& c : cases)
    {
        for (std::string const& format : {PIN, TRANSFORM})
        {
            std::string const name = "b" + std::to_string(exports.size()) + ".txt";
            exports.push_back(tracking(format, name.c_str(), c.options));
        }
    }
    writePresets({{"a", exports}});
    ToolResult const batch = run();
    EXPECT_EQ(batch.status, 0) << batch.err.toStdString();
    EXPECT_TRUE(batch.err.contains("holds one view; \"right\" is exported")) << batch.err.toStdString();
    QSet<QByteArray> different;
    for (std::size_t i = 0; i < exports.size(); ++i)
    {
        QStringList const arguments = cases[i / 2].arguments;
        QString const format = QString::fromStdString(i % 2 == 0 ? PIN : TRANSFORM);
        ToolResult const single = folder.run(QStringList{"export", "shot.json", format, "-o", "-"} + arguments);
        ASSERT_EQ(single.status, 0) << single.err.toStdString();
        EXPECT_EQ(folder.read(QStringLiteral("show/b%1.txt").arg(i)), single.out)
            << i << " " << arguments.join(' ').toStdString();
        different.insert(single.out);
    }
    EXPECT_GE(different.size(), 8) << "the cases hardly differ";
}

TEST_F(Batch, APresetOfAllFormatsDoesWhatAllDoes)
{
    folder.environment.insert("SOURCE_DATE_EPOCH", "1700000000");
    Json expected = folder.run({"all", "shot.json", "-o", "show", "--dry-run", "--json"}).json();
    Json presentable = Json::array();
    int index = 0;
    for (Json const& format : folder.run({"formats", "--json"}).json())
    {
        QString const key = QString::fromStdString(format.at("key").get<std::string>());
        ToolResult const added = folder.run({"preset", "add", "show/p.json", "every", key, "-o", key + "/"});
        bool const isLens = format.at("kind") == "lens";
        EXPECT_EQ(added.status, isLens ? 2 : 0) << added.err.toStdString();
        EXPECT_EQ(added.err.contains("can't be presets"), isLens);
        if (!isLens)
        {
            presentable.push_back(expected.at(static_cast<std::size_t>(index)));
        }
        ++index;
    }
    EXPECT_GT(presentable.size(), 5u);
    EXPECT_EQ(run({"--dry-run", "--json"}).json(), presentable);
}

TEST_F(Batch, FailedFramesAreToldOrWithStrictStopTheirExportAlone)
{
    ProjectBuilder project = twoLayers();
    auto& wall = project.model.layers[0].tracks[0];
    wall.frames.resize(1);
    wall.homographies.resize(9);
    folder.write("shot.json", project);
    Json const onWall{{"layerExportMode", "specified"}, {"layer", "Wall"}};
    writePresets({{"a", {tracking(PIN, "wall", onWall), tracking(PIN, "floor")}}});
    ToolResult const strict = run({"--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_TRUE(strict.err.contains("1 written, 0 skipped, 1 failed")) << strict.err.toStdString();
    EXPECT_EQ(written(), QStringList("show/floor.txt"));
    ToolResult const lax = run({"--overwrite"});
    EXPECT_EQ(lax.status, 4);
    EXPECT_TRUE(lax.err.contains("2 written, 0 skipped, 0 failed")) << lax.err.toStdString();
    EXPECT_EQ(lax.out, "show/wall.txt\nshow/floor.txt\n");
}

TEST_F(Batch, PresetsRunByNameOrAsGiven)
{
    writePresets({{"b", {tracking(PIN, "b")}}, {"a", {tracking(TRANSFORM, "a2"), tracking(PIN, "a1")}}, {"c", {}}});
    EXPECT_EQ(run().out, "show/a2.txt\nshow/a1.txt\nshow/b.txt\n");
    EXPECT_EQ(run({"-o", "out", "--preset", "b", "--preset", "a", "--preset", "b"}).out,
              "out/b.txt\nout/a2.txt\nout/a1.txt\n");
    ToolResult const rehearsed = run({"--preset", "b", "--dry-run", "-o", "new"});
    EXPECT_EQ(rehearsed.out, "would write new/b.txt\n");
    EXPECT_EQ(rehearsed.err, "marlo-export: 1 would be written, 0 skipped, 0 failed\n");
    EXPECT_EQ(rehearsed.status, 0);
    EXPECT_FALSE(QFile::exists(folder.path("new")));
    ToolResult const empty = run({"--preset", "c", "--json"});
    EXPECT_EQ(empty.json(), Json::array());
    EXPECT_EQ(empty.status, 0);
}

TEST_F(Batch, SkipsAndFailuresDontStopTheRest)
{
    Json const nowhere{{"layerExportMode", "specified"}, {"layer", "Ceiling"}};
    Json const blank{{"layerExportMode", "specified"}, {"layer", "Blank"}};
    struct
    {
        Json stored;
        int status;
        char const* state;
        char const* reason;
    } const cases[] = {
        {tracking(PIN, "x", nowhere), 1, "failed", "there is no layer \"Ceiling\""},
        {tracking(PIN, "x", blank), 0, "skipped", "Layer \"Blank\" has no tracking data"},
        {tracking("nope", "x"), 1, "failed", "Invalid export format name"},
        {tracking(PIN, "x", {{"viewsToExport", {2}}}), 1, "failed", "the project has no view 2; its views are 0 to 1"},
        {tracking(PIN, "x", {{"viewsToExport", {-1}}}), 1, "failed", "the project has no view -1"},
        {tracking(PIN, "x", {{"referenceFrame", 3}}), 1, "failed", "3 isn't a host frame of the project"},
        {tracking(PIN, "x", {{"referenceFrame", -2}}), 1, "failed", "-2 isn't a host frame of the project"},
        {tracking(PIN, "p.json/x"), 1, "failed", "Cannot write to following paths"},
        {tracking(PIN, "old.txt"), 1, "failed", "show/old.txt exists; use --overwrite to replace it"},
    };
    for (auto const& [stored, status, state, reason] : cases)
    {
        SCOPED_TRACE(reason);
        writePresets({{"a", {stored}}, {"b", {tracking(PIN, "good")}}});
        folder.write("show/old.txt", "old");
        ToolResult const told = run();
        EXPECT_EQ(told.status, status);
        EXPECT_TRUE(told.err.contains(reason) && told.err.contains("preset \"a\", ")) << told.err.toStdString();
        EXPECT_TRUE(told.err.contains(status ? "1 written, 0 skipped, 1 failed" : "1 written, 1 skipped, 0 failed"));
        EXPECT_EQ(told.out, "show/good.txt\n");
        EXPECT_EQ(folder.read("show/old.txt"), "old");

        QFile::remove(folder.path("show/good.txt"));
        ToolResult const listed = run({"--json"});
        EXPECT_EQ(listed.status, status);
        Json const records = listed.json();
        ASSERT_EQ(records.size(), 2u);
        EXPECT_EQ(records[0].at("status"), state);
        EXPECT_NE(records[0].at("reason").get<std::string>().find(reason), std::string::npos) << records[0];
        EXPECT_EQ(records[0].size(), 8u);
        EXPECT_EQ(records[1].at("status"), "written");
        QFile::remove(folder.path("show/good.txt"));
    }
}

TEST_F(Batch, NothingRunsWhenTwoExportsHaveOnePath)
{
    QFile::link(folder.path("show"), folder.path("link"));
    std::string const absolute = folder.path("show/x.txt").toStdString();
    for (char const* other : {"x", "x.txt", "../show/./x", "../link/x", "new/../x", absolute.c_str()})
    {
        SCOPED_TRACE(other);
        writePresets({{"a", {tracking(TRANSFORM, "first"), tracking(PIN, "x")}}, {"b", {tracking(TRANSFORM, other)}}});
        ToolResult const result = run({"--overwrite"});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.err.startsWith("marlo-export: preset \"a\", after_effects_corner_pin and preset \"b\", "
                                          "after_effects_transform would both be written to "))
            << result.err.toStdString();
        EXPECT_EQ(result.err.count('\n'), 1);
        EXPECT_FALSE(QFile::exists(folder.path("show/first.txt")));
    }
    // Folders keep them apart, which -o takes away.
    writePresets({{"a", {tracking(PIN, "1/x"), tracking(PIN, "2/x")}}});
    EXPECT_EQ(run({"-o", "out", "--json"}).json().at(0).at("status"), "failed");
    EXPECT_EQ(run().status, 0);
}

TEST_F(Batch, WhatEndsItBeforeItBegins)
{
    writePresets({{"a", {tracking(PIN)}}});
    folder.write("bad.json", "{\"presets\": [\n\n1]}");
    struct
    {
        QStringList arguments;
        int status;
        char const* words;
    } const cases[] = {
        {{"shot.json", "none.json"}, 3, "none.json: can't be opened (No such file or directory)"},
        {{"shot.json", "bad.json"}, 3, "bad.json: "},
        {{"shot.json", "shot.json"}, 3, "shot.json: "},
        {{"none.json", "show/p.json"}, 3, "none.json: can't be opened"},
        {{"shot.json", "show/p.json", "--preset", "x"}, 2, "there is no preset \"x\"; found \"a\""},
        {{"shot.json", "show/p.json", "-o", "-"}, 2, "-o - isn't a folder"},
        {{"shot.json", "show/p.json", "-o", ""}, 2, "-o: needs a text"},
        {{"shot.json"}, 2, "PRESETS is required"},
    };
    for (auto const& [arguments, status, words] : cases)
    {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        ToolResult const result = folder.run(QStringList("batch") + arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_TRUE(result.err.contains(words)) << result.err.toStdString();
        EXPECT_EQ(result.err.count('\n'), 1) << result.err.toStdString();
        EXPECT_EQ(written(), QStringList("bad.json"));
    }
    EXPECT_EQ(folder.run({"batch", "shot.json", "none.json", "--json"}).json().at(0).at("status"), "failed");
    EXPECT_TRUE(run({"--quiet"}).err.isEmpty());
}
