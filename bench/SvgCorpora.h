// What the SVG benchmarks share: the pictures that fetch_artwork.py put into a folder, and librsvg
// as a library to compare with.

#pragma once

#include "bench/Turns.h"

#include <benchmark/benchmark.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

}  // namespace bench
