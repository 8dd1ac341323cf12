// Reading and writing XMP packets, against bare Expat over the same bytes.

#include <benchmark/benchmark.h>

#include "framework/kivxmp/tests/PartFamilies.h"

#include <expat.h>
#include <kivxmp/XMPMeta.h>

#include <iterator>
#include <memory>
#include <string>

namespace {

std::string Packet(int properties)
{
    std::string packet =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
        " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
        "  <rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
        " xmlns:ex=\"http://example.org/ns/\">\n"
        "   <dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>\n";
    for (int i = 0; i < properties; ++i) {
        const std::string name = "ex:p" + std::to_string(i);
        packet +=
            "   <" + name + ">The value of property " + std::to_string(i) + "</" + name + ">\n";
    }
    return packet + "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n" + std::string(2048, ' ') +
           "<?xpacket end=\"w\"?>";
}

void Count(benchmark::State& state, const std::string& packet)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(packet.size()) * state.iterations());
}

void BareExpat(benchmark::State& state)
{
    const std::string packet = Packet(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
            XML_ParserCreate(nullptr), &XML_ParserFree);
        XML_SetElementHandler(
            parser.get(), [](void*, const char*, const char**) {}, [](void*, const char*) {});
        XML_SetCharacterDataHandler(parser.get(), [](void*, const char*, int) {});
        benchmark::DoNotOptimize(
            XML_Parse(parser.get(), packet.data(), static_cast<int>(packet.size()), 1));
    }
    Count(state, packet);
}
BENCHMARK(BareExpat)->Arg(30)->Arg(10000)->Unit(benchmark::kMicrosecond);

void Parse(benchmark::State& state)
{
    const std::string packet = Packet(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(__XMPMeta__::Parse(packet));
    }
    Count(state, packet);
}
BENCHMARK(Parse)->Arg(30)->Arg(10000)->Unit(benchmark::kMicrosecond);

void SerializeChanged(benchmark::State& state)
{
    const std::string packet = Packet(static_cast<int>(state.range(0)));
    const auto meta = __XMPMeta__::Parse(packet);
    meta->SetText("dc:title[@x-default]", "Changed");
    for (auto _ : state) {
        benchmark::DoNotOptimize(meta->Serialize());
    }
    Count(state, packet);
}
BENCHMARK(SerializeChanged)->Arg(30)->Arg(10000)->Unit(benchmark::kMicrosecond);

void Family(benchmark::State& state)
{
    using namespace kivxmp::testing;
    const PartFamily& family = kPartFamilies[state.range(0)];
    const std::string packet = PacketOfParts(family, static_cast<std::size_t>(state.range(1)));
    state.SetLabel(family.about);
    for (auto _ : state) {
        ReadChangeAndCompare(packet);
    }
}
BENCHMARK(Family)
    ->ArgsProduct({benchmark::CreateDenseRange(0, std::size(kivxmp::testing::kPartFamilies) - 1, 1),
                   {2000, 16000}})
    ->Unit(benchmark::kMillisecond);

void ManyEdits(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            kivxmp::testing::EditEveryItem(static_cast<std::size_t>(state.range(0))));
    }
}
BENCHMARK(ManyEdits)->Arg(2000)->Arg(16000)->Unit(benchmark::kMillisecond);

void ManyNamespaces(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            kivxmp::testing::SetManyProperties(static_cast<std::size_t>(state.range(0))));
    }
}
BENCHMARK(ManyNamespaces)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
