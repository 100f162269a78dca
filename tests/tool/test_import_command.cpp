// `import`: from a table to corners in an exported file, and what an import of a COLMAP
// model says.

#include "ToolRun.h"

#include <gtest/gtest.h>

namespace
{

constexpr char TABLE[] = "frame ulx uly urx ury lrx lry llx lly\n"
                         "10 100 50 300 60 310 200 90 190\n"
                         "11 110.5 55.25 305 61 320 210 95 191\n"
                         "12 0 0 0 0 0 0 0 0\n"
                         "15 120 56 306 62 321 211 96 192\n";

class ImportCommand : public testing::Test
{
protected:
    ToolResult import(QByteArray const& table, QStringList const& options)
    {
        folder.write("t.txt", table);
        return folder.run(QStringList{"import", "corners", "t.txt", "-o", "p.json"} + options);
    }

    /// Expects that the arguments, which follow "import", end in one line with these words and
    /// leave the files as they are.
    void expectRefused(QStringList const& arguments, int status, char const* words)
    {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        QStringList const before = folder.files();
        ToolResult const result = folder.run(QStringList("import") + arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_TRUE(result.err.contains(words) && result.err.count('\n') == 1) << result.err.toStdString();
        EXPECT_EQ(folder.files(), before);
        if (arguments.contains("--json"))
        {
            EXPECT_EQ(result.json().at("status"), "failed");
        }
    }

    ToolFolder folder;
};

TEST_F(ImportCommand, CornersComeOutOfAnExportAsTheyWentIn)
{
    ASSERT_EQ(import(TABLE, {"--size", "640x480"}).status, 0);
    ToolResult const pin = folder.run({"export", "p.json", "after_effects_corner_pin", "-o", "-"});
    EXPECT_EQ(pin.status, 4) << "frames 12 to 14 are missing";
    EXPECT_TRUE(pin.err.contains("Frame 12:") && pin.err.contains("Frame 14:")) << pin.err.toStdString();
    // Upper left, upper right, lower left, lower right; frames of the clip.
    for (char const* row :
         {"\t0\t100\t50\n", "\t1\t110.5\t55.25\n", "\t5\t120\t56\n", "\t0\t300\t60\n", "\t5\t306\t62\n",
          "\t0\t90\t190\n", "\t5\t96\t192\n", "\t0\t310\t200\n", "\t1\t320\t210\n", "\t5\t321\t211\n"})
    {
        EXPECT_TRUE(pin.out.contains(row)) << row;
    }
}

TEST_F(ImportCommand, TellsWhatItFoundAndAssumed)
{
    ToolResult const people = import(TABLE, {"--size", "640x480", "--name", "Wall"});
    EXPECT_EQ(people.status, 0);
    EXPECT_TRUE(people.err.isEmpty()) << people.err.toStdString();
    EXPECT_EQ(people.out, "p.json\n"
                          "frames: 3 with corners, 10 to 15 (numbers of the table)\n"
                          "missing: 12-14\n"
                          "axis: y down (default; --y-up for the other way); order of the corners: ul,ur,lr,ll\n");
    nlohmann::json const info = folder.run({"info", "p.json", "--json"}).json();
    EXPECT_EQ(info.at("frameRate"), 24);
    EXPECT_EQ(info.at("clips")[0].at("name"), "t");
    EXPECT_EQ(info.at("layers")[0].at("name"), "Wall");
    EXPECT_EQ(info.at("layers")[0].at("firstFrame"), 10);
    EXPECT_EQ(info.at("layers")[0].at("lastFrame"), 15);

    ToolResult const scripts =
        import(TABLE, {"--size", "640x480", "--overwrite", "--y-up", "--order", "ll,lr,ur,ul", "--json"});
    EXPECT_EQ(scripts.json(), nlohmann::json({{"project", "p.json"},
                                              {"status", "written"},
                                              {"frames", 3},
                                              {"firstFrame", 10},
                                              {"lastFrame", 15},
                                              {"missing", {{12, 14}}},
                                              {"frameNumbers", "table"},
                                              {"axis", "y up"},
                                              {"order", "ll,lr,ur,ul"},
                                              {"warnings", nlohmann::json::array()},
                                              {"reason", ""}}));
}

TEST_F(ImportCommand, DoubtsMirroredAndCrossedCorners)
{
    ToolResult const mirrored = import(TABLE, {"--size", "640x480", "--y-up"});
    EXPECT_EQ(mirrored.status, 0);
    EXPECT_TRUE(mirrored.err.contains("in 3 of 3 frames the surface looks mirrored; does y run down"))
        << mirrored.err.toStdString();
    QByteArray const crossing = QByteArray(TABLE) + "16 310 50 100 60 320 200 90 190\n";
    ToolResult const crossed = import(crossing, {"--size", "640x480", "--overwrite"});
    EXPECT_EQ(crossed.status, 0);
    EXPECT_TRUE(crossed.err.contains("in 1 of 4 frames the outline")) << crossed.err.toStdString();
}

TEST_F(ImportCommand, RefusalsWriteNothing)
{
    folder.write("t.txt", TABLE);
    folder.write("short.txt", "1 2 3\n");
    folder.write("empty.txt", "");
    struct
    {
        char const* table;
        QStringList options;
        int status;
        char const* words;
    } const cases[] = {
        {"short.txt", {"--size", "640x480", "--json"}, 3, "short.txt: line 1: 3 values"},
        {"empty.txt", {"--size", "640x480"}, 3, "empty.txt: no usable row"},
        {"none.txt", {"--size", "640x480"}, 3, "none.txt: can't be opened"},
        {"t.txt", {"--size", "640x480", "--order", "ul,ur,ll,lr"}, 3, "line 2: the corners of frame 10 cross"},
        {"t.txt", {}, 2, "--size is required"},
        {"t.txt", {"--size", "640"}, 2, "\"640\" isn't WIDTHxHEIGHT"},
        {"t.txt", {"--size", "0x480"}, 2, "isn't WIDTHxHEIGHT"},
        {"t.txt", {"--size", "640x480x2"}, 2, "isn't WIDTHxHEIGHT"},
        {"t.txt", {"--size", "640x480", "--fps", "0"}, 2, "isn't a rate"},
        {"t.txt", {"--size", "640x480", "--fps", "nan"}, 2, "isn't a rate"},
        {"t.txt", {"--size", "640x480", "--fps", "23,976"}, 2, "isn't a rate"},
        {"t.txt", {"--size", "640x480", "--order", "ul,ur,lr"}, 2, "isn't ul, ur, lr and ll"},
        {"t.txt", {"--size", "640x480", "--order", "ul,ur,lr,lr"}, 2, "isn't ul, ur, lr and ll"},
        {"t.txt", {"--size", "640x480", "--name", ""}, 2, "--name"},
        {"t.txt", {"--size", "640x480", "-o", "-"}, 2, ""},
    };
    for (auto const& [table, options, status, words] : cases)
    {
        expectRefused(QStringList{"corners", table, "-o", "p.json"} + options, status, words);
    }
    expectRefused({"pictures"}, 2, "there is no command \"pictures\"; there are corners, colmap");
}

TEST_F(ImportCommand, KeepsAnOldProjectUnlessToldOtherwise)
{
    folder.write("p.json", "old");
    ToolResult const refused = import(TABLE, {"--size", "640x480"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "marlo-export: p.json exists; use --overwrite to replace it\n");
    EXPECT_EQ(folder.read("p.json"), "old");
    EXPECT_EQ(import(TABLE, {"--size", "640x480", "--overwrite"}).status, 0);
    EXPECT_EQ(folder.run({"info", "p.json"}).status, 0);
    EXPECT_EQ(folder.run({"import", "corners", "t.txt", "-o", ".", "--size", "640x480", "--overwrite"}).status, 1);
}

class ImportColmap : public ImportCommand
{
protected:
    void SetUp() override
    {
        QDir(folder.path("")).mkdir("m");
        folder.write("m/cameras.txt", "1 OPENCV 640 480 500 500 324 239 -0.1 0 0.001 0\n2 PINHOLE 640 480 5 5 0 0\n");
        folder.write("m/images.txt", "1 1 0 0 0 0 0 0 1 f12.png\n1 1 7\n2 1 0 0 0 1 2 3 1 f9.png\n\n"
                                     "3 1 0 0 0 1 2 3 1 f10.png\n\n4 1 0 0 0 1 2 3 1 f11.png\n");
        folder.write("m/points3D.txt", "7 0 0 1 0 0 0 0.5 1 0\n8 0 0 1 0 0 0 0.25\n9 0 0 1 0 0 0 9\n");
    }

    ToolResult import(QStringList const& options)
    {
        return folder.run(QStringList{"import", "colmap", "m/", "-o", "shot.json"} + options);
    }
};

constexpr char OFF_CENTRE[] = "the principal point lies off the middle of the picture, by 4.00 pixels to the right and "
                              "-1.00 down; the camera of the scene looks through the middle, so move its picture by as "
                              "much";

TEST_F(ImportColmap, TellsWhatItFoundAndLeftOut)
{
    ToolResult const people = import({"--fps", "25"});
    EXPECT_EQ(people.status, 0);
    EXPECT_EQ(people.err, QByteArray("marlo-export: warning: ") + OFF_CENTRE + '\n');
    EXPECT_EQ(
        people.out,
        "shot.json\n"
        "images: 4 of 640x480, footage: sequence\n"
        "frames: 9 (f9.png) to 12 (f12.png)\n"
        "points: 3, median error: 0.50 px, inaccurate: 1\n"
        "camera: focal length 28.13 mm on a film back of 36 mm, pixel aspect 1, principal point off the middle by "
        "4.00, -1.00 px (right, down)\n"
        "lens: radial1, tangential1\n"
        "left out: 1 2D points and their tracks, colours of the points, a camera without images\n");
    nlohmann::json const info = folder.run({"info", "shot.json", "--json"}).json();
    EXPECT_EQ(info.at("frameRate"), 25);
    EXPECT_EQ(info.at("clips")[0].at("name"), "shot");

    EXPECT_EQ(import({"--json"}).status, 1) << "the project exists";
    EXPECT_EQ(import({"--json", "--overwrite"}).json(),
              nlohmann::json(
                  {{"project", "shot.json"},
                   {"status", "written"},
                   {"images", 4},
                   {"firstFrame", 9},
                   {"lastFrame", 12},
                   {"firstImage", "f9.png"},
                   {"lastImage", "f12.png"},
                   {"footage", "sequence"},
                   {"points", 3},
                   {"inaccurate", 1},
                   {"medianError", 0.5},
                   {"focalLength", {28.125, 28.125}},
                   {"pixelAspect", 1.0},
                   {"principalPoint", {4.0, -1.0}},
                   {"lens", {"radial1", "tangential1"}},
                   {"leftOut", {"1 2D points and their tracks", "colours of the points", "a camera without images"}},
                   {"warnings", {OFF_CENTRE}},
                   {"reason", ""}}));
    EXPECT_TRUE(import({"--quiet", "--overwrite"}).out.isEmpty());
}

TEST_F(ImportColmap, RefusalsWriteNothing)
{
    for (char const* const name : {"binary", "broken"})
    {
        QDir(folder.path("")).mkdir(name);
    }
    folder.write("binary/cameras.bin", "\x01");
    folder.write("broken/cameras.txt", "1 1 1 1\n");
    expectRefused({"colmap", "none", "-o", "shot.json"}, 3, "none/cameras.txt: can't be opened");
    expectRefused({"colmap", "binary", "-o", "shot.json"}, 3,
                  "binary: holds a model in binary form; convert it to text");
    expectRefused({"colmap", "broken", "-o", "shot.json", "--json"}, 3,
                  "broken/cameras.txt: line 1: the camera model \"1\"");
    expectRefused({"colmap", "m", "-o", "-"}, 2, "import: -o needs the path of a project file");
    expectRefused({"colmap", "m", "-o", "shot.json", "--fps", "0"}, 2, "isn't a rate");
    expectRefused({"colmap", "m", "-o", "shot.json", "--size", "1x1"}, 2, "--size");
    expectRefused({"colmap", "", "-o", "shot.json"}, 2, "DIR");
}

}
