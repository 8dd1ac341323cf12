// Documents of any size in which one kind of thing comes again and again: time and memory have to
// grow with them, and no faster.

#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>

namespace bench {

/// Path data with `count` segments, as drawing programs write it.
inline std::string PathData(std::size_t count)
{
    std::mt19937 random(1);
    const auto number = [&random] {
        const auto value = static_cast<int>(random() % 20000) - 10000;
        std::string text = std::to_string(value);
        text.insert(text.size() - (text.size() > 2 ? 2 : 0), text.size() > 3 ? "." : "");
        return text;
    };
    std::string data = "M0 0";
    for (std::size_t i = 0; i < count; ++i) {
        const bool isCurve = random() % 2 == 0;
        data += isCurve ? 'c' : 'l';
        for (int k = 0; k < (isCurve ? 6 : 2); ++k) {
            data += k != 0 ? " " : "";
            data += number();
        }
    }
    return data;
}

struct Family {
    const char* name;
    std::string (*content)(std::size_t count);
};

inline constexpr std::array kFamilies = {
    Family{"PathSegments",
           [](std::size_t count) { return "<path d=\"" + PathData(count) + "\"/>"; }},
    Family{"Elements",
           [](std::size_t count) {
               std::string text;
               for (std::size_t i = 0; i < count; ++i) {
                   text += "<rect x=\"" + std::to_string(i) +
                           "\" y=\"1\" width=\"2\" height=\"3\" fill=\"#123\"/>";
               }
               return text;
           }},
    Family{"Rules",
           [](std::size_t count) {
               std::string text = "<style>";
               for (std::size_t i = 0; i < count; ++i) {
                   text += ".c" + std::to_string(i) + "{fill:#456;opacity:.5;}";
               }
               text += "</style>";
               for (std::size_t i = 0; i < count; ++i) {
                   text += "<path class=\"c" + std::to_string(i) + "\" d=\"M0 0L1 1\"/>";
               }
               return text;
           }},
    Family{"Gradients",
           [](std::size_t count) {
               std::string text;
               for (std::size_t i = 0; i < count; ++i) {
                   const std::string id = "g" + std::to_string(i);
                   text += "<linearGradient id=\"" + id +
                           "\"><stop offset=\"0\" stop-color=\"red\"/><stop offset=\"1\"/>"
                           "</linearGradient><path d=\"M0 0L1 1\" fill=\"url(#" +
                           id + ")\"/>";
               }
               return text;
           }},
    Family{"Uses",
           [](std::size_t count) {
               std::string text;
               for (std::size_t i = 0; i < count; ++i) {
                   const std::string id = "u" + std::to_string(i);
                   text += "<path id=\"" + id + "\" d=\"M0 0L1 1\"/><use href=\"#" + id +
                           "\" x=\"1\"/>";
               }
               return text;
           }},
    Family{"ClipPaths",
           [](std::size_t count) {
               std::string text;
               for (std::size_t i = 0; i < count; ++i) {
                   const std::string id = "k" + std::to_string(i);
                   text += "<clipPath id=\"" + id +
                           "\"><path d=\"M0 0L1 1\"/></clipPath><path d=\"M0 0L1 1\" "
                           "clip-path=\"url(#" +
                           id + ")\"/>";
               }
               return text;
           }},
    Family{"Nesting",
           [](std::size_t count) {
               std::string text;
               for (std::size_t i = 0; i < count; ++i) {
                   text += "<g>";
               }
               for (std::size_t i = 0; i < count; ++i) {
                   text += "</g>";
               }
               return text;
           }},
};

/// The last of the families, which ends at a limit.
inline constexpr std::size_t kNesting = kFamilies.size() - 1;
inline constexpr std::size_t kDeepest = 511;  // levels below the root

inline std::string FamilyText(std::size_t family, std::size_t count)
{
    return "<svg viewBox=\"0 0 24 24\">" + kFamilies[family].content(count) + "</svg>";
}

/// Registers run(state, family) for each family, with the counts as its argument.
template <class Run>
void RegisterFamilies(const std::string& prefix, Run run)
{
    for (std::size_t family = 0; family < kFamilies.size(); ++family) {
        benchmark::internal::Benchmark* const row =
            benchmark::RegisterBenchmark((prefix + kFamilies[family].name).c_str(), run, family);
        row->Iterations(1)->Unit(benchmark::kMillisecond);
        if (family == kNesting) {
            row->Arg(50)->Arg(kDeepest)->Arg(1000000);
        } else {
            row->RangeMultiplier(10)->Range(1000, 1000000);
        }
    }
}

}  // namespace bench
