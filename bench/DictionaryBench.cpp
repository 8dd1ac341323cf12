// Loading dictionaries and asking them, against GNU gettext, ICU and std::unordered_map over the
// same texts: catalogs of real translations, made by make_catalogs.py.
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
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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

void Full(benchmark::State& state)
{
    const auto dictionary = Loaded(state, kImage);
    AskInTurn(state, Ask::kHits, [&](const char* key) {
        morvish::DictionaryString* const handle = morvish::LookupString(*dictionary, key);
        const bool found = handle->LengthUnits() > 0;
        morvish::ReleaseString(handle);
        return found;
    });
}
BENCHMARK(Full)->RangeMultiplier(10)->Range(1000, 1000000);

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
