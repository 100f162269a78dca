// USD stages: the text of a solve of usual size, and names that all have to be made unique.
//
// `bench_usd --stage FILE` writes the stage of the first benchmark to a file and prints the seconds that
// making it and saving it take, for usd_peer.py, which has OpenUSD save the same stage.

#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Host/BasicUSDGraph.h"
#include "Interchange/USDCameraSolveExporter.h"

#include <benchmark/benchmark.h>
#include <pxr/usd/usdGeom/camera.h>
#include <pxr/usd/usdGeom/mesh.h>
#include <pxr/usd/usdGeom/xform.h>
#include <pxr/usd/usdGeom/xformCommonAPI.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>

PXR_NAMESPACE_USING_DIRECTIVE

namespace
{

void move(UsdGeomXformCommonAPI const& placer, int frames)
{
    for (int frame = 0; frame < frames; ++frame)
    {
        double const t = 0.01 * frame;
        auto const angle = static_cast<float>(30.0 * std::sin(t));
        placer.SetTranslate(GfVec3d(std::sin(t), 1.5, 10.0 + t), frame);
        placer.SetRotate(GfVec3f(angle, -angle, 0.5F * angle), UsdGeomXformCommonAPI::RotationOrderXYZ, frame);
        placer.SetScale(GfVec3f(1.0F), frame);
    }
}

SdfPath child(KV::BasicUSDGraph const& graph, char const* name, int number)
{
    return graph.rootPath().AppendChild(TfToken(name + std::to_string(number)));
}

// A camera and 10 nodes of 1,000 frames, 1,000 nulls, a mesh of 100,000 vertices.
KV::BasicUSDGraph madeStage()
{
    constexpr int FRAMES = 1000;
    constexpr int NODES = 10;
    constexpr int NULLS = 1000;
    constexpr int COLUMNS = 400;
    constexpr int ROWS = 250;
    KV::BasicUSDGraph graph(QStringLiteral("MarloExport"));
    UsdStageRefPtr const& stage = graph.stagePtr();
    UsdAttribute const focal = UsdGeomCamera::Define(stage, child(graph, "camera", 0)).CreateFocalLengthAttr();
    for (int frame = 0; frame < FRAMES; ++frame)
    {
        focal.Set(35.0F + 0.01F * static_cast<float>(frame), frame);
    }
    move(UsdGeomXformCommonAPI(stage->GetPrimAtPath(child(graph, "camera", 0))), FRAMES);
    for (int i = 0; i < NODES; ++i)
    {
        move(UsdGeomXformCommonAPI(UsdGeomXform::Define(stage, child(graph, "node", i))), FRAMES);
    }
    for (int i = 0; i < NULLS; ++i)
    {
        UsdGeomXformCommonAPI const placer(UsdGeomXform::Define(stage, child(graph, "null", i)));
        placer.SetTranslate(GfVec3d(std::sin(0.7 * i), std::cos(1.3 * i), -0.001 * i));
    }
    VtVec3fArray points;
    VtIntArray counts;
    VtIntArray indices;
    for (int i = 0; i < COLUMNS * ROWS; ++i)
    {
        points.push_back(GfVec3f(0.01F * static_cast<float>(i % COLUMNS), std::sin(0.1F * static_cast<float>(i)),
                                 0.01F * static_cast<float>(i / COLUMNS)));
        if (i % COLUMNS + 1 < COLUMNS && i / COLUMNS + 1 < ROWS)
        {
            counts.push_back(4);
            for (int const corner : {i, i + 1, i + COLUMNS + 1, i + COLUMNS})
            {
                indices.push_back(corner);
            }
        }
    }
    UsdGeomMesh const mesh = UsdGeomMesh::Define(stage, child(graph, "mesh", 0));
    mesh.CreatePointsAttr(VtValue(points));
    mesh.CreateFaceVertexCountsAttr(VtValue(counts));
    mesh.CreateFaceVertexIndicesAttr(VtValue(indices));
    return graph;
}

void makeAndSave(benchmark::State& state)
{
    for (auto _ : state)
    {
        std::string const text = madeStage().toString();
        benchmark::DoNotOptimize(text.data());
    }
}

void save(benchmark::State& state)
{
    KV::BasicUSDGraph const graph = madeStage();
    for (auto _ : state)
    {
        std::string const text = graph.toString();
        benchmark::DoNotOptimize(text.data());
    }
}

void sameNames(benchmark::State& state, int count)
{
    ProjectBuilder builder(2);
    MarloHost::SolveModel solve;
    MarloHost::FeatureSetModel features;
    features.name = QStringLiteral("set");
    for (int i = 0; i < count; ++i)
    {
        features.points.positions.insert(features.points.positions.end(), {0.1 * i, 1.0, -2.0});
        features.points.names += QStringLiteral("Point");
    }
    solve.features.push_back(features);
    builder.model.solve = solve;
    auto const project = builder.make();
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = {Anm::View::defaultView()};
    for (auto _ : state)
    {
        Korvane::ExportedFiles const result = Export::USDCameraSolveExporter().exportCameraSolve(
            *project, QStringLiteral("out.usda"), spec, KV::CameraSolveExporter::AllObjects);
        benchmark::DoNotOptimize(result.files.first().constData());
    }
}

BENCHMARK(makeAndSave)->Unit(benchmark::kMillisecond);
BENCHMARK(save)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sameNames, 10000, 10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sameNames, 100000, 100000)->Unit(benchmark::kMillisecond);

int writeForPeer(char const* file)
{
    using Clock = std::chrono::steady_clock;
    auto const seconds = [](Clock::time_point from, Clock::time_point to)
    { return std::chrono::duration<double>(to - from).count(); };
    auto const start = Clock::now();
    KV::BasicUSDGraph const graph = madeStage();
    auto const made = Clock::now();
    std::string const text = graph.toString();
    std::ofstream(file, std::ios::binary) << text;
    auto const saved = Clock::now();
    std::printf("%.6f %.6f\n", seconds(start, made), seconds(made, saved));
    return 0;
}

}

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--stage") == 0)
    {
        return writeForPeer(argv[2]);
    }
    return Bench::runBenchmarks(argc, argv,
                                {{"sameNames/100000", "sameNames/10000", "the same with a tenth of the names"}});
}
