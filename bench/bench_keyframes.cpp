// The keyframe text of a pin over 10,000 frames: the builder alone, and the whole
// export of a project, against the digits of the same numbers.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "AfterEffects/AECornerPinExporters.h"
#include "AfterEffects/AEExportBuilder.h"
#include "Host/KORV_ProjectManager.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{

constexpr int frameCount = 10'000;
constexpr int cornerCount = 4;
constexpr int longestRow = 32;

/// How the wall goes through the picture: a hand-held shot, never on a grid.
ProjectBuilder::Matrix motion(int frame)
{
    ProjectBuilder::Matrix matrix =
        ProjectBuilder::similarity(960, 540, 0.1 * std::sin(frame * 0.011), 1 + 0.2 * std::sin(frame * 0.007),
                                   300 * std::sin(frame * 0.013), 200 * std::cos(frame * 0.017));
    matrix[6] = 1e-5 * std::sin(frame * 0.019);
    matrix[7] = 1e-5 * std::cos(frame * 0.023);
    return matrix;
}

boost::shared_ptr<KORV_ProjectManager> makeShot()
{
    ProjectBuilder builder(frameCount);
    builder.addLayer(QStringLiteral("wall"));
    builder.track(motion);
    return builder.make();
}

struct Row
{
    float frame;
    double x;
    double y;
};

/// The numbers of the exported document, corner by corner.
std::vector<Row> const& rows()
{
    static std::vector<Row> const numbers = []
    {
        constexpr double corners[cornerCount][2] = {{860, 590}, {1060, 590}, {860, 490}, {1060, 490}};
        std::vector<Row> result;
        for (auto const& corner : corners)
        {
            for (int frame = 0; frame < frameCount; ++frame)
            {
                ProjectBuilder::Matrix const m = motion(frame);
                double const w = m[6] * corner[0] + m[7] * corner[1] + m[8];
                double const x = (m[0] * corner[0] + m[1] * corner[1] + m[2]) / w;
                double const y = (m[3] * corner[0] + m[4] * corner[1] + m[5]) / w;
                result.push_back({static_cast<float>(frame), x, static_cast<float>(1080 - y)});
            }
        }
        return result;
    }();
    return numbers;
}

void digitFloor(benchmark::State& state)
{
    std::vector<Row> const& numbers = rows();
    for (auto _ : state)
    {
        Bench::DigitFloor out(frameCount * cornerCount * longestRow);
        for (Row const& row : numbers)
        {
            out.appendGeneral(static_cast<double>(row.frame), '\t');
            out.appendGeneral(row.x, '\t');
            out.appendGeneral(row.y, '\n');
        }
        benchmark::DoNotOptimize(out.text());
    }
}

/// From numbers to the bytes of the file.
void builderText(benchmark::State& state)
{
    std::vector<Row> const& numbers = rows();
    for (auto _ : state)
    {
        Export::AEExportBuilder builder(Export::AEExportBuilder::AfterEffects);
        builder.addExportHeader(24, 1920, 1080, 1);
        builder.newEffect(QStringLiteral("ADBE Corner Pin"));
        std::size_t next = 0;
        for (int corner = 0; corner < cornerCount; ++corner)
        {
            builder.addParamHeader(QStringLiteral("ADBE Corner Pin-000%1").arg(corner + 1),
                                   {QStringLiteral("X pixels"), QStringLiteral("Y pixels")});
            builder.reserveRows(frameCount);
            for (int frame = 0; frame < frameCount; ++frame, ++next)
                builder.addValues(numbers[next].frame, {numbers[next].x, numbers[next].y});
        }
        builder.addExportFooter();
        QByteArray const bytes = builder.getText().toUtf8();
        benchmark::DoNotOptimize(bytes.constData());
    }
}

/// From a loaded project to the bytes of the file: motion, points and text.
void wholeExport(benchmark::State& state)
{
    auto const project = makeShot();
    Export::AESimpleCornerPinExporter const exporter(false, false);
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    QString const path = QStringLiteral("pin.txt");
    for (auto _ : state)
    {
        auto const result = exporter.exportTracking(*project, path, project->toolManager()->currentLayerID(), start,
                                                    Korvane::TrackingExporter::Options());
        if (result.failedCount != 0 || result.files.value(path).count('\n') < frameCount * cornerCount)
            state.SkipWithError("the document is not whole");
    }
}

BENCHMARK(digitFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(builderText)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeExport)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    return Bench::runBenchmarks(
        argc, argv,
        {{"builderText", "digitFloor", "the digit floor"}, {"wholeExport", "digitFloor", "the digit floor"}});
}
