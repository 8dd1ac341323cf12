// What the SVG benchmarks share: the pictures that fetch_artwork.py put into a folder, librsvg as a
// library to compare with, medians of several contestants that take turns, and the run of what was
// registered.

#pragma once

#include <benchmark/benchmark.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The sets of icons, by the names of their folders.
inline constexpr std::array kCorpusNames = {"material", "bootstrap", "flags", "twemoji"};

/// The texts of all pictures of a set, in the order of their names. The environment's
/// KIV_BENCH_ARTWORK names the folder. If they are not there: empty, and `state` says so.
inline std::vector<std::string> LoadCorpus(benchmark::State& state, const std::string& name)
{
    const char* const folder = std::getenv("KIV_BENCH_ARTWORK");
    const std::filesystem::path place = std::filesystem::path(folder != nullptr ? folder : ".");
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator each(place / name, error), end; each != end;
         each.increment(error)) {
        if (each->path().extension() == ".svg") {
            paths.push_back(each->path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> texts;
    for (const std::filesystem::path& path : paths) {
        std::ifstream file(path, std::ios_base::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    if (texts.empty()) {
        state.SkipWithError("no artwork: see fetch_artwork.py");
    }
    return texts;
}

struct Unref {
    void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
};
using RsvgDocument = std::unique_ptr<RsvgHandle, Unref>;

/// Null if librsvg refuses the text.
inline RsvgDocument ParseWithRsvg(const std::string& text)
{
    return RsvgDocument(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(text.data()),
                                                  text.size(), nullptr));
}

/// On the processor: what other programs take does not count.
template <class Work>
double SecondsOf(const Work& work)
{
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

inline double MedianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The median seconds of each contestant. They take turns, so that what else the machine does
/// meets all of them; the first round does not count.
inline std::vector<double> MediansInTurn(int rounds,
                                         const std::vector<std::function<void()>>& contestants)
{
    std::vector<std::vector<double>> seconds(contestants.size());
    for (int round = 0; round <= rounds; ++round) {
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            const double took = SecondsOf(contestants[i]);
            if (round > 0) {
                seconds[i].push_back(took);
            }
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& each : seconds) {
        medians.push_back(MedianOf(each));
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
