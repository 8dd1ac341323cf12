// Contestants that take turns, so that what else the machine does meets all of them alike, and the
// run of benchmarks that a program registered itself.

#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <vector>

namespace bench {

struct Seconds {
    double processor = 0;  ///< what other programs take does not count
    double wall = 0;       ///< waiting for the disk counts too
};

template <class Work>
Seconds SecondsOf(const Work& work)
{
    const std::clock_t processor = std::clock();
    const auto wall = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - wall;
    return {static_cast<double>(std::clock() - processor) / CLOCKS_PER_SEC, took.count()};
}

inline double MedianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The medians of each contestant; the first round does not count. Before each turn `prepare`, if
/// there is one, is called with the contestant's number, and not measured.
inline std::vector<Seconds> TimesInTurn(int rounds,
                                        const std::vector<std::function<void()>>& contestants,
                                        const std::function<void(std::size_t)>& prepare = {})
{
    std::vector<std::vector<double>> processor(contestants.size());
    std::vector<std::vector<double>> wall(contestants.size());
    for (int round = 0; round <= rounds; ++round) {
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            if (prepare) {
                prepare(i);
            }
            const Seconds took = SecondsOf(contestants[i]);
            if (round > 0) {
                processor[i].push_back(took.processor);
                wall[i].push_back(took.wall);
            }
        }
    }
    std::vector<Seconds> medians;
    for (std::size_t i = 0; i < contestants.size(); ++i) {
        medians.push_back({MedianOf(processor[i]), MedianOf(wall[i])});
    }
    return medians;
}

/// The median seconds of each contestant on the processor.
inline std::vector<double> MediansInTurn(int rounds,
                                         const std::vector<std::function<void()>>& contestants)
{
    std::vector<double> medians;
    for (const Seconds& seconds : TimesInTurn(rounds, contestants)) {
        medians.push_back(seconds.processor);
    }
    return medians;
}

/// Runs what has been registered, as the arguments choose. @return the exit status
inline int RunRegistered(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace bench
