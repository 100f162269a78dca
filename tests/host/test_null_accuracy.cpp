// Inaccurate points that are named without a source.

#include "ProjectBuilder.h"

#include "Host/CameraSolveExporter.h"
#include "Host/CameraSolveHelper.h"

#include <gtest/gtest.h>

TEST(NullAccuracy, SpeaksOfWhatWasNamedWithoutASourceAndOfNothingElse)
{
    ProjectBuilder builder;
    builder.addLayer("A").layer().surfacePoints.emplace();
    builder.layer().surfacePoints->positions = {0, 0, 0, 1, 0, 0};
    builder.layer().surfacePoints->inaccurate = {1};
    builder.model.solve.emplace().features.resize(1);
    builder.model.solve->features[0].name = "left out";
    builder.model.solve->features[0].points.positions = {0, 0, 0};
    builder.model.solve->features[0].points.inaccurate = {0};
    auto const project = builder.make();
    KV::NullAccuracySource accuracy;
    Korvane::CameraSolve::ExporterHelper helper;
    auto const start = [&]
    {
        helper.initialise(*project, Anm::View::defaultView(), KV::Layers::All(), 2147483647, false, false, true,
                          nullptr);
        accuracy.processNulls(helper.layerIDsToExport(), project.get(), {});
    };
    start();
    helper.setCurrentLayer(project->sm()->findLayer(1, false), Anm::Context::invalid(), false);
    for (unsigned int const id : helper.pointIDsToExport(std::nullopt, false))
    {
        helper.pointName(id, nullptr);
    }
    EXPECT_EQ(accuracy.warnInaccurateNulls(),
              "The position of these points is too inaccurate to attach something to them: A: Point 2");
    start();
    EXPECT_EQ(accuracy.warnInaccurateNulls(), QString()) << "the points of the export before";
}
