// `import corners`, from the table to corners in an exported file.

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
    struct
    {
        QByteArray table;
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
        {TABLE, {"--size", "640x480", "-o", "-"}, 2, ""},
    };
    for (auto const& c : cases)
    {
        ToolResult const result = import(c.table, c.options);
        SCOPED_TRACE(result.err.toStdString());
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.err.contains(c.words));
        EXPECT_EQ(result.err.count('\n'), 1);
        EXPECT_EQ(folder.files(), QStringList("t.txt"));
        if (c.options.contains("--json"))
        {
            EXPECT_EQ(result.json().at("status"), "failed");
        }
    }
    EXPECT_EQ(folder.run({"import", "corners", "none.txt", "-o", "p.json", "--size", "1x1"}).status, 3);
    EXPECT_EQ(folder.run({"import", "pictures"}).err,
              "marlo-export: there is no command \"pictures\"; there are corners\n");
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

}
