// Tables of corners: what is read, what is refused with which words, and that the
// project made of one puts the surface where the table has it.

#include "ProjectBuilder.h"
#include "marlohost/CornerTable.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>

namespace
{

using MarloHost::CornerImport;
using MarloHost::CornerTable;
using Corners = Korvane::TrackingExporterTypes;

// Upper left, upper right, lower right, lower left, y down.
constexpr char A[] = "100 50 300 60 310 200 90 190";
constexpr char B[] = "110.5 55 305 61 320 210 95 1.9e2";

CornerTable read(QByteArray const& text)
{
    return MarloHost::readCornerTable(text, QStringLiteral("t.txt"));
}

std::vector<int> framesOf(CornerTable const& table)
{
    std::vector<int> frames;
    for (CornerTable::Row const& row : table.rows)
    {
        frames.push_back(row.frame);
    }
    return frames;
}

CornerImport importOf(int width = 1920, int height = 1080)
{
    CornerImport import;
    import.clipName = QStringLiteral("clip");
    import.width = width;
    import.height = height;
    return import;
}

TEST(CornerTable, ReadsTheWaysInWhichTablesAreWritten)
{
    QByteArray const a(A);
    QByteArray const b(B);
    QByteArray const nan("1 2 3 nan 5 6 7 8");
    struct Case
    {
        char const* what;
        QByteArray text;
        std::vector<int> frames;
        int first;
        int last;
    };
    Case const cases[] = {
        {"bare numbers count from 1", a + "\n" + b, {1, 2}, 1, 2},
        {"blanks, tabs, no last line end", "  7\t" + a + "\n8 " + b, {7, 8}, 7, 8},
        {"commas", QByteArray("7," + a + "\n8," + b).replace(' ', ','), {7, 8}, 7, 8},
        {"semicolons and blanks", QByteArray("7;" + a).replace(" ", " ; "), {7}, 7, 7},
        {"header, comment, empty lines, CRLF",
         "# made by hand\r\n\r\nf x1 y1\r\n3 " + a + " # good\r\n5 " + b,
         {3, 5},
         3,
         5},
        {"byte order mark", "\xEF\xBB\xBF" + a, {1}, 1, 1},
        {"old line ends", a + "\r" + b, {1, 2}, 1, 2},
        {"file names", "seq2/img_0012.png " + a + "\nseq2/img_0013.png " + b, {12, 13}, 12, 13},
        {"digits in extension and #", "take#2_0009.mp4 " + a + "\ntake#2_0010.mp4 " + b, {9, 10}, 9, 10},
        {"a name that ends in its number", "img.0012 " + a, {12}, 12, 12},
        {"whole numbers in exponent form", "1.0e+01 " + a, {10}, 10, 10},
        {"negative frames and a plus", "-1 " + a + "\n+2 " + b, {-1, 2}, -1, 2},
        {"rows of zeros at both ends", "1 0 0 0 0 0 0 0 0\n2 " + a + "\n3 0 0 0 0 0 0 0 0.0", {2}, 1, 3},
        {"NaN in any case", "1 " + a + "\n2 " + nan + "\n3 1 2 3 NaN -nan NAN 7 8\n4 " + b, {1, 4}, 1, 4},
        {"a first row without corners is no header", "nan nan nan nan nan nan nan nan\n" + a, {2}, 1, 2},
        {"rows of empty cells",
         QByteArray("1," + a + "\n2,,,,,,,,\n3,,,,,,,,\n4," + b).replace(' ', ','),
         {1, 4},
         1,
         4},
        {"empty cells alone", QByteArray(";;;;;;;\n" + a).replace(' ', ';'), {2}, 1, 2},
        {"empty cells between tabs", "1\t" + a + "\n2\t\t\t\t\t\t\t\t", {1}, 1, 2},
        {"quotes", "\"f\"\n\"3\" " + a, {3}, 3, 3},
        {"columns by name",
         "id,colour,File Name,UL x,UL y,UR x,UR y,LR x,LR y,LL x,LL y,note\n"
         "9, #f00,img_0012.png," +
             QByteArray(a).replace(' ', ',') + ",\"good, yes\"\n" + "8,,img_0013.png,,,,,,,,, # lost",
         {12},
         12,
         13},
        {"named between tabs",
         "note\ttop_left.x\ttop_left.y\ttrx\ttry\tbrx\tbry\tblx\tbly\n\t" + QByteArray(a).replace(' ', '\t') +
             "\nlost\t\t\t\t\t\t\t\t",
         {1},
         1,
         2},
        {"numbered corners, named in a comment", "# x1 y1 x2 y2 x3 y3 x4 y4 error frame\n" + a + " 0.5 7", {7}, 7, 7},
        {"an index without a name",
         ",Frame,x0,y0,x1,y1,x2,y2,x3,y3\n0,7," + QByteArray(a).replace(' ', ','),
         {7},
         7,
         7},
        {"times beside frames", "time frame ulx uly urx ury lrx lry llx lly\n0:01 7 " + a, {7}, 7, 7},
        {"frames without a heading", "ulx uly urx ury lrx lry llx lly\n7 " + a, {7}, 7, 7},
    };
    for (Case const& c : cases)
    {
        SCOPED_TRACE(c.what);
        CornerTable const table = read(c.text);
        EXPECT_EQ(framesOf(table), c.frames);
        EXPECT_EQ(table.firstFrame, c.first);
        EXPECT_EQ(table.lastFrame, c.last);
        // All tables have A in their first usable row.
        EXPECT_EQ(table.rows[0].corners, (std::array<double, 8>{100, 50, 300, 60, 310, 200, 90, 190}));
    }
    EXPECT_EQ(read(b).rows[0].corners[7], 190);
}

TEST(CornerTable, ListsMissingFramesAsRanges)
{
    QByteArray const a(A);
    CornerTable const table =
        read("1 0 0 0 0 0 0 0 0\n2 0 0 0 0 0 0 0 0\n3 " + a + "\n7 " + a + "\n8 nan 0 0 0 0 0 0 0\n");
    std::vector<std::pair<int, int>> const expected{{1, 2}, {4, 6}, {8, 8}};
    EXPECT_EQ(table.missingFrames(), expected);
    EXPECT_TRUE(read(a).missingFrames().empty());
}

TEST(CornerTable, RefusesWhatItWouldHaveToGuess)
{
    QByteArray const a(A);
    struct Case
    {
        QByteArray text;
        char const* words;
    };
    Case const cases[] = {
        {"", "t.txt: no usable row"},
        {"# nothing\nx y\n", "t.txt: no usable row"},
        {"nan nan nan nan nan nan nan nan", "t.txt: no usable row"},
        {a + "\n1 2 3", "t.txt: line 2: 3 values; expected eight numbers"},
        {a + " 1 2", "t.txt: line 1: 10 values"},
        {"x1 y1\nx2 y2\n" + a, "t.txt: line 2: 2 values"},
        {"1 " + a + "\n" + a, "t.txt: line 2: lacks a frame number, unlike line 1"},
        {a + "\n\n2 " + a, "t.txt: line 3: has a frame number, unlike line 1"},
        {"5 " + a + "\n5 " + a, "t.txt: line 2: frame 5 stands twice"},
        {"5 " + a + "\n3 " + a, "t.txt: line 2: frame 3 comes after frame 5"},
        {"1.5 " + a, "t.txt: line 1: \"1.5\" isn't a frame number"},
        {"nan " + a, "\"nan\" isn't a frame number"},
        {"plate.png " + a, "\"plate.png\" holds no frame number"},
        {"1e9 " + a, "\"1e9\" is beyond the frame numbers"},
        {"img_99999999999999999999.png " + a, "is beyond the frame numbers"},
        {"-9000000 " + a + "\n9000000 " + a, "line 2: more than 10000000 frames"},
        {"1,5;2;3,5;4;5;6;7;8", "t.txt: line 1: 10 values"},
        {"1 2 3 4 0x5 6 7 8", "\"0x5\" isn't a number"},
        {"1 2 3 4 inf 6 7 8", "\"inf\" isn't a number"},
        {"1 2 3 4 5px 6 7 8", "\"5px\" isn't a number"},
        {"1 2 3 4 1e999 6 7 8", "\"1e999\" isn't a number"},
        {"1 2 3 4 --5 6 7 8", "\"--5\" isn't a number"},
        {"1 2 3 4 " + QByteArray(5000, 'x') + "\x1b[2J 6 7 8", "\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\" isn't"},
        {"1,2,3,,5,6,7,8", "t.txt: line 1: an empty cell"},
        {"1,2,3,4,5,6,7,8,", "t.txt: line 1: an empty cell"},
        {"1e7 0 0 1 1 1 1 0", "\"1e7\" is too far away"},
        {"4 0 0 10 0 20 0 0 10", "t.txt: line 1: three of the corners of frame 4 lie on a line"},
        {a + "\n1 1 1 1 1 1 1 1", "t.txt: line 2: three of the corners of frame 2"},
        {"frame ulx uly urx ury lrx lry llx lly score\n1 " + a, "t.txt: line 2: 9 values; the header names 10"},
        {"f ulx uly ulx uly lrx lry llx lly z\n1 " + a + " 2", "t.txt: line 2: 10 values; expected eight"},
        {"00:00:01:05 " + a, "line 1: \"00:00:01:05\" is a time code"},
        {"1 " + a + "\n0:01.04 " + a, "line 2: \"0:01.04\" is a time code"},
        {"ulx uly urx ury lrx lry llx lly frame t\n" + a + " 1:01 2", "\"1:01\" is a time code"},
        {a + "\n0.1 0.1 0.9 0.1 1.2 0.9 0.1 0.9\n0.1 0.1 0.9 0.1 1.2 0.9 -1 0.9",
         "t.txt: line 2: the corners look normalised"},
        {"set cut_paste_input [stack 0]\nCornerPin2D {\n to1 {1 2}\n}", "t.txt: is a Nuke script; make a table"},
        {"#! /opt/Nuke12/Nuke -nx\nversion 12.2 v3\n", "t.txt: is a Nuke script"},
        {"Adobe After Effects 6.0 Keyframe Data\n\n", "t.txt: is keyframe text"},
        {"\n{ \"marloProject\": 1 }", "t.txt: is a project already"},
        {"{}", "t.txt: is JSON"},
        {"PK\x03\x04", "t.txt: is a spreadsheet or an archive"},
        {"\xFF\xFE"
         "1\0",
         "t.txt: line 1: the file is UTF-16"},
    };
    for (Case const& c : cases)
    {
        try
        {
            read(c.text);
            ADD_FAILURE() << "read: " << c.text.toStdString();
        }
        catch (KORV_BadFile const& error)
        {
            EXPECT_TRUE(error.message().contains(QString::fromUtf8(c.words)))
                << c.words << "\nis not in: " << error.what();
            EXPECT_FALSE(error.message().contains('\n'));
        }
    }
}

/// Where a homography takes a point.
TXI::Pos2 mapped(double const* h, double x, double y)
{
    double const w = h[6] * x + h[7] * y + h[8];
    return {(h[0] * x + h[1] * y + h[2]) / w, (h[3] * x + h[4] * y + h[5]) / w};
}

// For each axis direction and some orders: each corner of each frame is where the
// table has it, at the index that the surface gives it.
TEST(CornerTable, ProjectHasTheCornersOfTheTable)
{
    CornerTable const table =
        read("7 0 0 0 0 0 0 0 0\n8 " + QByteArray(A) + "\n9 nan 0 0 0 0 0 0 0\n11 " + B + "\n12 0 0 0 0 0 0 0 0");
    std::array<Corners::SurfaceCorner, 4> const orders[] = {
        {Corners::UpperLeft, Corners::UpperRight, Corners::LowerRight, Corners::LowerLeft},
        {Corners::LowerLeft, Corners::LowerRight, Corners::UpperRight, Corners::UpperLeft},
        {Corners::UpperRight, Corners::LowerRight, Corners::LowerLeft, Corners::UpperLeft}};
    for (bool const yUp : {false, true})
    {
        for (auto const& order : orders)
        {
            CornerImport import = importOf();
            import.yUp = yUp;
            import.order = order;
            MarloHost::ProjectModel const model = MarloHost::projectFromCorners(table, import);
            MarloHost::LayerModel const& layer = model.layers.at(0);
            ASSERT_EQ(layer.tracks.at(0).frames, (std::vector<int>{1, 4}));
            for (std::size_t row = 0; row < 2; ++row)
            {
                double const* h = &layer.tracks[0].homographies[row * 9];
                EXPECT_EQ(h[8], 1);
                for (std::size_t i = 0; i < 4; ++i)
                {
                    TXI::Pos2 const p = mapped(h, layer.corners[2 * order[i]], layer.corners[2 * order[i] + 1]);
                    double const y = table.rows[row].corners[2 * i + 1];
                    EXPECT_NEAR(p.x, table.rows[row].corners[2 * i], 1e-9);
                    EXPECT_NEAR(p.y, yUp ? y : 1080 - y, 1e-9);
                }
            }
        }
    }
}

TEST(CornerTable, ProjectShowsTheNumbersOfTheTableAndCanBeReadBack)
{
    CornerTable const table = read("7 0 0 0 0 0 0 0 0\n8 " + QByteArray(A) + "\n11 " + B + "\n12 0 0 0 0 0 0 0 0");
    CornerImport import = importOf();
    import.frameRate = 23.976;
    import.layerName = QStringLiteral("Wall \"%1\" ü");
    QByteArray const text = MarloHost::writeProject(MarloHost::projectFromCorners(table, import));
    MarloHost::ProjectModel const model = MarloHost::readProject(text, QStringLiteral("p.json"));
    EXPECT_EQ(MarloHost::writeProject(model), text);
    EXPECT_EQ(model.frameRate, 23.976);
    EXPECT_EQ(model.clips.at(0).frameCount, 6);
    EXPECT_EQ(model.clips.at(0).frameOffset, 7);
    MarloHost::LayerModel const& layer = model.layers.at(0);
    EXPECT_EQ(layer.name, import.layerName);
    EXPECT_EQ(model.currentLayer, layer.name);
    EXPECT_TRUE(layer.selected);
    // The layer is where its corners are; what is missing in between stays missing.
    EXPECT_EQ(layer.inPoint, 1);
    EXPECT_EQ(layer.outPoint, 4);
    EXPECT_EQ(layer.referenceFrame, 1);
    EXPECT_EQ(layer.tracks.at(0).frames, (std::vector<int>{1, 4}));
    std::vector<double> const& h = layer.tracks[0].homographies;
    EXPECT_EQ(std::vector<double>(h.begin(), h.begin() + 9), (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(CornerTable, HeadersAndOptionsPlaceCornersAndFrames)
{
    QByteArray const header = "frame brx bry tlx tly trx try blx bly\n";
    CornerTable table = read(header + "7 310 200 100 50 300 60 90 190\n11 320 210 110 60 310 70 100 200\n");
    CornerImport import = importOf(640, 480);
    EXPECT_EQ(MarloHost::cornerOrder(table, import)[0], Corners::LowerRight);
    import.pixelAspect = 2;
    import.pixelCentres = true;
    import.interpolateGaps = true;
    table.startAt(1001);
    for (bool const yUp : {false, true})
    {
        import.yUp = yUp;
        MarloHost::ProjectModel const model = MarloHost::projectFromCorners(table, import);
        MarloHost::LayerModel const& layer = model.layers.at(0);
        auto const up = [yUp](double y) { return yUp ? y + 0.5 : 480 - (y + 0.5); };
        EXPECT_EQ(layer.corners, (std::array<double, 8>{90.5, up(190), 310.5, up(200), 100.5, up(50), 300.5, up(60)}));
        EXPECT_EQ(model.clips.at(0).frameOffset, 1001);
        EXPECT_EQ(model.clips.at(0).pixelAspect, 2);
        ASSERT_EQ(layer.tracks.at(0).frames, (std::vector<int>{0, 1, 2, 3, 4}));
        for (std::size_t frame = 0; frame < 5; ++frame)
        {
            // Ten pixels right and down in four frames.
            TXI::Pos2 const p = mapped(&layer.tracks[0].homographies[9 * frame], 310.5, up(200));
            EXPECT_NEAR(p.x, 310.5 + 2.5 * static_cast<double>(frame), 1e-9);
            EXPECT_NEAR(p.y, up(200 + 2.5 * static_cast<double>(frame)), 1e-9);
        }
    }
    import.order = {Corners::UpperLeft, Corners::UpperRight, Corners::LowerRight, Corners::LowerLeft};
    EXPECT_EQ(MarloHost::cornerOrder(table, import)[0], Corners::UpperLeft) << "what the user says counts";
    EXPECT_THROW(table.startAt(9'999'998), KORV_BadFile);
    EXPECT_EQ(table.firstFrame, 1001);
}

TEST(CornerTable, GapsThatCantBeFilledAreRefused)
{
    QByteArray const a(A);
    CornerImport import = importOf();
    import.interpolateGaps = true;
    std::pair<QByteArray, char const*> const cases[] = {
        {"1 " + a + "\n3 300 190 100 200 90 50 310 60", "t.txt: line 2: the corners of frame 3 can't be reached"},
        {"1 " + a + "\n200000 " + a, "t.txt: line 2: the corners of frame 200000 come after more than 100000 frames"}};
    for (auto const& [text, words] : cases)
    {
        try
        {
            MarloHost::projectFromCorners(read(text), import);
            ADD_FAILURE() << words;
        }
        catch (KORV_BadFile const& error)
        {
            EXPECT_TRUE(error.message().startsWith(QString::fromUtf8(words))) << error.what();
        }
    }
}

TEST(CornerTable, TellsHowTheCornersLie)
{
    // One row each: as it should be, seen from behind, crossing over, caving in.
    CornerTable const table = read("0 0 9 0 9 9 0 9\n"
                                   "9 0 0 0 0 9 9 9\n"
                                   "0 0 9 0 0 9 9 9\n"
                                   "0 0 9 0 3 4 0 9\n");
    CornerImport import = importOf();
    MarloHost::CornerOrientations const down = MarloHost::cornerOrientations(table, import);
    EXPECT_EQ(down.clockwise, 1);
    EXPECT_EQ(down.counterClockwise, 1);
    EXPECT_EQ(down.notConvex, 2);
    import.order = {Corners::UpperLeft, Corners::UpperRight, Corners::LowerLeft, Corners::LowerRight};
    EXPECT_EQ(MarloHost::cornerOrientations(table, import).clockwise, 1) << "the crossing one is right in this order";
    import.yUp = true;
    EXPECT_EQ(MarloHost::cornerOrientations(table, import).counterClockwise, 1);
}

// A picture of the first frame's rectangle can't be that far off.
TEST(CornerTable, RefusesSingularMotionWithTheLineOfTheTable)
{
    CornerTable const table = read("1 0 0 900000 0 900000 900000 0 900000\n2 0 0 0.001 0 0.001 0.001 0 0.001");
    try
    {
        MarloHost::projectFromCorners(table, importOf());
        ADD_FAILURE();
    }
    catch (KORV_BadFile const& error)
    {
        EXPECT_TRUE(error.message().startsWith(QStringLiteral("t.txt: line 2: "))) << error.what();
    }
}

TEST(CornerTable, RefusesFilesThatCantBeRead)
{
    for (char const* path : {"/nonexistent/table.txt", "/"})
    {
        EXPECT_THROW(MarloHost::readCornerTableFile(QString::fromUtf8(path)), KORV_BadFile) << path;
    }
}

}
