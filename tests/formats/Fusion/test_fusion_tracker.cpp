// Edge cases of Fusion compositions.

#include "Fusion/FusionCompExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(FusionTracker, LeavesOutPointsWithTheirKeysAndStandsWithoutAny)
{
    ProjectBuilder builder(3);
    builder.clip().frameOffset = 10;
    builder.addLayer("A", {192, 108, 384, 108, 192, 216, 384, 216});
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 1 ? std::nan("") : 9.6 * frame, 0); });
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    auto const result = Export::KORV_FusionCompExporter().exportTracking(*builder.make(), "a", 1, start, {});
    EXPECT_EQ(result.failedCount, 4);
    QByteArray const text = result.files.value("a");
    EXPECT_TRUE(text.contains("\t\t\t\t[10] = { 0, Flags = { Linear = true, LockedY = true, }, },\n"
                              "\t\t\t\t[12] = { 1, Flags = { Linear = true, LockedY = true, }, },\n\t\t\t},\n"));
    EXPECT_EQ(text.count("LockY"), 8);

    builder.layer().tracks.clear();
    auto const untracked = Export::KORV_FusionCompExporter().exportTracking(*builder.make(), "a", 1, start, {});
    EXPECT_TRUE(untracked.files.value("a").contains("PatternTime = -1,\n\t\t\t\t\tPatternX = 0.5,\n"));
    EXPECT_EQ(untracked.files.value("a").count("LockY"), 0);
    EXPECT_EQ(untracked.messages, QStringList("a: Layer \"A\" has no tracking data"));
}
