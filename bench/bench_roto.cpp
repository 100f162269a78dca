// Roto text of a shot in which everything moves: 50 contours of 40 vertices, baked over
// 250 frames. The text alone and the whole export, against the digits of the same
// numbers; and how much memory the export takes at the highest, next to its text.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Nuke/NukeRotoExporters.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

constexpr int contourCount = 50;
constexpr int vertexCount = 40;
constexpr int frameCount = 250;
constexpr int framesBetweenKeys = 10;
constexpr int roomForText = 320'000'000;
constexpr double twoPi = 6.283185307179586;

using Curves = Korvane::ExportedShape::Curves;

/// An uneven ring that drifts and breathes, never on a grid.
std::vector<double> ring(int contour, int frame, double growth)
{
    std::vector<double> numbers;
    double const t = 0.013 * frame + contour;
    for (int vertex = 0; vertex < vertexCount; ++vertex)
    {
        double const angle = twoPi * vertex / vertexCount + 0.1 * std::sin(t);
        double const radius = growth * (200 + 30 * std::sin(3 * angle + t));
        double const x = 960 + 400 * std::sin(t) + radius * std::cos(angle);
        double const y = 540 + 200 * std::cos(t) + radius * std::sin(angle);
        double const handleX = -0.052 * radius * std::sin(angle);
        double const handleY = 0.052 * radius * std::cos(angle);
        numbers.insert(numbers.end(), {x, y, -handleX, -handleY, handleX, handleY});
    }
    return numbers;
}

boost::shared_ptr<KORV_ProjectManager> makeShot()
{
    ProjectBuilder builder(frameCount);
    builder.clip().frameOffset = 1001;
    builder.addLayer(QStringLiteral("people"));
    builder.track(
        [](int frame)
        {
            return ProjectBuilder::similarity(960, 540, 0.1 * std::sin(frame * 0.011),
                                              1 + 0.2 * std::sin(frame * 0.007), 30 * std::sin(frame * 0.013),
                                              20 * std::cos(frame * 0.017));
        });
    for (int contour = 0; contour < contourCount; ++contour)
    {
        MarloHost::ContourModel model;
        model.name = QStringLiteral("shape");
        for (int frame = 0; frame < frameCount; frame += framesBetweenKeys)
            model.keys.push_back({frame, ring(contour, frame, 1.0), ring(contour, frame, 1.07)});
        builder.layer().contours.push_back(model);
    }
    return builder.make();
}

QByteArray exportedText(KORV_ProjectManager& project)
{
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    return Export::NukeRotoExporter(false).exportShape(project, "out.nk", {}, options)->value("out.nk");
}

/// The baked shapes of the shot, as an exporter gets them.
struct Baked
{
    boost::shared_ptr<KORV_ProjectManager> project = makeShot();
    Korvane::TrackingExporterHelper helper;
    Korvane::ExportedShape shape{*project,
                                 0,
                                 frameCount - 1,
                                 *project->currentLayer(),
                                 Anm::View::defaultView(),
                                 Korvane::ShapeInPixels | Korvane::ShapeWithBlur,
                                 1.0,
                                 QPointF(0, 0),
                                 true};

    Baked()
    {
        helper.initialiseWithPMAndRange(*project, project->toolManager()->currentLayerID(), Anm::View::defaultView(),
                                        2147483647, Anm::Time::fromInt(0), Anm::Time::fromInt(frameCount - 1), false);
    }
};

Baked const& baked()
{
    static Baked const made;
    return made;
}

template <typename PointAt>
void floorOfPoint(Bench::DigitFloor& out, Curves const& curves, PointAt const& pointAt)
{
    for (double Mtx_Vector2::*component : {&Mtx_Vector2::x, &Mtx_Vector2::y})
    {
        double before = pointAt(0).*component;
        for (int key = 0; key < frameCount; ++key)
        {
            double const value = pointAt(key).*component;
            double const after = pointAt(std::min(key + 1, frameCount - 1)).*component;
            out.appendFixed(curves[key]->time, 0, ' ');
            out.appendFixed(value, 2, ' ');
            out.appendFixed(value - before, 3, ' ');
            out.appendFixed(after - value, 3, ' ');
            before = value;
        }
    }
}

/// The four numbers of every key, with as many decimals as the text has as a rule.
void digitFloor(benchmark::State& state)
{
    Korvane::ExportedShape const& shape = baked().shape;
    for (auto _ : state)
    {
        Bench::DigitFloor out(roomForText);
        for (int contour = 0; contour < contourCount; ++contour)
        {
            for (Curves const* curves : {&shape.maskShape(contour, 0), &shape.blurShape(contour, 0)})
            {
                auto const span = [&](int key, int vertex) -> Sabrel::BezierSpan const&
                {
                    auto const* bezier = static_cast<Korvane::ExportBezierCurve const*>((*curves)[key].get());
                    return (*bezier)[static_cast<std::size_t>(vertex)];
                };
                for (int vertex = 0; vertex < vertexCount; ++vertex)
                {
                    floorOfPoint(out, *curves, [&](int key) { return span(key, vertex).control2; });
                    floorOfPoint(out, *curves, [&](int key) { return span(key, vertex).start; });
                    floorOfPoint(out, *curves, [&](int key) { return span(key, vertex).control1; });
                }
            }
        }
        benchmark::DoNotOptimize(out.text());
    }
}

/// The nodes of all contours from their baked curves.
void shapeText(benchmark::State& state)
{
    Baked const& from = baked();
    Export::NukeRotoExporter const exporter(false);
    for (auto _ : state)
    {
        Export::TextBuffer text;
        text.reserve(roomForText);
        for (int contour = 0; contour < contourCount; ++contour)
            exporter.shapeToStr(text, *from.project, QStringLiteral("shape"), nullptr, Anm::View::defaultView(),
                                from.shape.maskShape(contour, 0), from.shape.blurShape(contour, 0), {}, from.helper,
                                ZN_BLEND_ADD, false, Qt::white, Qt::white);
        benchmark::DoNotOptimize(text.bytes());
    }
}

/// From a loaded project to the bytes of the file.
void wholeExport(benchmark::State& state)
{
    for (auto _ : state)
    {
        QByteArray const text = exportedText(*baked().project);
        if (!text.endsWith("name Roto_people\n}\n"))
            state.SkipWithError("the text is not whole");
    }
}

/// Measured in a process of its own, before the others touch memory.
void printPeakMemory()
{
    std::fflush(stdout);
    pid_t const child = fork();
    if (child == 0)
    {
        auto const project = makeShot();
        QByteArray const text = exportedText(*project);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        double const peak = static_cast<double>(usage.ru_maxrss) * 1024;
        std::printf("memory wholeExport %.2f x its text (%.0f MB for %.0f MB)\n", peak / text.size(), peak / 1e6,
                    text.size() / 1e6);
        std::fflush(stdout);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
}

BENCHMARK(digitFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(shapeText)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeExport)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    printPeakMemory();
    return Bench::runBenchmarks(
        argc, argv, {{"shapeText", "digitFloor", "the digit floor"}, {"wholeExport", "digitFloor", "the digit floor"}});
}
