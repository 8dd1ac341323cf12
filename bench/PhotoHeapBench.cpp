// The memory that saving a photo takes: the most at any moment of all blocks, packets and trees
// included, beyond what was there before. A program of its own, because it counts every block of
// the C library.
//
// usage: KIV_BENCH_PHOTOS=FOLDER PhotoHeapBench   (it takes 500 MB for a while)

#include "bench/HeapCount.h"
#include "bench/PhotoFiles.h"
#include "bench/Turns.h"

#include <kivxmp/PhotoFile.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace {

void HeapOfSave(benchmark::State& state, const char* format, std::uint64_t megabytes)
{
    constexpr std::uint64_t kMB = 1'000'000;
    constexpr std::size_t kPacketBytes = 3000;
    const std::filesystem::path path =
        bench::MakePhoto(bench::PhotoFolder(), "heap", format, megabytes * kMB, kPacketBytes,
                         bench::ImageData::kSparse);
    for (auto _ : state) {
        const auto meta = bench::OpenPhoto(path);
        meta->SetText("dc:title[@x-default]", "edited");
        const std::int64_t before = bench::bytesInUse;
        bench::mostBytesInUse = before;
        kivxmp::SavePhoto(*meta);
        state.counters["MiB"] = static_cast<double>(bench::mostBytesInUse - before) / (1024 * 1024);
    }
    std::filesystem::remove(path);
}

}  // namespace

int main(int argc, char** argv)
{
    for (const char* const format : bench::kPhotoFormats) {
        for (const std::uint64_t megabytes : {50U, 500U}) {
            const std::string name =
                std::string("PhotoHeap/") + format + "/" + std::to_string(megabytes) + "MB";
            benchmark::RegisterBenchmark(name.c_str(), HeapOfSave, format, megabytes)
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return bench::RunRegistered(argc, argv);
}
