// Nuke's corner pin, trackers and plain coordinate files.

#include "Host/KORV_Exception.h"
#include "Nuke/NukeAsciiExporter.h"
#include "Nuke/NukeCornerPinExporter.h"
#include "Nuke/NukeMeshExporter.h"
#include "Nuke/NukeTrackerExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Export;

namespace
{

using Files = QMap<QString, QByteArray>;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
                           std::vector<int> const& views = {0}, QString const& path = "out.nk")
{
    auto const project = builder.make();
    Korvane::TrackingExporter::Options options;
    options.views.clear();
    for (int const view : views)
    {
        options.views.emplace_back(view);
    }
    // In the first view, whichever are exported.
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    return exporter.exportTracking(*project, path, project->toolManager()->currentLayerID(), start, options);
}

QString text(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
             std::vector<int> const& views = {0})
{
    return run(exporter, builder, views).files.value("out.nk");
}

// Lines of a knob or of a track, between what stands around their curves.
QStringList between(QString const& document, QString const& before, QString const& after)
{
    QStringList found;
    for (QString const& line : document.split('\n'))
    {
        if (line.startsWith(before) && line.endsWith(after))
        {
            found.append(line.mid(before.size(), line.size() - before.size() - after.size()));
        }
    }
    return found;
}

QStringList knob(QString const& document, int corner)
{
    return between(document, QString(" to%1 {").arg(corner), "}");
}

/// 0 to 100 and 50 to 100, moved by (1.5, -0.25) in the second of two frames.
ProjectBuilder slider(QString const& name = "Poster")
{
    ProjectBuilder builder;
    builder.clip().frameOffset = 1001;
    builder.addLayer(name, {100, 50, 200, 50, 100, 100, 200, 100});
    builder.track([](int frame) { return ProjectBuilder::translation(1.5 * frame, -0.25 * frame); });
    return builder;
}

/// Left and right eye; the right one moves by 10 and -10.
ProjectBuilder stereo()
{
    ProjectBuilder builder = slider("A");
    builder.model.views = QStringList({"left", "right"});
    builder.layer().tracks.front().view = "left";
    builder.track([](int frame) { return ProjectBuilder::translation(10 * frame, -10 * frame); }, "right");
    return builder;
}

TEST(NukeCurves, KeysAreOrderedReplacedAndPrintedWithSixDigits)
{
    using Keys = std::vector<NukeCurve::Key>;
    struct
    {
        char const* name;
        Keys keys;
        char const* expected;
    } const cases[] = {
        {"", {}, "{curve  }"},
        {"", {{1, 100.5F}, {2, 101.25F}}, "{curve x1 100.5 x2 101.25}"},
        {" K", {{1, 0}}, "{curve K x1 0}"},
        {"", {{3, 3}, {1, 1}, {2, 2}, {1, 9}}, "{curve x1 9 x2 2 x3 3}"},
        // Told apart though they print alike.
        {"", {{0.5F, 1}, {1, 2}, {-1.25F, 3}}, "{curve x-1 3 x1 1 x1 2}"},
        // A tie goes away from zero; the nearest float to 1920.115 lies below it.
        {"",
         {{1, 1920.125F}, {2, 1920.115F}, {3, 1234567}, {4, -0.0F}},
         "{curve x1 1920.13 x2 1920.11 x3 1.23457e+06 x4 0}"},
    };
    for (auto const& one : cases)
    {
        NukeCurve curve{QString(one.name)};
        for (NukeCurve::Key const& key : one.keys)
        {
            curve.addKeyframe(key.frame, key.value);
        }
        EXPECT_EQ(QString(curve), one.expected);
        EXPECT_GE(curve.textLimit(), QString(one.expected).size()) << one.expected;
    }
}

TEST(NukeCornerPin, NodeOfTwoFrames)
{
    EXPECT_EQ(text(NukeCornerPinExporter(), slider()),
              "CornerPin2D {\n"
              " to1 {{curve x1001 100 x1002 101.5} {curve x1001 50 x1002 49.75}}\n"
              " to2 {{curve x1001 200 x1002 201.5} {curve x1001 50 x1002 49.75}}\n"
              " to3 {{curve x1001 200 x1002 201.5} {curve x1001 100 x1002 99.75}}\n"
              " to4 {{curve x1001 100 x1002 101.5} {curve x1001 100 x1002 99.75}}\n"
              " from1 {0 0}\n"
              " from2 {{width} 0}\n"
              " from3 {{width} {height}}\n"
              " from4 {0 {height}}\n"
              " name CornerPin2D_Poster\n"
              "}\n");
}

TEST(NukeCornerPin, FramesBeyondTheWholeNumbersOfAFloatFallTogether)
{
    ProjectBuilder builder = slider();
    builder.clip().frameOffset = 16777216;
    EXPECT_EQ(knob(text(NukeCornerPinExporter(), builder), 1),
              QStringList("{curve x16777216 101.5} {curve x16777216 49.75}"));
}

QString const TRACKS_HEAD = "{ { 5 1 20 enable e 1 } \n"
                            "{ 3 1 75 name name 1 } \n"
                            "{ 2 1 58 track_x track_x 1 } \n"
                            "{ 2 1 58 track_y track_y 1 } \n"
                            "{ 2 1 63 offset_x offset_x 1 } \n"
                            "{ 2 1 63 offset_y offset_y 1 } \n"
                            "} \n"
                            "{ \n";

TEST(NukeTracker, NodeOfTwoFrames)
{
    EXPECT_EQ(text(NukeTrackerExporter(), slider()),
              "Tracker4 {\ninputs 0\ntracks { { 1 6 4 } \n" + TRACKS_HEAD +
                  "{ {curve K x1 1} \"track 1\" {curve x1001 100 x1002 101.5} {curve x1001 50 x1002 49.75}"
                  " {curve K x1 0} {curve K x1 0} } \n"
                  "{ {curve K x1 1} \"track 2\" {curve x1001 200 x1002 201.5} {curve x1001 50 x1002 49.75}"
                  " {curve K x1 0} {curve K x1 0} } \n"
                  "{ {curve K x1 1} \"track 3\" {curve x1001 200 x1002 201.5} {curve x1001 100 x1002 99.75}"
                  " {curve K x1 0} {curve K x1 0} } \n"
                  "{ {curve K x1 1} \"track 4\" {curve x1001 100 x1002 101.5} {curve x1001 100 x1002 99.75}"
                  " {curve K x1 0} {curve K x1 0} } \n"
                  "} \n}\nname Tracker_Poster\n}\n");
}

TEST(NukeMesh, NodeWithATrackForEachVertexAndNoneWithoutAMesh)
{
    ProjectBuilder builder = slider();
    QString const empty =
        "Tracker4 {\ninputs 0\ntracks { { 1 6 0 } \n" + TRACKS_HEAD + "} \n}\nname Tracker_Poster\n}\n";
    EXPECT_EQ(text(NukeMeshExporter(), builder), empty);

    MarloHost::MeshModel mesh;
    mesh.vertexCount = 3;
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    mesh.tracks.push_back({QString(), {0, 1}, {480, 270, 960, 270, 480, 810, 481.5, 270, 961.5, 270, 481.5, 810.75}});
    builder.layer().mesh = mesh;
    QString const constant = " {curve K x1 0} {curve K x1 0} } \n";
    EXPECT_EQ(text(NukeMeshExporter(), builder),
              "Tracker4 {\ninputs 0\ntracks { { 1 6 3 } \n" + TRACKS_HEAD +
                  "{ {curve K x1 1} \"1\" {curve x1001 480 x1002 481.5} {curve x1001 270 x1002 270}" + constant +
                  "{ {curve K x1 1} \"2\" {curve x1001 960 x1002 961.5} {curve x1001 270 x1002 270}" + constant +
                  "{ {curve K x1 1} \"3\" {curve x1001 480 x1002 481.5} {curve x1001 810 x1002 810.75}" + constant +
                  "} \n}\nname Tracker_Poster\n}\n");

    builder.layer().mesh->tracks[0].positions[6 + 1] = NOT_A_NUMBER;
    Korvane::ExportedFiles const broken = run(NukeMeshExporter(), builder);
    EXPECT_EQ(broken.failedCount, 1);
    EXPECT_TRUE(broken.files.value("out.nk").contains("\"1\" {curve x1001 480} {curve x1001 270} ")) << "x goes with y";
    EXPECT_TRUE(broken.files.value("out.nk").contains("\"2\" {curve x1001 960 x1002 961.5}"));
}

TEST(NukeMesh, WhatNoMemoryCanHoldIsRefusedAtOnce)
{
    constexpr int FRAMES = 100'000;
    constexpr int VERTICES = 2'200; // ten bytes or more for each of the pairs of keys
    ProjectBuilder builder(FRAMES);
    builder.addLayer("A");
    MarloHost::MeshModel mesh;
    mesh.vertexCount = VERTICES;
    mesh.tracks.push_back({QString(), {0}, std::vector<double>(2 * VERTICES)});
    builder.layer().mesh = mesh;
    try
    {
        run(NukeMeshExporter(), builder);
        FAIL() << "was written";
    }
    catch (KORV_OperationFailed const& error)
    {
        EXPECT_TRUE(error.message().startsWith("The text needs more than the 2 GB that one file can hold."))
            << error.what();
    }
}

TEST(NukeNames, AreCopiedAsTheyStand)
{
    for (char const* name : {"A%1", "%5", "%2%3", "%L1", "%99", "100%", "a b", "Grüße 日本 \xF0\x9F\x8E\xAC"})
    {
        QString const layer = QString::fromUtf8(name);
        ProjectBuilder const builder = slider(layer);
        EXPECT_TRUE(text(NukeCornerPinExporter(), builder).endsWith("\n name CornerPin2D_" + layer + "\n}\n")) << name;
        EXPECT_TRUE(text(NukeTrackerExporter(), builder).endsWith("\nname Tracker_" + layer + "\n}\n")) << name;
        EXPECT_TRUE(text(NukeMeshExporter(), builder).endsWith("\nname Tracker_" + layer + "\n}\n")) << name;
    }
}

TEST(NukeNames, LongerThanAPieceOfTheTextKeepTheirPairsOfSurrogates)
{
    QString const pairs = QString::fromUtf8("\xF0\x9F\x8E\xAC").repeated(700'000);
    for (QString const& name : {pairs, "a" + pairs})
    {
        QByteArray const contents = run(NukeCornerPinExporter(), slider(name)).files.value("out.nk");
        EXPECT_TRUE(contents.startsWith("CornerPin2D {\n to1 {{curve x1001 100 "));
        EXPECT_TRUE(contents.endsWith("\n name CornerPin2D_" + name.toUtf8() + "\n}\n")) << name.size();
    }
}

TEST(NukeViews, FollowEachOtherInTheOrderOfTheOptionsEachWithItsOwnMotion)
{
    QString const document = text(NukeCornerPinExporter(), stereo(), {1, 0});
    EXPECT_EQ(knob(document, 1), QStringList({"{curve x1001 100 x1002 110} {curve x1001 50 x1002 40}",
                                              "{curve x1001 100 x1002 101.5} {curve x1001 50 x1002 49.75}"}));
    EXPECT_EQ(between(document, " name ", ""), QStringList({"CornerPin2D_A_right", "CornerPin2D_A_left"}));
    EXPECT_TRUE(document.contains("\n}\nCornerPin2D {\n"));

    // One view, though not the first, has no name in the node.
    EXPECT_EQ(between(text(NukeTrackerExporter(), stereo(), {1}), "name ", ""), QStringList("Tracker_A"));
    EXPECT_EQ(run(NukeTrackerExporter(), stereo(), {}).files, Files({{"out.nk", QByteArray()}}));
}

TEST(NukeViews, MissingFramesAreSaidOnceWithTheirViews)
{
    ProjectBuilder builder = stereo();
    auto const drop = [](MarloHost::TrackModel& track)
    {
        track.frames.resize(1);
        track.homographies.resize(9);
    };
    QString const message("out.nk: Frame 1002: no tracking data, frame 1001 stands in for it");
    drop(builder.layer().tracks[0]);
    EXPECT_EQ(run(NukeCornerPinExporter(), builder, {0, 1}).messages, QStringList(message + " (in view \"left\")"));
    drop(builder.layer().tracks[1]);
    QStringList const inBoth(message + " (in views \"right\", \"left\")");
    EXPECT_EQ(run(NukeCornerPinExporter(), builder, {1, 0}).messages, inBoth);
    EXPECT_EQ(run(NukeAsciiExporter(), builder, {1, 0}, "out.nk").messages, inBoth);

    NukeCornerPinExporter const exporter;
    run(exporter, builder);
    EXPECT_EQ(run(exporter, builder, {}).messages, QStringList()) << "of the export before";
}

TEST(NukeInterlaced, FieldsAreHalvesOfFramesAndMovementIsDoubled)
{
    ProjectBuilder builder(3);
    builder.clip().interlaced = true;
    builder.clip().frameOffset = 10;
    builder.addLayer("A", {100, 50, 200, 50, 100, 100, 200, 100});
    builder.track([](int frame) { return ProjectBuilder::translation(frame, -3 * frame); });
    // 10.5 and 11 print alike. y moves from its first value by twice the field lines.
    EXPECT_EQ(knob(text(NukeCornerPinExporter(), builder), 3),
              QStringList("{curve x10 200 x11 201 x11 202} {curve x10 100 x11 94 x11 88}"));
    EXPECT_EQ(run(NukeAsciiExporter(), builder, {0}, "out.txt").files.value("out_Tracker3.txt"), "200 100\n202 94\n")
        << "whole frames, in field lines";
}

TEST(NukeAscii, AFileForEachCornerAndViewWithNamesCutByLength)
{
    EXPECT_EQ(run(NukeAsciiExporter(), stereo(), {0}, "/a/b.txt").files,
              Files({{"/a/b_Tracker1.txt", "100 50\n101.5 49.75\n"},
                     {"/a/b_Tracker2.txt", "200 50\n201.5 49.75\n"},
                     {"/a/b_Tracker3.txt", "200 100\n201.5 99.75\n"},
                     {"/a/b_Tracker4.txt", "100 100\n101.5 99.75\n"}}));
    Files const both = run(NukeAsciiExporter(), stereo(), {1, 0}, "/a/b.text").files;
    EXPECT_EQ(both.keys(), QStringList({"/a/b._Trackerleft1.txt", "/a/b._Trackerleft2.txt", "/a/b._Trackerleft3.txt",
                                        "/a/b._Trackerleft4.txt", "/a/b._Trackerright1.txt", "/a/b._Trackerright2.txt",
                                        "/a/b._Trackerright3.txt", "/a/b._Trackerright4.txt"}));
    EXPECT_EQ(both["/a/b._Trackerright4.txt"], "100 100\n110 90\n");
    EXPECT_EQ(run(NukeAsciiExporter(), stereo(), {0}, "x").files.firstKey(), "_Tracker1.txt");
    EXPECT_EQ(run(NukeAsciiExporter(), stereo(), {}).files, Files());
}

TEST(NukeFailures, ALayerThatIsNotThere)
{
    ProjectBuilder const nothing;
    try
    {
        run(NukeAsciiExporter(), nothing);
        FAIL() << "was written";
    }
    catch (KORV_BadArgument const& error)
    {
        EXPECT_EQ(error.message(), "Invalid layer ID");
    }
    EXPECT_THROW(run(NukeCornerPinExporter(), nothing), KORV_BadArgument);
}

TEST(NukeFailures, ALayerWithoutTrackHasEmptyCurvesAndFiles)
{
    ProjectBuilder builder = slider();
    builder.layer().tracks.clear();
    Korvane::ExportedFiles const pin = run(NukeCornerPinExporter(), builder);
    EXPECT_EQ(knob(pin.files.value("out.nk"), 4), QStringList("{curve  } {curve  }"));
    EXPECT_EQ(pin.messages, QStringList("out.nk: Layer \"Poster\" has no tracking data"));
    Korvane::ExportedFiles const ascii = run(NukeAsciiExporter(), builder, {0}, "a.txt");
    EXPECT_EQ(ascii.files.size(), 4);
    EXPECT_EQ(ascii.files.value("a_Tracker1.txt"), "");
    EXPECT_EQ(ascii.messages, QStringList("a.txt: Layer \"Poster\" has no tracking data"));
}

TEST(NukeFailures, PointsThatAreNotFiniteLeaveTheirKeyOutOrHoldTheLineBefore)
{
    ProjectBuilder builder(4);
    builder.addLayer("A", {100, 50, 200, 50, 100, 100, 200, 100});
    for (int const bad : {2, 3})
    {
        builder.track([bad](int frame) { return ProjectBuilder::translation(frame == bad ? NOT_A_NUMBER : frame, 0); });
        Korvane::ExportedFiles const pin = run(NukeCornerPinExporter(), builder);
        EXPECT_EQ(pin.failedCount, 4);
        EXPECT_EQ(knob(pin.files.value("out.nk"), 1),
                  QStringList(bad == 2 ? "{curve x0 100 x1 101 x3 103} {curve x0 50 x1 50 x3 50}"
                                       : "{curve x0 100 x1 101 x2 102} {curve x0 50 x1 50 x2 50}"));
        Korvane::ExportedFiles const ascii = run(NukeAsciiExporter(), builder, {0}, "a.txt");
        EXPECT_EQ(ascii.failedCount, 4);
        EXPECT_EQ(ascii.files.value("a_Tracker1.txt"),
                  bad == 2 ? "100 50\n101 50\n101 50\n103 50\n" : "100 50\n101 50\n102 50\n102 50\n");
    }
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 0 ? NOT_A_NUMBER : frame, 0); });
    EXPECT_EQ(run(NukeAsciiExporter(), builder, {0}, "a.txt").files.value("a_Tracker1.txt"),
              "101 50\n101 50\n102 50\n103 50\n");
    builder.track([](int) { return ProjectBuilder::translation(NOT_A_NUMBER, 0); });
    EXPECT_EQ(run(NukeAsciiExporter(), builder, {0}, "a.txt").failedCount, 4 * 4);
    EXPECT_EQ(knob(text(NukeCornerPinExporter(), builder), 1), QStringList("{curve  } {curve  }"));
}

}
