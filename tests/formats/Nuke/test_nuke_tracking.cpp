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

TEST(NukeCornerPin, FramesBeyondTheWholeNumbersOfAFloatFallTogether)
{
    ProjectBuilder builder = slider();
    builder.clip().frameOffset = 16777216;
    EXPECT_EQ(knob(text(NukeCornerPinExporter(), builder), 1),
              QStringList("{curve x16777216 101.5} {curve x16777216 49.75}"));
}

// A track for each of three vertices, keyed at host frames 0 and 1.
ProjectBuilder mesh()
{
    ProjectBuilder builder = slider();
    MarloHost::MeshModel mesh;
    mesh.vertexCount = 3;
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    mesh.tracks.push_back({QString(), {0, 1}, {480, 270, 960, 270, 480, 810, 481.5, 270, 961.5, 270, 481.5, 810.75}});
    builder.layer().mesh = mesh;
    return builder;
}

TEST(NukeMesh, HasATrackForEachVertexAndNoneWithoutAMesh)
{
    EXPECT_TRUE(text(NukeMeshExporter(), slider()).startsWith("Tracker4 {\ninputs 0\ntracks { { 1 6 0 } \n"));
    ProjectBuilder builder = mesh();
    builder.layer().mesh->tracks[0].positions[6 + 1] = NOT_A_NUMBER;
    Korvane::ExportedFiles const broken = run(NukeMeshExporter(), builder);
    EXPECT_EQ(broken.failedCount, 1);
    EXPECT_TRUE(broken.files.value("out.nk").contains("\"1\" {curve x1001 480} {curve x1001 270} ")) << "x goes with y";
    EXPECT_TRUE(broken.files.value("out.nk").contains("\"2\" {curve x1001 960 x1002 961.5}"));
}

// A key for each half frame, printed as a whole number, with the position of the host frame that is called so.
TEST(NukeMesh, MovesAtHalfItsSpeedInFields)
{
    ProjectBuilder builder = mesh();
    builder.clip().interlaced = true;
    builder.clip().frameCount = 4;
    builder.layer().tracks.clear();
    builder.track([](int) { return ProjectBuilder::identity(); });
    EXPECT_TRUE(text(NukeMeshExporter(), builder)
                    .contains("\"3\" {curve x1001 480 x1002 480 x1002 481.5 x1003 481.5} "
                              "{curve x1001 810 x1002 810 x1002 810.75 x1003 810.75}"));
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
    QString const pairs = QString::fromUtf8("\xF0\x9F\x8E\xAC").repeated(700'000);
    for (QString const& name : {QString("A%1"), QString("%5 %2%3 %L1 %99"), QString("100%"), QString("a b"),
                                QString::fromUtf8("Grüße 日本 \xF0\x9F\x8E\xAC"), pairs, "a" + pairs})
    {
        ProjectBuilder const builder = slider(name);
        QString const shown = name.left(20);
        EXPECT_TRUE(text(NukeCornerPinExporter(), builder).endsWith("\n name CornerPin2D_" + name + "\n}\n"))
            << shown.toStdString();
        EXPECT_TRUE(text(NukeTrackerExporter(), builder).endsWith("\nname Tracker_" + name + "\n}\n"))
            << shown.toStdString();
        EXPECT_TRUE(text(NukeMeshExporter(), builder).endsWith("\nname Tracker_" + name + "\n}\n"))
            << shown.toStdString();
    }
}

TEST(NukeViews, FollowEachOtherInTheOrderOfTheOptions)
{
    QString const document = text(NukeCornerPinExporter(), stereo(), {1, 0});
    EXPECT_EQ(between(document, " name ", ""), QStringList({"CornerPin2D_A_right", "CornerPin2D_A_left"}));
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

TEST(NukeAscii, NamesOfFilesAreCutByLength)
{
    Files const both = run(NukeAsciiExporter(), stereo(), {1, 0}, "/a/b.text").files;
    EXPECT_EQ(both.size(), 8);
    EXPECT_EQ(both["/a/b._Trackerleft4.txt"], "100 100\n101.5 99.75\n");
    EXPECT_EQ(both["/a/b._Trackerright4.txt"], "100 100\n110 90\n");
    EXPECT_EQ(run(NukeAsciiExporter(), stereo(), {0}, "x").files.firstKey(), "_Tracker1.txt");
    EXPECT_EQ(run(NukeAsciiExporter(), stereo(), {}).files, Files());
}

TEST(NukeFailures, ALayerThatIsNotThere)
{
    EXPECT_THROW(run(NukeAsciiExporter(), ProjectBuilder()), KORV_BadArgument);
    EXPECT_THROW(run(NukeCornerPinExporter(), ProjectBuilder()), KORV_BadArgument);
}

TEST(NukeFailures, ALayerWithoutTrackHasEmptyCurvesAndFiles)
{
    ProjectBuilder builder = slider();
    builder.layer().tracks.clear();
    EXPECT_EQ(knob(text(NukeCornerPinExporter(), builder), 4), QStringList("{curve  } {curve  }"));
    EXPECT_EQ(run(NukeAsciiExporter(), builder, {0}, "a.txt").files.values(), QList<QByteArray>({"", "", "", ""}));
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
