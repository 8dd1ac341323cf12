// Parsing SVG: sets of icons and a path of 10 MB against librsvg, and against RapidXML alone plus
// the numbers of the paths; and how the time for one item grows with the size of a document.
//
// usage: KIV_BENCH_ARTWORK=FOLDER SvgParseBench

#include "bench/SvgCorpora.h"
#include "bench/SvgFamilies.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/RapidXML.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace rapidxml = SVGLoom::xml::rapidxml;

void Parse(const std::string& text)
{
    benchmark::DoNotOptimize(
        SVGLoom::CreateDocument(text, std::make_shared<SVGLoom::ScrivelSVGRenderer>()));
}

// The least that a parser has to do: the XML, and the numbers of its paths.
void ParseFloor(const std::string& text)
{
    std::string copy = text;
    auto document = std::make_unique<rapidxml::xml_document<char>>();
    document->parse<rapidxml::parse_validate_closing_tags | rapidxml::parse_no_data_nodes>(
        copy.data());
    float sum = 0;
    std::vector<const rapidxml::xml_node<char>*> open = {document->first_node()};
    while (!open.empty()) {
        const rapidxml::xml_node<char>* const node = open.back();
        open.pop_back();
        if (node == nullptr) {
            continue;
        }
        open.push_back(node->next_sibling());
        open.push_back(node->first_node());
        if (const auto* const data = node->first_attribute("d")) {
            const char* current = data->value();
            const char* const end = current + data->value_size();
            const auto isNumber = [](char c) {
                return SVGLoom::IsDigit(c) || c == '.' || c == '-';
            };
            while ((current = std::find_if(current, end, isNumber)) != end) {
                float number = 0;
                if (!SVGLoom::ReadNumber(current, end, number)) {
                    break;
                }
                sum += number;
            }
        }
    }
    benchmark::DoNotOptimize(sum);
}

// Times of one document in microseconds, and how many times faster than librsvg it went.
void Report(benchmark::State& state, const std::vector<double>& seconds, std::size_t documents)
{
    const double microseconds = 1e6 / static_cast<double>(documents);
    state.counters["us"] = seconds[0] * microseconds;
    state.counters["librsvg_us"] = seconds[1] * microseconds;
    state.counters["floor_us"] = seconds[2] * microseconds;
    state.counters["times_librsvg"] = seconds[1] / seconds[0];
    state.counters["floor_times_librsvg"] = seconds[1] / seconds[2];
}

void ParseCorpus(benchmark::State& state, const std::string& name)
{
    const std::vector<std::string> texts = bench::LoadCorpus(state, name);
    if (texts.empty()) {
        return;
    }
    for (const std::string& text : texts) {
        if (bench::ParseWithRsvg(text) == nullptr) {
            state.SkipWithError("librsvg refuses a picture");
            return;
        }
    }
    const auto all = [&texts](const auto& parse) {
        return [&texts, parse] {
            for (const std::string& text : texts) {
                parse(text);
            }
        };
    };
    for (auto _ : state) {
        constexpr int kRounds = 9;
        Report(
            state,
            bench::MediansInTurn(kRounds, {all(Parse), all([](const std::string& text) {
                                               benchmark::DoNotOptimize(bench::ParseWithRsvg(text));
                                           }),
                                           all(ParseFloor)}),
            texts.size());
    }
}

// Documents of this size have to be allowed.
bool ParseLargeWithRsvg(const std::string& text)
{
    const bench::RsvgDocument handle(rsvg_handle_new_with_flags(RSVG_HANDLE_FLAG_UNLIMITED));
    GInputStream* const stream =
        g_memory_input_stream_new_from_data(text.data(), static_cast<gssize>(text.size()), nullptr);
    const bool read = rsvg_handle_read_stream_sync(handle.get(), stream, nullptr, nullptr) != 0;
    g_object_unref(stream);
    return read;
}

void ParseLongPath(benchmark::State& state)
{
    constexpr std::size_t kBytes = 10 * 1000 * 1000;
    std::string data = bench::PathData(400000);
    data.resize(std::min(data.size(), kBytes));
    const std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\"><path d=\"" + data + "\"/></svg>";
    if (data.size() != kBytes || !ParseLargeWithRsvg(text)) {
        state.SkipWithError("the path cannot be compared");
        return;
    }
    for (auto _ : state) {
        constexpr int kRounds = 9;
        Report(state,
               bench::MediansInTurn(
                   kRounds, {[&text] { Parse(text); }, [&text] { ParseLargeWithRsvg(text); },
                             [&text] { ParseFloor(text); }}),
               1);
    }
}

// Small documents are parsed more often, so that all sizes are measured alike.
double SecondsOfItem(std::size_t family, std::size_t count)
{
    constexpr std::size_t kItems = 1000000;
    constexpr int kRounds = 3;
    const std::string text = bench::FamilyText(family, count);
    const std::size_t times = std::max<std::size_t>(kItems / 4 / count, 1);
    const double seconds = bench::MediansInTurn(kRounds, {[&text, times] {
                                                    for (std::size_t i = 0; i < times; ++i) {
                                                        Parse(text);
                                                    }
                                                }})[0];
    return seconds / static_cast<double>(times * count);
}

void ParseFamily(benchmark::State& state, std::size_t family)
{
    for (auto _ : state) {
        state.counters["ns_of_item"] =
            1e9 * SecondsOfItem(family, static_cast<std::size_t>(state.range(0)));
    }
}

}  // namespace

int main(int argc, char** argv)
{
    for (const char* const name : bench::kCorpusNames) {
        benchmark::RegisterBenchmark((std::string("SvgParse/") + name).c_str(), ParseCorpus, name)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("SvgParse/LongPath", ParseLongPath)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    bench::RegisterFamilies("SvgFamily/", ParseFamily);
    return bench::RunRegistered(argc, argv);
}
