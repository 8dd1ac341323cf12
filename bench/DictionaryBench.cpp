// Loading a text dictionary and asking it, against std::unordered_map over the same keys.

#include <benchmark/benchmark.h>

#include "dictionary/Dictionary.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace {

std::string Key(std::size_t number)
{
    return "$$$/Application/Panel" + std::to_string(number % 97) + "/Control" +
           std::to_string(number);
}

std::string Text(std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "\"" + Key(i) + "=The text of control number " + std::to_string(i) + "\"\n";
    }
    return text;
}

void LoadText(benchmark::State& state)
{
    const std::string text = Text(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        morvish::Dictionary dictionary;
        dictionary.LoadFromMemory(text.data(), text.size());
        benchmark::DoNotOptimize(dictionary.EntryCount());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(LoadText)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);

std::vector<std::string> Questions(std::size_t count)
{
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < count; ++i) {
        keys.push_back(Key((i * 7919) % count));  // every key, far from the order of loading
    }
    return keys;
}

void RawLookup(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::string text = Text(count);
    const std::vector<std::string> keys = Questions(count);
    morvish::Dictionary dictionary;
    dictionary.LoadFromMemory(text.data(), text.size());
    std::size_t next = 0;
    for (auto _ : state) {
        const char16_t* units = nullptr;
        std::size_t length = 0;
        benchmark::DoNotOptimize(dictionary.RawLookup(keys[next].c_str(), units, length));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}
BENCHMARK(RawLookup)->RangeMultiplier(10)->Range(1000, 1000000);

void UnorderedMap(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<std::string> keys = Questions(count);
    std::unordered_map<std::string, std::u16string> map;
    for (const std::string& key : keys) {
        map.emplace(key, u"The text of a control");
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(keys[next]));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}
BENCHMARK(UnorderedMap)->RangeMultiplier(10)->Range(1000, 1000000);

}  // namespace

BENCHMARK_MAIN();
