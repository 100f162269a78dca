// The tracker node of a mesh of 2,500 vertices over 500 frames: its text alone, and the
// whole export of a project, against the digits of the same numbers; and how much memory
// the export takes on top of the project.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Host/KORV_ProjectManager.h"
#include "Nuke/NukeMeshExporter.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <fstream>

namespace
{

constexpr int frameCount = 500;
constexpr int firstFrame = 1001;
constexpr int columns = 50;
constexpr int vertexCount = columns * columns;
constexpr int longestNumbers = 32;

double x(int vertex, int frame)
{
    return 400 + 20 * (vertex % columns) + 30 * std::sin(frame * 0.011 + vertex * 0.003);
}

double y(int vertex, int frame)
{
    return 40 + 20 * (vertex / columns) + 20 * std::cos(frame * 0.013 + vertex * 0.005);
}

boost::shared_ptr<KORV_ProjectManager> makeShot()
{
    ProjectBuilder builder(frameCount);
    builder.clip().frameOffset = firstFrame;
    builder.addLayer(QStringLiteral("cloth"));
    MarloHost::MeshModel mesh;
    mesh.vertexCount = vertexCount;
    MarloHost::MeshTrackModel track;
    for (int frame = 0; frame < frameCount; ++frame)
    {
        track.frames.push_back(frame);
        for (int vertex = 0; vertex < vertexCount; ++vertex)
        {
            track.positions.push_back(x(vertex, frame));
            track.positions.push_back(y(vertex, frame));
        }
    }
    mesh.tracks.push_back(track);
    for (int row = 0; row + 1 < columns; ++row)
    {
        for (int column = 0; column + 1 < columns; ++column)
        {
            int const corner = row * columns + column;
            mesh.faceCounts.push_back(4);
            mesh.faceIndices.insert(mesh.faceIndices.end(),
                                    {corner, corner + 1, corner + columns + 1, corner + columns});
        }
    }
    builder.layer().mesh = mesh;
    return builder.make();
}

QVector<Export::NukePointCurve> const& curves()
{
    static QVector<Export::NukePointCurve> const points = []
    {
        QVector<Export::NukePointCurve> result(vertexCount);
        for (int vertex = 0; vertex < vertexCount; ++vertex)
        {
            for (int frame = 0; frame < frameCount; ++frame)
            {
                auto const key = static_cast<float>(firstFrame + frame);
                result[vertex].first.addKeyframe(key, static_cast<float>(x(vertex, frame)));
                result[vertex].second.addKeyframe(key, static_cast<float>(y(vertex, frame)));
            }
        }
        return result;
    }();
    return points;
}

void digitFloor(benchmark::State& state)
{
    QVector<Export::NukePointCurve> const& points = curves();
    for (auto _ : state)
    {
        Bench::DigitFloor out(2 * vertexCount * frameCount * longestNumbers);
        for (Export::NukePointCurve const& point : points)
        {
            for (Export::NukeCurve const* const curve : {&point.first, &point.second})
            {
                for (Export::NukeCurve::Key const& key : curve->keys())
                {
                    out.appendFixed(static_cast<double>(key.frame), 0, ' ');
                    out.appendGeneral(static_cast<double>(key.value), ' ');
                }
            }
        }
        benchmark::DoNotOptimize(out.text());
    }
}

/// From curves to the text of the node.
void nodeText(benchmark::State& state)
{
    Export::NukeMeshExporter const exporter;
    for (auto _ : state)
    {
        QString const text = exporter.exportSingleView(QStringLiteral("cloth"), curves());
        benchmark::DoNotOptimize(text.constData());
    }
}

Korvane::ExportedFiles exportShot(KORV_ProjectManager& project)
{
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    return Export::NukeMeshExporter().exportTracking(project, QStringLiteral("mesh.nk"),
                                                     project.toolManager()->currentLayerID(), start,
                                                     Korvane::TrackingExporter::Options());
}

/// From a loaded project to the bytes of the file: positions, curves and text.
void wholeExport(benchmark::State& state)
{
    auto const project = makeShot();
    for (auto _ : state)
    {
        auto const result = exportShot(*project);
        if (result.files.first().count('x') < 2 * vertexCount * frameCount)
            state.SkipWithError("the node is not whole");
    }
}

BENCHMARK(digitFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(nodeText)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeExport)->Unit(benchmark::kMillisecond);

/// A number of /proc/self/status in bytes; 0 where there is none.
double processBytes(std::string const& name)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
    {
        double kilobytes;
        if (word == name && status >> kilobytes)
            return 1024 * kilobytes;
    }
    return 0;
}

/// Prints how far the first export of the process lifts its memory, as a multiple of the
/// text.
void printMemory()
{
    auto const project = makeShot();
    std::ofstream("/proc/self/clear_refs") << 5; // resets the peak
    double const before = processBytes("VmRSS:");
    double const size = exportShot(*project).files.first().size();
    double const lifted = processBytes("VmHWM:") - before;
    std::printf("memory wholeExport %.2f x the text of %.1f MB\n", lifted / size, size / 1e6);
}

}

int main(int argc, char** argv)
{
    printMemory();
    return Bench::runBenchmarks(
        argc, argv, {{"nodeText", "digitFloor", "the digit floor"}, {"wholeExport", "digitFloor", "the digit floor"}});
}
