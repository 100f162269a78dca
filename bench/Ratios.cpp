#include "Ratios.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

namespace Bench
{
namespace
{

class MedianReporter : public benchmark::ConsoleReporter
{
public:
    MedianReporter() : ConsoleReporter(OO_Tabular)
    {
    }

    void ReportRuns(std::vector<Run> const& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (Run const& run : runs)
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                m_medians[run.run_name.function_name] = run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }

    void printRatio(Ratio const& ratio) const
    {
        auto const subject = m_medians.find(ratio.subject);
        auto const peer = m_medians.find(ratio.peer);
        if (subject != m_medians.end() && peer != m_medians.end())
            std::printf("ratio %s %.2f x %s\n", ratio.subject.c_str(), subject->second / peer->second,
                        ratio.peerName.c_str());
    }

private:
    std::map<std::string, double> m_medians;
};

}

int runBenchmarks(int argc, char** argv, std::vector<Ratio> const& ratios)
{
    std::string defaults[] = {"--benchmark_repetitions=21", "--benchmark_min_time=0.02",
                              "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"};
    std::vector<char*> arguments{argv[0]};
    for (std::string& text : defaults)
        arguments.push_back(text.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (Ratio const& ratio : ratios)
        reporter.printRatio(ratio);
    benchmark::Shutdown();
    return 0;
}

}
