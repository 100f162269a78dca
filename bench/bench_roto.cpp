// Roto text of a shot in which everything moves: 50 contours of 40 vertices, baked over
// 250 frames. Against the digits of the same numbers; and how much memory it takes at
// the highest, next to the size of the text.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Nuke/NukeRotoExporters.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cmath>
#include <cstdio>

namespace
{

constexpr int contourCount = 50;
constexpr int vertexCount = 40;
constexpr int frameCount = 250;
constexpr int firstFrame = 1001;

using Curves = Korvane::ExportedShape::Curves;

/// The outline of a contour at a frame: an uneven ring that drifts and breathes, never
/// on a grid.
boost::shared_ptr<Korvane::ExportCurveBase> outline(int contour, int frame, double growth)
{
    std::vector<Sabrel::BezierSpan> spans(vertexCount);
    double const t = 0.013 * frame + contour;
    for (int vertex = 0; vertex < vertexCount; ++vertex)
    {
        double const angle = 2 * 3.141592653589793 * vertex / vertexCount + 0.1 * std::sin(t);
        double const radius = growth * (200 + 30 * std::sin(3 * angle + t));
        double const handle = radius * 0.052;
        spans[static_cast<std::size_t>(vertex)] = {
            {960 + 400 * std::sin(t) + radius * std::cos(angle), 540 + 200 * std::cos(t) + radius * std::sin(angle)},
            {-handle * std::sin(angle), handle * std::cos(angle)},
            {handle * std::sin(angle), -handle * std::cos(angle)}};
    }
    return boost::shared_ptr<Korvane::ExportCurveBase>(
        new Korvane::ExportBezierCurve(firstFrame + frame, true, std::move(spans)));
}

Curves baked(int contour, double growth)
{
    Curves curves;
    for (int frame = 0; frame < frameCount; ++frame)
        curves.append(outline(contour, frame, growth));
    return curves;
}

struct Shot
{
    boost::shared_ptr<KORV_ProjectManager> project;
    Korvane::TrackingExporterHelper helper;
    std::vector<Curves> masks;
    std::vector<Curves> blurs;
};

Shot const& shot()
{
    static Shot const made = []
    {
        Shot result;
        ProjectBuilder builder(frameCount);
        builder.addLayer(QStringLiteral("people"));
        result.project = builder.make();
        result.helper.initialiseWithPMAndRange(*result.project, result.project->toolManager()->currentLayerID(),
                                               Anm::View::defaultView(), 2147483647, Anm::Time::fromInt(0),
                                               Anm::Time::fromInt(frameCount - 1), false);
        for (int contour = 0; contour < contourCount; ++contour)
        {
            result.masks.push_back(baked(contour, 1.0));
            result.blurs.push_back(baked(contour, 1.07));
        }
        return result;
    }();
    return made;
}

/// The node of every contour.
QByteArray shapeText(Shot const& from)
{
    Export::NukeRotoExporter const exporter(false);
    QByteArray text;
    text.reserve(300'000'000);
    for (std::size_t contour = 0; contour < from.masks.size(); ++contour)
        exporter.shapeToStr(text, *from.project, QStringLiteral("shape"), nullptr, Anm::View::defaultView(),
                            from.masks[contour], from.blurs[contour], {}, from.helper, ZN_BLEND_ADD, false, Qt::white,
                            Qt::white);
    return text;
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
    Shot const& from = shot();
    for (auto _ : state)
    {
        Bench::DigitFloor out(300'000'000);
        for (std::size_t contour = 0; contour < from.masks.size(); ++contour)
        {
            for (Curves const* curves : {&from.masks[contour], &from.blurs[contour]})
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

void rotoText(benchmark::State& state)
{
    for (auto _ : state)
    {
        QByteArray const text = shapeText(shot());
        if (text.count("NumOfPoints") != 2 * contourCount)
            state.SkipWithError("the text is not whole");
    }
}

BENCHMARK(digitFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(rotoText)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    return Bench::runBenchmarks(argc, argv, {{"rotoText", "digitFloor", "the digit floor"}});
}
