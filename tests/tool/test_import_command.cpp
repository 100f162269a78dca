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
                          "axis: y down (default; --y-up for the other way); order of the corners: ul,ur,lr,ll\n"
                          "pixels: 0,0 is the outer corner of the corner pixel (default; --pixel-centres for its "
                          "middle)\n");
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
                                              {"gaps", "hold"},
                                              {"frameNumbers", "table"},
                                              {"axis", "y up"},
                                              {"pixels", "edges"},
                                              {"order", "ll,lr,ur,ul"},
                                              {"ignoredColumns", nlohmann::json::array()},
                                              {"warnings", nlohmann::json::array()},
                                              {"reason", ""}}));
}

TEST_F(ImportCommand, TakesATableFromAPipeWithWhatItLacks)
{
    folder.write("t.csv", "file,err,ulx,uly,urx,ury,lrx,lry,llx,lly\na_10.png,1,100,50,300,60,310,200,90,190\n"
                          "a_11.png,,,,,,,,,\na_12.png,1,110,60,310,70,320,210,100,200\n");
    auto const fromPipe = [this] { ASSERT_TRUE(freopen(qPrintable(folder.path("t.csv")), "r", stdin)); };
    ToolResult const result =
        folder.run({"import", "corners", "-", "-o", "p.json", "--size", "640x480", "--par", "2", "--start", "1001",
                    "--pixel-centres", "--gaps", "interpolate", "--fps", "30000/1001"},
                   fromPipe);
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(result.out, "p.json\n"
                          "frames: 2 with corners, 1001 to 1003 (counted from --start)\n"
                          "missing: 1002 (interpolated where corners lie on both sides)\n"
                          "axis: y down (default; --y-up for the other way); order of the corners: ul,ur,lr,ll\n"
                          "pixels: 0,0 is the middle of the corner pixel (--pixel-centres)\n"
                          "ignored columns: err\n");
    nlohmann::json const project = nlohmann::json::parse(folder.read("p.json").toStdString());
    EXPECT_EQ(project.at("frameRate"), 30000 / 1001.0);
    EXPECT_EQ(project.at("clips")[0].at("name"), "clip");
    EXPECT_EQ(project.at("layers")[0].at("name"), "Layer1");
    ToolResult const pin = folder.run({"export", "p.json", "after_effects_corner_pin", "-o", "-"});
    EXPECT_EQ(pin.status, 0) << "no frame is missing";
    EXPECT_TRUE(pin.out.contains("\t1\t105.5\t55.5\n")) << pin.out.toStdString();
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
        {"1 2 3\n", {"--size", "640x480"}, 3, "t.txt: line 1: 3 values"},
        {"", {"--size", "640x480"}, 3, "t.txt: no usable row"},
        {"1 2 3\n", {"--size", "640x480", "--json"}, 3, "t.txt: line 1: 3 values"},
        {TABLE, {"--size", "640x480", "--order", "ul,ur,ll,lr"}, 3, "line 2: the corners of frame 10 cross"},
        {TABLE, {}, 2, "--size is required"},
        {TABLE, {"--size", "640"}, 2, "\"640\" isn't WIDTHxHEIGHT"},
        {TABLE, {"--size", "0x480"}, 2, "isn't WIDTHxHEIGHT"},
        {TABLE, {"--size", "640x480x2"}, 2, "isn't WIDTHxHEIGHT"},
        {TABLE, {"--size", "640x480", "--fps", "0"}, 2, "isn't a rate"},
        {TABLE, {"--size", "640x480", "--fps", "nan"}, 2, "isn't a rate"},
        {TABLE, {"--size", "640x480", "--fps", "23,976"}, 2, "isn't a rate"},
        {TABLE, {"--size", "640x480", "--order", "ul,ur,lr"}, 2, "isn't ul, ur, lr and ll"},
        {TABLE, {"--size", "640x480", "--order", "ul,ur,lr,lr"}, 2, "isn't ul, ur, lr and ll"},
        {TABLE, {"--size", "640x480", "--name", ""}, 2, "--name"},
        {TABLE, {"--size", "640x480", "--par", "0"}, 2, "\"0\" isn't a pixel aspect"},
        {TABLE, {"--size", "640x480", "--start", "1.5"}, 2, "\"1.5\" isn't a whole number"},
        {TABLE,
         {"--size", "640x480", "--start", "10000000"},
         3,
         "t.txt: from frame 10000000 on the last one is beyond"},
        {TABLE, {"--size", "640x480", "--name", "a\nb"}, 1, "holds the control character U+000A; names and paths"},
        {TABLE, {"--size", "640x480", "--gaps", "fill"}, 2, "\"fill\" isn't one of hold|interpolate"},
        {TABLE, {"--size", "640x480", "--fps", "30/1/1"}, 2, "isn't a rate"},
        {TABLE, {"--size", "640x480", "-o", "-"}, 2, ""},
    };
    for (auto const& [table, options, status, words] : cases)
    {
        folder.write("t.txt", table);
        expectRefused(QStringList{"corners", "t.txt", "-o", "p.json"} + options, status, words);
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
        folder.write("m/images.txt", "1 1 0 0 0 0 0 0 1 f14.png\n1 1 7\n2 1 0 0 0 1 2 3 1 f9.png\n\n"
                                     "3 1 0 0 0 1 2 3 1 f10.png\n\n4 1 0 0 0 1 2 3 1 f11.png\n");
        folder.write("m/points3D.txt", "7 0 0 1 0 0 0 0.5 1 0\n8 0 0 1 0 0 0 0.25\n9 0 0 1 0 0 0 9 1 0 2 0\n");
    }

    ToolResult import(QStringList const& options)
    {
        return folder.run(QStringList{"import", "colmap", "m/", "-o", "shot.json"} + options);
    }
};

constexpr char MISSING[] = "2 of 6 frames have no camera of their own, and it goes evenly from neighbour to neighbour "
                           "there: 12-13";
constexpr char OFF_CENTRE[] = "the principal point lies off the middle of the picture, by 4.00 pixels to the right and "
                              "-1.00 down; the camera of the scene looks through the middle, so move its picture by as "
                              "much";

TEST_F(ImportColmap, TellsWhatItFoundAndLeftOut)
{
    ToolResult const people = import({"--fps", "25"});
    EXPECT_EQ(people.status, 0);
    EXPECT_EQ(people.err,
              QByteArray("marlo-export: warning: ") + MISSING + "\nmarlo-export: warning: " + OFF_CENTRE + '\n');
    EXPECT_EQ(
        people.out,
        "shot.json\n"
        "model: m (text)\n"
        "images: 4 of 640x480, footage: sequence\n"
        "frames: 9 (f9.png) to 14 (f14.png), by the numbers in the names\n"
        "missing: 12-13\n"
        "points: 3, median error: 0.50 px, inaccurate: 2\n"
        "origin: 0, 0, 0 of the model, scale 1\n"
        "camera: focal length 28.13 mm on a film back of 36 mm, pixel aspect 1, principal point off the middle by "
        "4.00, -1.00 px (right, down)\n"
        "lens: radial1, tangential1\n"
        "left out: a camera without images, 1 2D points and their tracks, colours of the points\n");
    nlohmann::json const info = folder.run({"info", "shot.json", "--json"}).json();
    EXPECT_EQ(info.at("frameRate"), 25);
    EXPECT_EQ(info.at("clips")[0].at("name"), "shot");

    EXPECT_EQ(import({"--json"}).status, 1) << "the project exists";
    EXPECT_EQ(import({"--json", "--overwrite"}).json(),
              nlohmann::json(
                  {{"project", "shot.json"},
                   {"status", "written"},
                   {"model", "m"},
                   {"form", "text"},
                   {"images", 4},
                   {"firstFrame", 9},
                   {"lastFrame", 14},
                   {"firstImage", "f9.png"},
                   {"lastImage", "f14.png"},
                   {"frameNumbers", "names"},
                   {"missing", {{12, 13}}},
                   {"footage", "sequence"},
                   {"points", 3},
                   {"pointsLeftOut", 0},
                   {"inaccurate", 2},
                   {"medianError", 0.5},
                   {"origin", {0.0, 0.0, 0.0}},
                   {"scale", 1.0},
                   {"focalLength", {28.125, 28.125}},
                   {"pixelAspect", 1.0},
                   {"principalPoint", {4.0, -1.0}},
                   {"lens", {"radial1", "tangential1"}},
                   {"leftOut", {"a camera without images", "1 2D points and their tracks", "colours of the points"}},
                   {"warnings", {MISSING, OFF_CENTRE}},
                   {"reason", ""}}));
    EXPECT_TRUE(import({"--quiet", "--overwrite"}).out.isEmpty());
}

TEST_F(ImportColmap, FindsTheLargestModelOfAProject)
{
    QDir root(folder.path(""));
    struct
    {
        char const* place;

        /// Of images.bin; that in m has four images.
        char count;
        char const* model;
        int status;
    } const cases[] = {{"one/sparse/0", 0, "one/sparse/0", 0},
                       {"two/sparse/1", 3, "two/sparse/0", 0},
                       {"big/sparse/1", 5, "big/sparse/1", 3},
                       {"flat/sparse", 0, "flat/sparse", 0},
                       {"deep/0", 0, "deep/0", 0},
                       {"lost/images", 0, "lost", 3}};
    for (auto const& c : cases)
    {
        SCOPED_TRACE(c.place);
        QString const project = QString::fromUtf8(c.place).section('/', 0, 0);
        QString const text = c.count > 0 ? project + "/sparse/0" : QString::fromUtf8(c.place);
        root.mkpath(c.place);
        root.mkpath(text);
        for (QString const& file : project == "lost" ? QStringList() : QDir(root.filePath("m")).entryList(QDir::Files))
        {
            QFile::copy(root.filePath("m/" + file), root.filePath(text + '/' + file));
        }
        if (c.count > 0)
        {
            folder.write(QString::fromUtf8(c.place) + "/cameras.bin", QByteArray(8, '\0'));
            folder.write(QString::fromUtf8(c.place) + "/images.bin", QByteArray(1, c.count) + QByteArray(7, '\0'));
        }
        ToolResult const result = folder.run({"import", "colmap", project, "-o", "shot.json", "--overwrite", "--json"});
        ASSERT_EQ(result.status, c.status) << result.err.toStdString();
        EXPECT_EQ(result.err.contains("the largest of 2 models is read, two/sparse/0 with 4 images"), project == "two");
        if (c.status == 0)
        {
            EXPECT_EQ(result.json().at("model"), c.model);
            EXPECT_EQ(result.json().at("lastFrame"), 14);
        }
        else
        {
            EXPECT_TRUE(result.err.startsWith(QByteArray("marlo-export: ") + c.model)) << result.err.toStdString();
        }
    }
}

TEST_F(ImportColmap, RefusalsWriteNothing)
{
    struct
    {
        char const* model;
        QStringList options;
        int status;
        char const* words;
    } const cases[] = {
        {"none", {}, 3, "none: no COLMAP model; neither cameras.txt nor cameras.bin is in there"},
        {"binary", {}, 3, "binary/cameras.bin: byte 0: the file ends in the middle of the record"},
        {"m", {"--origin", "1,2"}, 2, "\"1,2\" isn't X,Y,Z"},
        {"m", {"--origin", "1,2,nan"}, 2, "\"1,2,nan\" isn't X,Y,Z"},
        {"m", {"--scale", "0"}, 2, "\"0\" isn't a factor from 1e-9 to 1e9"},
        {"m", {"--scale", "1e9", "--origin", "9,0,0"}, 3, "m: the scene would reach beyond 1e+09 units"},
        {"m", {"--min-track", "0"}, 2, "--min-track"},
        {"m", {"--max-error", "-1"}, 2, "\"-1\" isn't a number of pixels"},
        {"m", {"--fps", "30/0"}, 2, "\"30/0\" isn't a rate"},
        {"broken", {"--json"}, 3, "broken/cameras.txt: line 1: the camera model \"1\""},
        {"m", {"-o", "-"}, 2, "import: -o needs the path of a project file"},
        {"m", {"--fps", "0"}, 2, "isn't a rate"},
        {"m", {"--size", "1x1"}, 2, "--size"},
        {"", {}, 2, "DIR"},
    };
    for (char const* const name : {"binary", "broken"})
    {
        QDir(folder.path("")).mkdir(name);
    }
    folder.write("binary/cameras.bin", "\x01");
    folder.write("broken/cameras.txt", "1 1 1 1\n");
    for (auto const& [model, options, status, words] : cases)
    {
        QStringList const target = options.contains("-o") ? QStringList() : QStringList{"-o", "shot.json"};
        expectRefused(QStringList{"colmap", model} + target + options, status, words);
    }
}

}
