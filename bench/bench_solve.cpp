// Camera solves as 3D motion text, from a loaded project to the bytes of the file, against
// the digits of the numbers in that file: an object with 200 points that moves over 500
// frames, in world space, and 8,000 features at rest, whose documents are mostly words.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "AfterEffects/AE3DMotionExporter.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{

MarloHost::SolveModel solveOf(int frameCount)
{
    MarloHost::SolveModel solve;
    for (int frame = 0; frame < frameCount; ++frame)
    {
        double const t = frame * 0.01;
        solve.camera.pose.frames.push_back(frame);
        solve.camera.pose.positions.insert(solve.camera.pose.positions.end(), {std::sin(t), 1.5, 10 + t});
        solve.camera.pose.rotations.insert(solve.camera.pose.rotations.end(), {-5 + t, 30 * std::sin(t), t});
    }
    return solve;
}

MarloHost::PointCloudModel cloudOf(int points)
{
    MarloHost::PointCloudModel cloud;
    for (int i = 0; i < points; ++i)
    {
        cloud.positions.insert(cloud.positions.end(), {std::sin(i * 0.7), std::cos(i * 1.3), -0.001 * i});
    }
    return cloud;
}

boost::shared_ptr<KORV_ProjectManager> movingObject()
{
    constexpr int FRAMES = 500;
    ProjectBuilder builder(FRAMES);
    builder.addLayer(QStringLiteral("car"));
    builder.model.solve = solveOf(FRAMES);
    builder.layer().moving = true;
    builder.layer().pose = builder.model.solve->camera.pose;
    builder.layer().surfacePoints = cloudOf(200);
    return builder.make();
}

boost::shared_ptr<KORV_ProjectManager> manyFeatures()
{
    ProjectBuilder builder(50);
    builder.model.solve = solveOf(50);
    builder.model.solve->features.push_back({QStringLiteral("set"), QString(), false, false, cloudOf(8000)});
    return builder.make();
}

QByteArray exported(KORV_ProjectManager& project)
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = {Anm::View::defaultView()};
    return Export::AE3DMotionExporter(1.0F)
        .exportCameraSolve(project, QStringLiteral("solve.txt"), spec, KV::CameraSolveExporter::AllObjects)
        .files.first();
}

// Every number that stands behind a tab.
std::vector<double> numbersOf(QByteArray const& text)
{
    std::vector<double> numbers;
    for (QByteArray const& line : text.split('\n'))
    {
        for (QByteArray const& field : line.split('\t').mid(1))
        {
            bool isNumber = false;
            double const number = field.toDouble(&isNumber);
            if (isNumber)
            {
                numbers.push_back(number);
            }
        }
    }
    return numbers;
}

using MakeProject = boost::shared_ptr<KORV_ProjectManager> (*)();

void digitFloor(benchmark::State& state, MakeProject make)
{
    constexpr int LONGEST_NUMBER = 16;
    std::vector<double> const numbers = numbersOf(exported(*make()));
    for (auto _ : state)
    {
        Bench::DigitFloor out(static_cast<int>(numbers.size()) * LONGEST_NUMBER);
        for (double const number : numbers)
        {
            out.appendGeneral(number, '\t');
        }
        benchmark::DoNotOptimize(out.text());
    }
    state.counters["numbers"] = static_cast<double>(numbers.size());
}

void wholeExport(benchmark::State& state, MakeProject make)
{
    auto const project = make();
    for (auto _ : state)
    {
        QByteArray const text = exported(*project);
        benchmark::DoNotOptimize(text.constData());
    }
}

BENCHMARK_CAPTURE(digitFloor, movingObject, &movingObject)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(wholeExport, movingObject, &movingObject)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(digitFloor, manyFeatures, &manyFeatures)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(wholeExport, manyFeatures, &manyFeatures)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    return Bench::runBenchmarks(argc, argv,
                                {{"wholeExport/movingObject", "digitFloor/movingObject", "the digit floor"},
                                 {"wholeExport/manyFeatures", "digitFloor/manyFeatures", "the digit floor"}});
}
