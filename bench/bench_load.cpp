// Loading a big project, 100 layers of 2,000 frames, against the mere pass of a SAX
// parser over the same bytes; and writing it back.

#include "ProjectBuilder.h"
#include "Ratios.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace
{

constexpr int layerCount = 100;
constexpr int frameCount = 2'000;

MarloHost::ProjectModel const& model()
{
    static MarloHost::ProjectModel const project = []
    {
        ProjectBuilder builder(frameCount);
        for (int layer = 0; layer < layerCount; ++layer)
        {
            builder.addLayer(QStringLiteral("layer %1").arg(layer));
            builder.track(
                [layer](int frame)
                {
                    ProjectBuilder::Matrix matrix =
                        ProjectBuilder::similarity(960, 540, 0.1 * std::sin(frame * 0.011 + layer),
                                                   1 + 0.2 * std::sin(frame * 0.007), 300 * std::sin(frame * 0.013), 0);
                    matrix[6] = 1e-5 * std::sin(frame * 0.019);
                    matrix[7] = 1e-5 * std::cos(frame * 0.023 + layer);
                    return matrix;
                });
        }
        return builder.model;
    }();
    return project;
}

QByteArray const& text()
{
    static QByteArray const bytes = MarloHost::writeProject(model());
    return bytes;
}

/// Takes every event and keeps nothing.
struct Listener
{
    std::size_t numbers = 0;

    bool null()
    {
        return true;
    }
    bool boolean(bool)
    {
        return true;
    }
    bool number_integer(std::int64_t)
    {
        ++numbers;
        return true;
    }
    bool number_unsigned(std::uint64_t)
    {
        ++numbers;
        return true;
    }
    bool number_float(double, std::string const&)
    {
        ++numbers;
        return true;
    }
    bool string(std::string&)
    {
        return true;
    }
    bool binary(nlohmann::json::binary_t&)
    {
        return true;
    }
    bool start_object(std::size_t)
    {
        return true;
    }
    bool key(std::string&)
    {
        return true;
    }
    bool end_object()
    {
        return true;
    }
    bool start_array(std::size_t)
    {
        return true;
    }
    bool end_array()
    {
        return true;
    }
    bool parse_error(std::size_t, std::string const&, nlohmann::detail::exception const&)
    {
        return false;
    }
};

void saxPass(benchmark::State& state)
{
    for (auto _ : state)
    {
        Listener listener;
        if (!nlohmann::json::sax_parse(text().cbegin(), text().cend(), &listener) ||
            listener.numbers < std::size_t{layerCount} * frameCount * 9)
            state.SkipWithError("the text was not read to its end");
    }
}

/// Text to records.
void read(benchmark::State& state)
{
    for (auto _ : state)
    {
        MarloHost::ProjectModel const project = MarloHost::readProject(text(), QStringLiteral("bench.json"));
        benchmark::DoNotOptimize(project.layers.data());
    }
}

/// Text to a project that exporters can work on.
void load(benchmark::State& state)
{
    for (auto _ : state)
    {
        auto const project =
            MarloHost::makeProject(MarloHost::readProject(text(), QStringLiteral("bench.json")), QString());
        benchmark::DoNotOptimize(project.get());
    }
}

void write(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(MarloHost::writeProject(model()));
    }
}

BENCHMARK(saxPass)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(read)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(load)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(write)->Unit(benchmark::kMillisecond)->Iterations(1);

}

int main(int argc, char** argv)
{
    return Bench::runBenchmarks(argc, argv,
                                {{"read", "saxPass", "a bare SAX pass"},
                                 {"load", "saxPass", "a bare SAX pass"},
                                 {"write", "saxPass", "a bare SAX pass"}});
}
