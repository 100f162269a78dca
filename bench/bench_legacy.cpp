// The texts for Shake, Avid DS, Quantel and Fusion and the motion matrices: whole exports over 10,000
// frames, of which motion and points are a part, against the digits of the numbers in them;
// and over twice as many frames.

#include "DigitFloor.h"
#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Fusion/FusionCompExporter.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"
#include "Legacy/KORV_AvidDSExporter.h"
#include "Legacy/KORV_ShakeSSFRotoShapeExporter.h"
#include "Legacy/KORV_ShakeScriptExporter.h"
#include "XML/XmlCornerPinExporter.h"
#include "XML/XmlMatricesExporter.h"

#include <benchmark/benchmark.h>

#include <QRegularExpression>

#include <cmath>

namespace
{

constexpr int frameCount = 10'000;
constexpr int vertexCount = 8;
constexpr int decimals = 4;

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

boost::shared_ptr<KORV_ProjectManager> makeShot(int frames)
{
    ProjectBuilder builder(frames);
    builder.addLayer(QStringLiteral("wall"));
    builder.track(motion);
    MarloHost::ContourModel contour;
    contour.name = QStringLiteral("outline");
    contour.keys.push_back({0, {}, {}});
    for (int vertex = 0; vertex < vertexCount; ++vertex)
    {
        double const angle = vertex * 6.283 / vertexCount;
        for (double const number : {960 + 90 * std::cos(angle), 540 + 40 * std::sin(angle), 20 * std::sin(angle),
                                    -9 * std::cos(angle), -20 * std::sin(angle), 9 * std::cos(angle)})
        {
            contour.keys[0].points.push_back(number);
        }
    }
    builder.layer().contours.push_back(contour);
    return builder.make();
}

template <typename Exporter>
QByteArray document(Exporter const& exporter, KORV_ProjectManager& project)
{
    QMap<QString, QByteArray> files;
    if constexpr (std::is_base_of_v<Korvane::ShapeExporter, Exporter>)
    {
        files = *exporter.exportShape(project, QStringLiteral("a"), {1}, {});
    }
    else
    {
        Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
        files = exporter.exportTracking(project, QStringLiteral("a.fraw"), 1, start, {}).files;
    }
    return files.size() == 1 ? files.first() : QByteArrayList(files.values()).join();
}

template <typename Exporter, int frames>
void wholeExport(benchmark::State& state)
{
    auto const project = makeShot(frames);
    Exporter const exporter;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(document(exporter, *project).size());
    }
}

/// The numbers of the document that an export makes, but for constant tangents.
template <typename Exporter>
std::vector<double> numbers()
{
    QString const text = QString::fromUtf8(document(Exporter(), *makeShot(frameCount)));
    std::vector<double> found;
    static QRegularExpression const number(QStringLiteral("(?<![\\w.])-?\\d+(\\.\\d+)?(e[-+]\\d+)?(?![\\w.])"));
    for (auto it = number.globalMatch(text); it.hasNext();)
    {
        QString const word = it.next().captured();
        if (word != QLatin1String("0.000000"))
        {
            found.push_back(word.toDouble());
        }
    }
    return found;
}

template <typename Exporter>
void digitFloor(benchmark::State& state)
{
    constexpr bool isFixed = std::is_base_of_v<Korvane::ShapeExporter, Exporter>;
    static std::vector<double> const values = numbers<Exporter>();
    for (auto _ : state)
    {
        Bench::DigitFloor out(static_cast<int>(values.size()) * 16);
        for (double const value : values)
        {
            if (isFixed)
            {
                out.appendFixed(value, decimals, ' ');
            }
            else
            {
                out.appendGeneral(value, ' ');
            }
        }
        benchmark::DoNotOptimize(out.text());
    }
}

template <typename Exporter>
void addBenchmarks(std::string const& name, std::vector<Bench::Ratio>& ratios)
{
    benchmark::RegisterBenchmark((name + "Floor").c_str(), digitFloor<Exporter>)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name.c_str(), wholeExport<Exporter, frameCount>)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "Twice").c_str(), wholeExport<Exporter, 2 * frameCount>)
        ->Unit(benchmark::kMillisecond);
    ratios.push_back({name, name + "Floor", "the digit floor"});
    ratios.push_back({name + "Twice", name, "half the frames"});
}

}

int main(int argc, char** argv)
{
    std::vector<Bench::Ratio> ratios;
    addBenchmarks<Export::KORV_ShakeScriptExporter>("shakeScript", ratios);
    addBenchmarks<Export::KORV_ShakeSSFRotoShapeExporter>("shakeShape", ratios);
    addBenchmarks<Export::KORV_AvidDSExporter>("avidDS", ratios);
    addBenchmarks<Export::KORV_XmlCornerPinExporter>("quantel", ratios);
    addBenchmarks<Export::KORV_XmlMatricesExporter>("matrices", ratios);
    addBenchmarks<Export::KORV_FusionCompExporter>("fusion", ratios);
    return Bench::runBenchmarks(argc, argv, ratios);
}
