// The memory that a parsed SVG document holds, its own renderer included: the usable size of all
// blocks that are still there, for sets of icons before and after a draw, and for one item of
// documents of any size. A program of its own, because it counts every block of the C library.
//
// usage: KIV_BENCH_ARTWORK=FOLDER SvgHeapBench

#include "bench/HeapCount.h"
#include "bench/SvgCorpora.h"
#include "bench/SvgFamilies.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"

#include <kivui/ScrivelTargets.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Parsed {
    std::shared_ptr<SVGLoom::ScrivelSVGRenderer> renderer;
    std::unique_ptr<SVGLoom::SVGDocumentImpl> document;
};

Parsed Parse(const std::string& text)
{
    auto renderer = std::make_shared<SVGLoom::ScrivelSVGRenderer>();
    auto document = SVGLoom::CreateDocument(text, renderer);
    return {std::move(renderer), std::move(document)};
}

void HeapOfCorpus(benchmark::State& state, const std::string& name)
{
    const std::vector<std::string> texts = bench::LoadCorpus(state, name);
    if (texts.empty()) {
        return;
    }
    constexpr int kSize = 32;
    std::vector<std::uint32_t> pixels(kSize * kSize);
    const std::unique_ptr<kivui::scrivel::DrawingTarget> target =
        kivui::scrivel::CreatePixelTarget({pixels.data(), kSize, kSize, kSize});
    const SVGLoom::ColorMap colors;
    // What is made once for the process belongs to no document.
    const auto draw = [&](const Parsed& parsed) {
        parsed.renderer->Bind(*target);
        parsed.document->Render(colors, kSize, kSize);
        parsed.renderer->Unbind();
    };
    for (const std::string& text : texts) {
        draw(Parse(text));
    }
    for (auto _ : state) {
        std::int64_t parsedBytes = 0;
        std::int64_t drawnBytes = 0;
        for (const std::string& text : texts) {
            const std::int64_t before = bench::bytesInUse;
            const Parsed parsed = Parse(text);
            parsedBytes += bench::bytesInUse - before;
            draw(parsed);
            drawnBytes += bench::bytesInUse - before;
        }
        const auto count = static_cast<double>(texts.size());
        state.counters["bytes"] = static_cast<double>(parsedBytes) / count;
        state.counters["bytes_after_draw"] = static_cast<double>(drawnBytes) / count;
    }
}

void HeapOfFamily(benchmark::State& state, std::size_t family)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::string text = bench::FamilyText(family, count);
    Parse(text);
    for (auto _ : state) {
        const std::int64_t before = bench::bytesInUse;
        const Parsed parsed = Parse(text);
        state.counters["bytes_of_item"] =
            static_cast<double>(bench::bytesInUse - before) / static_cast<double>(count);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    for (const char* const name : bench::kCorpusNames) {
        benchmark::RegisterBenchmark((std::string("SvgHeap/") + name).c_str(), HeapOfCorpus, name)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    bench::RegisterFamilies("SvgHeapFamily/", HeapOfFamily);
    return bench::RunRegistered(argc, argv);
}
