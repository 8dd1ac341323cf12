// The memory that a parsed SVG document holds, its own renderer included: the usable size of all
// blocks that are still there, for sets of icons before and after a draw, and for one item of
// documents of any size. A program of its own, because it counts every block of the C library.
//
// usage: KIV_BENCH_ARTWORK=FOLDER SvgHeapBench

#include "bench/SvgCorpora.h"
#include "bench/SvgFamilies.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"

#include <kivui/ScrivelTargets.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

std::int64_t bytesInUse = 0;  // on one thread

void* Count(void* block)
{
    bytesInUse += static_cast<std::int64_t>(malloc_usable_size(block));
    return block;
}

void Forget(void* block)
{
    bytesInUse -= static_cast<std::int64_t>(malloc_usable_size(block));
}

}  // namespace

// The C library lets a program put its own functions before its own, and keeps these names for the
// originals.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

void* malloc(std::size_t size)
{
    return Count(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return Count(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    const std::size_t before = malloc_usable_size(block);
    void* const moved = __libc_realloc(block, size);
    if (moved != nullptr || size == 0) {
        bytesInUse -= static_cast<std::int64_t>(before);
    }
    return Count(moved);
}

void free(void* block)
{
    Forget(block);
    __libc_free(block);
}
}

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
            const std::int64_t before = bytesInUse;
            const Parsed parsed = Parse(text);
            parsedBytes += bytesInUse - before;
            draw(parsed);
            drawnBytes += bytesInUse - before;
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
        const std::int64_t before = bytesInUse;
        const Parsed parsed = Parse(text);
        state.counters["bytes_of_item"] =
            static_cast<double>(bytesInUse - before) / static_cast<double>(count);
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
