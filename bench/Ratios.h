#pragma once
// What a benchmark program ends with: how one benchmark stands to another that
// was measured in the same run. Seconds differ from machine to machine and from
// hour to hour; a ratio to a floor or a peer can be compared.

#include <string>
#include <vector>

namespace Bench
{

/// Prints "ratio SUBJECT F x PEERNAME", F the median of `subject` over that of `peer`.
struct Ratio
{
    std::string subject;
    std::string peer;

    /// The peer in words.
    std::string peerName;
};

/// The main function of a benchmark program: runs all registered benchmarks in
/// many short turns, in a random order so that a change of the machine's speed
/// meets all alike, then prints medians of the processor time and the ratios. The
/// usual --benchmark_ options work; a ratio whose benchmarks were filtered out is
/// left out.
/// @return the exit status
int runBenchmarks(int argc, char** argv, std::vector<Ratio> const& ratios);

}
