// The number functions by themselves: against Qt's, whose text they give, and
// against the bare digits.

#include "DigitFloor.h"
#include "Ratios.h"

#include "text/NumberText.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{

using Numbers = std::vector<double>;

constexpr int count = 30'000;
constexpr int longestText = 32;

Numbers const& frames()
{
    static Numbers const numbers = []
    {
        Numbers values(count);
        for (int i = 0; i < count; ++i)
            values[static_cast<std::size_t>(i)] = i % 10'000;
        return values;
    }();
    return numbers;
}

/// @param step grid of the coordinates; 0 for any double
Numbers makePixels(double step)
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> pixel(-100.0, 2020.0);
    Numbers values(count);
    for (double& value : values)
        value = step > 0 ? std::round(pixel(engine) / step) * step : pixel(engine);
    return values;
}

Numbers const& pixels()
{
    static Numbers const numbers = makePixels(0);
    return numbers;
}

/// One in seven is an exact tie.
Numbers const& sixteenths()
{
    static Numbers const numbers = makePixels(1.0 / 16);
    return numbers;
}

template <class Append>
void measure(benchmark::State& state, Numbers const& numbers, Append const& append)
{
    for (auto _ : state)
    {
        auto out = append.buffer();
        for (double value : numbers)
            append(out, value);
        benchmark::DoNotOptimize(append.text(out));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Buffer>
struct Ours
{
    int decimals = -1;

    Buffer buffer() const
    {
        Buffer out;
        out.reserve(count * longestText);
        return out;
    }

    void operator()(Buffer& out, double value) const
    {
        if (decimals < 0)
            Text::appendGeneral(out, value);
        else
            Text::appendFixed(out, value, decimals);
        out += '\t';
    }

    auto text(Buffer const& out) const
    {
        return out.constData();
    }
};

struct Qts : Ours<QString>
{
    void operator()(QString& out, double value) const
    {
        out += decimals < 0 ? QString::number(value, 'g', 6) : QString::number(value, 'f', decimals);
        out += QLatin1Char('\t');
    }
};

struct Bare
{
    int decimals = -1;

    Bench::DigitFloor buffer() const
    {
        return Bench::DigitFloor(count * longestText);
    }

    void operator()(Bench::DigitFloor& out, double value) const
    {
        if (decimals < 0)
            out.appendGeneral(value, '\t');
        else
            out.appendFixed(value, decimals, '\t');
    }

    char const* text(Bench::DigitFloor& out) const
    {
        return out.text();
    }
};

template <class Append>
void add(std::string const& name, Numbers const& numbers, Append const& append)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&numbers, append](benchmark::State& state) { measure(state, numbers, append); });
}

}

int main(int argc, char** argv)
{
    struct
    {
        char const* name;
        Numbers const& numbers;
        int decimals;
    } const cases[] = {
        {"general_frames", frames(), -1},
        {"general_pixels", pixels(), -1},
        {"general_sixteenths", sixteenths(), -1},
        {"fixed5_pixels", pixels(), 5},
    };
    std::vector<Bench::Ratio> ratios;
    for (auto const& [caseName, numbers, decimals] : cases)
    {
        std::string const name = caseName;
        add(name + "_bytes", numbers, Ours<QByteArray>{decimals});
        add(name + "_string", numbers, Ours<QString>{decimals});
        add(name + "_qt", numbers, Qts{{decimals}});
        add(name + "_bare", numbers, Bare{decimals});
        ratios.push_back({name + "_bytes", name + "_bare", "the digit floor"});
        ratios.push_back({name + "_string", name + "_bare", "the digit floor"});
        ratios.push_back({name + "_string", name + "_qt", "QString::number"});
    }
    return Bench::runBenchmarks(argc, argv, ratios);
}
