// Loading dictionaries and asking them, against GNU gettext, ICU and std::unordered_map over the
// same texts: catalogs of real translations, made by make_catalogs.py.
//
// Questions in a plain loop do not wait for each other: a processor works on the next one while the
// last one waits for memory, and every instruction between them takes room from that. So a loop
// shows how many questions get through, and not what a part of one costs. What the handle of a full
// lookup costs is measured where each question waits for the text that the last one gave.
//
// usage: KIV_BENCH_CATALOGS=FOLDER DictionaryBench

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryHandles.h"

#include <benchmark/benchmark.h>
#include <libintl.h>
#include <unicode/uclean.h>
#include <unicode/ures.h>

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

std::size_t allocations = 0;

}  // namespace

// Not inline: the compiler would see malloc() and free() meet the other kind of the pair.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

using morvish::Dictionary;

std::string Folder(std::size_t size)
{
    const char* const folder = std::getenv("KIV_BENCH_CATALOGS");
    return std::string(folder != nullptr ? folder : ".") + "/" + std::to_string(size);
}

std::string Content(const std::string& path)
{
    std::ifstream file(path, std::ios_base::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The keys of a catalog in an order far from that of the files, and as many that are not in it.
struct Questions {
    std::vector<std::string> keys;
    std::vector<std::string> missing;
};

const Questions& QuestionsOf(std::size_t size)
{
    static std::map<std::size_t, Questions> known;
    Questions& questions = known[size];
    if (!questions.keys.empty())
        return questions;
    const std::string image = Content(Folder(size) + "/texts.img");
    Dictionary dictionary;
    dictionary.LoadFromMemory(image.data(), image.size());
    class Collector : public Dictionary::EntryVisitor {
    public:
        explicit Collector(std::vector<std::string>& target) : target_(target) {}
        void Visit(std::string_view key, std::u16string_view) override
        {
            target_.emplace_back(key);
        }

    private:
        std::vector<std::string>& target_;
    };
    Collector collector(questions.keys);
    dictionary.VisitEntries(collector);
    std::shuffle(questions.keys.begin(), questions.keys.end(), std::mt19937(1));
    for (std::string key : questions.keys) {
        key.back() = '~';
        questions.missing.push_back(std::move(key));
    }
    return questions;
}

enum class Ask { kHits, kMisses };

// Asks one key an iteration, all keys in turn.
template <typename Lookup>
void AskInTurn(benchmark::State& state, Ask ask, Lookup lookup)
{
    const Questions& questions = QuestionsOf(static_cast<std::size_t>(state.range(0)));
    const std::vector<std::string>& keys = ask == Ask::kHits ? questions.keys : questions.missing;
    if (keys.empty()) {
        state.SkipWithError("no catalog: see make_catalogs.py");
        return;
    }
    if (lookup(keys.front().c_str()) != (ask == Ask::kHits)) {
        state.SkipWithError("the first answer is wrong");
        return;
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lookup(keys[next].c_str()));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}

const char* const kImage = "/texts.img";
const char* const kText = "/texts.dict";

std::unique_ptr<Dictionary> Loaded(benchmark::State& state, const char* name)
{
    const std::string content = Content(Folder(static_cast<std::size_t>(state.range(0))) + name);
    auto dictionary = std::make_unique<Dictionary>();
    dictionary->LoadFromMemory(content.data(), content.size());
    return dictionary;
}

void Raw(benchmark::State& state, const char* name, Ask ask)
{
    const auto dictionary = Loaded(state, name);
    AskInTurn(state, ask, [&](const char* key) {
        const char16_t* units = nullptr;
        std::size_t length = 0;
        return dictionary->RawLookup(key, units, length);
    });
}
BENCHMARK_CAPTURE(Raw, ImageHit, kImage, Ask::kHits)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK_CAPTURE(Raw, ImageMiss, kImage, Ask::kMisses)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK_CAPTURE(Raw, TextHit, kText, Ask::kHits)->RangeMultiplier(10)->Range(1000, 1000000);

void Full(benchmark::State& state, const char* name)
{
    const auto dictionary = Loaded(state, name);
    AskInTurn(state, Ask::kHits, [&](const char* key) {
        morvish::DictionaryString* const handle = morvish::LookupString(*dictionary, key);
        const bool found = handle->LengthUnits() > 0;
        morvish::ReleaseString(handle);
        return found;
    });
}
BENCHMARK_CAPTURE(Full, ImageHit, kImage)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK_CAPTURE(Full, TextHit, kText)->RangeMultiplier(10)->Range(1000, 1000000);

// Asks one key after the other, each when the first unit of the last text has come. What the handle
// adds is much less than what machines vary by from one moment to the next, so both kinds take
// turns in short rounds, and the medians count.
void WaitingHandle(benchmark::State& state, const char* name)
{
    constexpr std::size_t kRoundQuestions = 2000;
    constexpr std::size_t kRounds = 201;
    const auto dictionary = Loaded(state, name);
    const std::vector<std::string>& keys =
        QuestionsOf(static_cast<std::size_t>(state.range(0))).keys;
    if (keys.empty()) {
        state.SkipWithError("no catalog: see make_catalogs.py");
        return;
    }
    std::size_t nothing = 0;
    benchmark::DoNotOptimize(nothing);
    std::size_t next = 0;
    const auto nanosecondsOfOne = [&](auto lookup) {
        const std::clock_t start = std::clock();  // of the processor
        for (std::size_t i = 0; i < kRoundQuestions; ++i) {
            next += 1 + (lookup(keys[next].c_str()) & nothing);
            if (next >= keys.size())
                next -= keys.size();
        }
        return static_cast<double>(std::clock() - start) * 1e9 / CLOCKS_PER_SEC / kRoundQuestions;
    };
    const auto raw = [&](const char* key) -> std::size_t {
        const char16_t* units = nullptr;
        std::size_t length = 0;
        return dictionary->RawLookup(key, units, length) && length > 0 ? *units : 0;
    };
    const auto full = [&](const char* key) -> std::size_t {
        morvish::DictionaryString* const handle = morvish::LookupString(*dictionary, key);
        const std::size_t unit = handle->LengthUnits() > 0 ? *handle->Units() : 0;
        morvish::ReleaseString(handle);
        return unit;
    };
    const auto median = [](std::vector<double>& values) {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    };
    std::vector<double> raws;
    std::vector<double> fulls;
    std::vector<double> differences;
    for (auto _ : state) {
        for (std::size_t round = 0; round < kRounds; ++round) {
            // The first of a round finds the caches as the second of the last one left them.
            double rawTime = 0;
            if (round % 2 == 0)
                rawTime = nanosecondsOfOne(raw);
            const double fullTime = nanosecondsOfOne(full);
            if (round % 2 != 0)
                rawTime = nanosecondsOfOne(raw);
            raws.push_back(rawTime);
            fulls.push_back(fullTime);
            differences.push_back(fullTime - rawTime);
        }
    }
    state.counters["raw_ns"] = median(raws);
    state.counters["full_ns"] = median(fulls);
    state.counters["handle_ns"] = median(differences);
}
BENCHMARK_CAPTURE(WaitingHandle, Image, kImage)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WaitingHandle, Text, kText)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

std::size_t FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios_base::binary | std::ios_base::ate);
    return static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0));
}

// The bytes of all keys, and of all values: those of an image, where equal ones stand once, and
// those of a text.
struct TextBytes {
    std::size_t ofImage = 0;
    std::size_t ofText = 0;
};

TextBytes TextBytesOf(const Dictionary& dictionary)
{
    class Adder : public Dictionary::EntryVisitor {
    public:
        void Visit(std::string_view key, std::u16string_view value) override
        {
            const std::size_t valueBytes = value.size() * sizeof(char16_t);
            bytes.ofText += key.size() + valueBytes;
            bytes.ofImage += key.size() + (seen_.insert(value).second ? valueBytes : 0);
        }
        TextBytes bytes;

    private:
        std::unordered_set<std::u16string_view> seen_;
    };
    Adder adder;
    dictionary.VisitEntries(adder);
    return adder.bytes;
}

// What dictionaries take, on the disk and in memory, and how often they allocate.
void Footprint(benchmark::State& state)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    const Questions& questions = QuestionsOf(size);
    const auto image = Loaded(state, kImage);
    const auto text = Loaded(state, kText);
    if (questions.keys.empty() || image->EntryCount() != text->EntryCount()) {
        state.SkipWithError("no catalog: see make_catalogs.py");
        return;
    }
    const auto count = static_cast<double>(image->EntryCount());
    const TextBytes texts = TextBytesOf(*text);
    std::size_t rawAllocations = 0;
    std::size_t fullAllocations = 0;
    for (auto _ : state) {
        rawAllocations = allocations;
        for (const std::string& key : questions.keys) {
            const char16_t* units = nullptr;
            std::size_t length = 0;
            for (const Dictionary* const dictionary : {image.get(), text.get()})
                benchmark::DoNotOptimize(dictionary->RawLookup(key.c_str(), units, length));
        }
        rawAllocations = allocations - rawAllocations;
        fullAllocations = allocations;
        for (const std::string& key : questions.keys) {
            for (const Dictionary* const dictionary : {image.get(), text.get()})
                morvish::ReleaseString(morvish::LookupString(*dictionary, key.c_str()));
        }
        fullAllocations = allocations - fullAllocations;
    }
    state.counters["allocations_of_raw"] = static_cast<double>(rawAllocations) / (2 * count);
    state.counters["allocations_of_full"] = static_cast<double>(fullAllocations) / (2 * count);
    state.counters["image_bytes_of_entry"] =
        (static_cast<double>(image->BinaryStoreBytes()) - static_cast<double>(texts.ofImage)) /
        count;
    state.counters["text_bytes_of_entry"] =
        (static_cast<double>(text->TextStoreBytes()) - static_cast<double>(texts.ofText)) / count;
    state.counters["image_size_of_icu"] =
        static_cast<double>(FileBytes(Folder(size) + kImage)) /
        static_cast<double>(FileBytes(Folder(size) + "/root.res"));
}
BENCHMARK(Footprint)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

struct BundleDeleter {
    void operator()(UResourceBundle* bundle) const { ures_close(bundle); }
};
using Bundle = std::unique_ptr<UResourceBundle, BundleDeleter>;

Bundle OpenBundle(std::size_t size)
{
    UErrorCode error = U_ZERO_ERROR;
    return Bundle(ures_openDirect(Folder(size).c_str(), "root", &error));
}

bool AskBundle(const Bundle& bundle, const char* key)
{
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    benchmark::DoNotOptimize(ures_getStringByKey(bundle.get(), key, &length, &error));
    return U_SUCCESS(error);
}

void Icu(benchmark::State& state, Ask ask)
{
    const Bundle bundle = OpenBundle(static_cast<std::size_t>(state.range(0)));
    AskInTurn(state, ask, [&](const char* key) { return AskBundle(bundle, key); });
}
BENCHMARK_CAPTURE(Icu, Hit, Ask::kHits)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK_CAPTURE(Icu, Miss, Ask::kMisses)->RangeMultiplier(10)->Range(1000, 1000000);

void Gettext(benchmark::State& state)
{
    // gettext answers in languages only, and "C" is none.
    setenv("LANGUAGE", "", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    // A domain is bound once.
    const std::string domain = "texts";
    bindtextdomain(domain.c_str(), Folder(static_cast<std::size_t>(state.range(0))).c_str());
    AskInTurn(state, Ask::kHits,
              [&](const char* key) { return dgettext(domain.c_str(), key) != key; });
}
BENCHMARK(Gettext)->RangeMultiplier(10)->Range(1000, 1000000);

void UnorderedMap(benchmark::State& state)
{
    const Questions& questions = QuestionsOf(static_cast<std::size_t>(state.range(0)));
    std::unordered_map<std::string, std::u16string> map;
    for (const std::string& key : questions.keys)
        map.emplace(key, u"The text of a control");
    // The keys are strings already: making one of each would be measured too.
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(questions.keys[next]));
        next = next + 1 == questions.keys.size() ? 0 : next + 1;
    }
}
BENCHMARK(UnorderedMap)->RangeMultiplier(10)->Range(1000, 1000000);

void Load(benchmark::State& state, const char* name)
{
    const std::string content = Content(Folder(static_cast<std::size_t>(state.range(0))) + name);
    for (auto _ : state) {
        Dictionary dictionary;
        dictionary.LoadFromMemory(content.data(), content.size());
        benchmark::DoNotOptimize(dictionary.EntryCount());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(content.size()) * state.iterations());
}
BENCHMARK_CAPTURE(Load, Image, kImage)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, Text, kText)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);

// What memory itself allows: an image's bytes, copied to where nothing was before.
void CopyImage(benchmark::State& state)
{
    const std::string content = Content(Folder(static_cast<std::size_t>(state.range(0))) + kImage);
    for (auto _ : state) {
        const auto copy = std::make_unique_for_overwrite<char[]>(content.size());
        std::copy(content.begin(), content.end(), copy.get());
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(content.size()) * state.iterations());
}
BENCHMARK(CopyImage)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);

// From the file to the last answer.
void LoadAndAskImage(benchmark::State& state)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    const Questions& questions = QuestionsOf(size);
    for (auto _ : state) {
        const std::string content = Content(Folder(size) + kImage);
        Dictionary dictionary;
        dictionary.LoadFromMemory(content.data(), content.size());
        for (const std::string& key : questions.keys) {
            const char16_t* units = nullptr;
            std::size_t length = 0;
            benchmark::DoNotOptimize(dictionary.RawLookup(key.c_str(), units, length));
        }
    }
}
BENCHMARK(LoadAndAskImage)->Arg(100000)->Unit(benchmark::kMillisecond);

void LoadAndAskIcu(benchmark::State& state)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    const Questions& questions = QuestionsOf(size);
    for (auto _ : state) {
        {
            const Bundle bundle = OpenBundle(size);
            for (const std::string& key : questions.keys)
                AskBundle(bundle, key.c_str());
        }
        u_cleanup();  // or it keeps the file open
    }
}
BENCHMARK(LoadAndAskIcu)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
