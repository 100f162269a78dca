// Matchmove projects: what is written is read as it was, what isn't one is refused in a line.

#include "kestrelia/ProjectFile.h"
#include "text/Names.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

using namespace KestreliaLib;

namespace
{

/// A little of everything, with numbers that need all their digits.
Scene fullScene()
{
    Pose pose;
    pose.axes = {0.1, 1.0 / 3, -0.0, 1e-308, 1e300, 5e-324, -1.5, 2, 123456789.123456789};
    pose.position = {-1e21, 1e6 + 0.06, std::nextafter(1.0, 2.0)};

    Scene scene;
    scene.name = "Gr\xC3\xBC\xC3\x9F"
                 "e \"1\" \\ # \n\t\x7F \xE2\x80\xA8 end";
    scene.pose = pose;
    scene.referenceFrame = -3;
    scene.objects.push_back({7, "Car", {}});
    scene.objects.back().poses.add(-1, Pose());
    scene.objects.back().poses.add(2, pose);
    scene.objects.push_back({2, "Still", Samples<Pose>::atRest(pose)});

    Shot shot;
    shot.number = 3;
    shot.firstFrame = -1000000000;
    shot.lastFrame = 1000000000;
    shot.frameRate = 30000.0 / 1001;
    shot.isInterlaced = true;
    shot.width = 1000000;
    shot.height = 1;
    shot.pixelAspect = 1.0 / 3;
    shot.screenDistance = 0.25;
    shot.camera.emplace();
    shot.camera->filmBack = {36, 20.25};
    shot.camera->poses.add(1, pose);
    shot.camera->lens.add(1, {35, -0.5});
    shot.groups = {{5, "Marlo Features 1"}, {1, ""}};
    shot.trackers.push_back({9, "a", 5, 7, {}, Samples<Vector3>::atRest({1, 2, 3})});
    shot.trackers.push_back({2, "", 0, 0, {}, {}});
    shot.trackers.back().image.add(4, {0.5, -0.5});
    shot.trackers.back().image.add(6, {1e-7, 1080});
    scene.shots = {shot};
    scene.shots.push_back(Shot());
    scene.shots.back().number = 1;
    scene.shots.back().width = scene.shots.back().height = 1;

    Mesh mesh;
    mesh.id = 1;
    mesh.object = 2;
    mesh.pose = pose;
    mesh.vertices.add(0, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}});
    mesh.vertices.add(5, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 2}});
    mesh.faceCounts = {3, 4};
    mesh.faceIndices = {0, 1, 2, 3, 2, 1, 0};
    mesh.uvs = {{0, 0}, {1, 0.1}};
    mesh.uvIndices = {0, 1, 0, 1, 0, 1, 0};
    scene.meshes = {mesh, mesh};
    scene.meshes.back().id = 4;
    scene.meshes.back().uvs.resize(4);
    scene.meshes.back().uvIndices.clear();
    return scene;
}

TEST(KestreliaFile, IsReadAsItWasWritten)
{
    Scene const scene = fullScene();
    QByteArray const text = writeProject(scene);
    Scene const again = readProject(text, "a.kst");
    EXPECT_TRUE(again == scene);
    EXPECT_TRUE(std::signbit(again.pose->axes[2]));
    EXPECT_EQ(writeProject(again).toStdString(), text.toStdString());

    QByteArray other = "\xEF\xBB\xBF\n # comment\n" + text;
    other.replace("\n", " \t\r\n\r\n").replace("  v", "\tv");
    EXPECT_TRUE(readProject(other, "a.kst") == scene);
}

struct FileRefusal
{
    char const* replace;
    char const* by;
    char const* said;
};

constexpr char GOOD_FILE[] = R"(kestrelia 1
name "s"
object 1 "o"
  pose 1 1 0 0 0 1 0 0 0 1 0 0 0
  pose 2 1 0 0 0 1 0 0 0 1 0 0 7
end
shot 1 "p"
  size 4 3
  pixel_aspect 1
  frame_rate 24
  frames 1 2
  interlaced no
  screen_distance 1
  camera "c"
    film_back 36 24
    lens - 35 0.5
  end
  group 1 "g"
  tracker 1 "t"
    group 1
    object 1
    position - 1 2 9
  end
end
mesh 1 "m"
  row -
  v 0 0 0
  v 1 0 0
  v 2 2 2
  face 0 1 2
  uv 0 0
  uv 1 0
  uv 0 1
  face_uv 0 1 2
end
)";

TEST(KestreliaFile, WhatIsNotAProjectIsRefusedWithItsLine)
{
    ASSERT_NO_THROW(readProject(GOOD_FILE, "good"));
    FileRefusal const refusals[] = {
        {GOOD_FILE, "", "line 1: the file doesn't start"},
        {"kestrelia 1", "kestrelia 2", "line 1: \"2\" isn't an integer from 1 to 1"},
        {"kestrelia 1", "{}", "line 1: the file doesn't start"},
        {"kestrelia 1", "kestrelia 1 2", "line 1: unexpected \"2\""},
        {"name \"s\"", "name s", "line 2: a name in double quotes is missing"},
        {"name \"s\"", "name \"s", "line 2: the closing quote"},
        {"name \"s\"", "name \"s\"x", "line 2: a blank is missing"},
        {"name \"s\"", "name \"\\s\"", "line 2: a backslash"},
        {"name \"s\"", "name \"\\x20\"", "line 2: a backslash"},
        {"name \"s\"", "name \"a\tb\"", "line 2: a control character"},
        {"name \"s\"", "name \"\xFF\"", "line 2: a name isn't UTF-8"},
        {"name \"s\"", "name \"s\"\nname \"s\"", "line 3: this line stands twice"},
        {"name \"s\"", "colour 1", "line 2: unexpected \"colour\""},
        {"object 1", "object 0", "line 3: \"0\" isn't an integer from 1 to 2147483647"},
        {"object 1", "object 2147483648", "line 3: \"2147483648\" isn't an integer"},
        {"object 1 \"o\"", "object 1 \"o\"\nend", "line 4: an object has no pose"},
        {"pose 2", "pose 1", "line 5: the frames don't ascend"},
        {"pose 2", "pose -", "line 5: what is at rest has one line"},
        {"pose 2", "pose 1000000001", "line 5: \"1000000001\" isn't an integer"},
        {"0 0 7", "0 0 nan", "line 5: \"nan\" isn't a finite number"},
        {"0 0 7", "0 0 1e999", "line 5: \"1e999\" isn't a finite number"},
        {"0 0 7", "0 0 0x1", "line 5: \"0x1\" isn't a finite number"},
        {"0 0 7", "0 0", "line 5: a value is missing"},
        {"0 0 7", "0 0 7 7", "line 5: unexpected \"7\""},
        {"size 4 3", "size 4 0", "line 8: \"0\" isn't an integer from 1 to 1000000"},
        {"pixel_aspect 1\n", "\n", "line 24: a record ends without its line \"pixel_aspect\""},
        {"frame_rate 24", "frame_rate 0", "line 24: pixel aspect, frame rate and screen distance are above 0"},
        {"frames 1 2", "frames 2 1", "line 24: the last frame of a shot isn't before its first"},
        {"interlaced no", "interlaced 0", "line 12: \"yes\" or \"no\" is missing"},
        {"film_back 36 24", "film_back 36 -24", "line 17: the sides of a film back are above 0"},
        {"film_back 36 24", "end\ncamera \"d\"", "line 15: a record ends without its line \"film_back\""},
        {"    group 1", "    group 2", "line 20: there is no such group above in this shot"},
        {"    object 1", "    object 2", "line 21: there is no such object above"},
        {"group 1 \"g\"", "group 1 \"g\"\ngroup 1 \"h\"", "line 19: the id 1 is taken"},
        {"face 0 1 2", "face 0 1", "line 30: a face has three vertices or more"},
        {"face 0 1 2", "face 0 1 3", "line 35: a face names a vertex that isn't there"},
        {"face 0 1 2", "face 0 1 -1", "line 30: \"-1\" isn't an integer from 0"},
        {"face_uv 0 1 2", "face_uv 0 1 3", "line 35: a face names a \"uv\" that isn't there"},
        {"face_uv 0 1 2", "face_uv 0 1 2 2", "line 34: a \"face_uv\" has as many indices as its face"},
        {"uv 0 1\n  face_uv 0 1 2", "", "line 34: a mesh without \"face_uv\""},
        {"uv 0 0", "v 0 0 0", "line 31: the lines of a mesh stand in another order"},
        {"face_uv 0 1 2\nend", "", "line 34: the file ends within a record"},
        {"row -", "", "line 27: unexpected \"v\""},
        {"row -", "row 1\nv 0 0 0\nrow 2", "line 37: all rows of a mesh have as many vertices"},
        {"mesh 1 \"m\"", "name \"m\"", "line 25: unexpected \"name\""},
    };
    for (FileRefusal const& refusal : refusals)
    {
        SCOPED_TRACE(refusal.said);
        QByteArray text = GOOD_FILE;
        ASSERT_GE(text.indexOf(refusal.replace), 0);
        text.replace(text.indexOf(refusal.replace), static_cast<int>(qstrlen(refusal.replace)), refusal.by);
        try
        {
            readProject(text, "a%1.kst");
            ADD_FAILURE() << "was accepted";
        }
        catch (FileError const& error)
        {
            EXPECT_TRUE(error.text().startsWith(QStringLiteral("a%1.kst: ") + refusal.said)) << error.what();
            EXPECT_FALSE(error.text().contains('\n')) << error.what();
        }
    }
}

TEST(KestreliaFile, AnUnreadableSceneIsNotWritten)
{
    struct
    {
        void (*spoil)(Scene& scene);
        char const* said;
    } const cases[] = {
        {[](Scene& s) { s.pose->axes[4] = std::nan(""); }, "isn't finite"},
        {[](Scene& s) { s.shots[0].trackers[1].image.values[1].y = INFINITY; }, "isn't finite"},
        {[](Scene& s) { s.shots[0].trackers[0].object = 8; }, "isn't there"},
        {[](Scene& s) { s.shots[1].trackers = {s.shots[0].trackers[1]}; }, "one id"},
        {[](Scene& s) { s.objects[0].poses.frames[0] = 2; }, "ascend"},
        {[](Scene& s) { s.objects[0].poses.frames.pop_back(); }, "no time"},
        {[](Scene& s) { s.meshes[0].faceIndices[0] = 4; }, "isn't there"},
    };
    for (auto const& [spoil, said] : cases)
    {
        Scene scene = fullScene();
        spoil(scene);
        try
        {
            writeProject(scene);
            ADD_FAILURE() << said;
        }
        catch (FileError const& error)
        {
            EXPECT_NE(std::string(error.what()).find(said), std::string::npos) << error.what();
        }
    }
}

TEST(KestreliaScene, LookupsGiveNamesOrWhatIsUnknown)
{
    Scene scene = fullScene();
    EXPECT_STREQ(scene.objectName(2), "Still");
    EXPECT_STREQ(scene.objectName(1), "Unknown object");
    EXPECT_STREQ(scene.meshName(3), "Unknown mesh");
    EXPECT_STREQ(scene.trackerName(9), "a");
    EXPECT_STREQ(scene.trackerName(1), "Unknown Tracker");
    EXPECT_STREQ(scene.trackerNameAt(scene.shots[0], 0), "a");
    EXPECT_STREQ(scene.trackerNameAt(scene.shots[0], 2), "Unknown tracker index");
    // Cut to the buffer, between two characters.
    scene.objects[0].name = std::string(254, 'x') + "\xC3\xBC";
    EXPECT_EQ(scene.objectName(7), std::string(254, 'x'));
    EXPECT_EQ(scene.freeObjectId(), 8U);
    EXPECT_EQ(scene.freeTrackerId(), 10U);
    EXPECT_EQ(scene.freeMeshId(), 5U);
}

TEST(KestreliaScene, APointMovesWithItsObject)
{
    Scene scene;
    Pose turned; // a quarter turn about z, twice as large
    turned.axes = {0, 2, 0, -2, 0, 0, 0, 0, 2};
    turned.position = {10, 0, 1};
    scene.objects.push_back({1, "o", {}});
    scene.objects[0].poses.add(3, Pose());
    scene.objects[0].poses.add(5, turned);
    Tracker const tracker{1, "t", 0, 1, {}, Samples<Vector3>::atRest({1, 2, 3})};
    EXPECT_TRUE(scene.isMoving(tracker));
    EXPECT_TRUE(scene.worldPosition(tracker, 0) == (Vector3{1, 2, 3}));
    EXPECT_TRUE(scene.worldPosition(tracker, 4) == (Vector3{1, 2, 3}));
    EXPECT_TRUE(scene.worldPosition(tracker, 9) == (Vector3{6, 2, 7}));
}

TEST(UniqueNames, AreMadeInOneWayAndInLinearTime)
{
    Text::UniqueNames names;
    QStringList made;
    for (char const* name : {"a", "a_0001", "a", "b", "b", "a", ""})
    {
        made += names.take(name);
    }
    EXPECT_EQ(made, QStringList({"a", "a_0001", "a_0002", "b", "b_0003", "a_0004", ""}));
    EXPECT_EQ(names.clashes(), QStringList({"a", "b"}));

    // A list that is walked takes minutes.
    constexpr int COUNT = 100000;
    Text::UniqueNames equal;
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < COUNT; ++i)
    {
        equal.take(QStringLiteral("Point"));
    }
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 1.0);
    EXPECT_EQ(equal.renamedCount(), COUNT - 1);
}

}
