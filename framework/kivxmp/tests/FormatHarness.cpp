#include "framework/kivxmp/tests/FormatHarness.h"

#include <gtest/gtest.h>

#include "framework/kivxmp/src/PacketDigest.h"

namespace kivxmp::test {

using photo::ByteRange;
using photo::CheckCopy;
using photo::MemorySource;
using photo::PacketParts;
using photo::PhotoError;
using photo::PhotoFormat;
using photo::SavePlan;

namespace {

std::string Apply(std::string_view bytes, const SavePlan& plan)
{
    std::string saved;
    photo::ApplyPlan(
        plan, bytes.size(),
        [&](ByteRange range) { saved += bytes.substr(range.offset, range.bytes); },
        [&](std::string_view fresh) { saved += fresh; });
    return saved;
}

}  // namespace

std::unique_ptr<PhotoFormat> FormatHarness::Read(std::string_view bytes,
                                                 const std::string& digest) const
{
    // A block of exactly the file's size: a sanitizer sees any step behind it.
    const std::unique_ptr<char[]> block(new char[bytes.size()]);
    bytes.copy(block.get(), bytes.size());
    MemorySource source(std::string_view(block.get(), bytes.size()));
    std::unique_ptr<PhotoFormat> format = reader_(source);
    if (!digest.empty()) {
        format->TakeExtended(digest, source);
    }
    return format;
}

std::string FormatHarness::Save(std::string_view bytes, const PacketParts& packet,
                                const std::string& digest) const
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes, digest);
    try {
        const SavePlan plan = format->Plan(packet);
        const std::string saved = Apply(bytes, plan);
        MemorySource before(bytes);
        MemorySource after(saved);
        const std::unique_ptr<PhotoFormat> savedFormat =
            Read(saved, packet.extended.empty() ? "" : photo::PacketDigest(packet.extended));
        CheckCopy(before, *format, plan, after, *savedFormat);
        EXPECT_FALSE(savedFormat->Refusal());
        EXPECT_EQ(savedFormat->Packets().size(), 1u);
        EXPECT_TRUE(savedFormat->ReadPacket(0, after) == packet.main);
        return saved;
    } catch (const PhotoError& error) {
        return error.what();
    }
}

std::string FormatHarness::Packet(std::string_view bytes) const
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    if (format->Packets().empty()) {
        return "-";
    }
    MemorySource source(bytes);
    try {
        return format->ReadPacket(0, source);
    } catch (const PhotoError& error) {
        return error.what();
    }
}

std::string FormatHarness::Refusal(std::string_view bytes) const
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    return format->Refusal() ? format->Refusal()->what() : "";
}

void FormatHarness::ExpectPlaces(std::span<const PlaceCase> rows) const
{
    for (const PlaceCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Refusal(row.before), "");
        EXPECT_EQ(Packet(row.before), row.packet);
        EXPECT_TRUE(Save(row.before, "new") == row.after);
        EXPECT_EQ(Packet(row.after), "new");
        EXPECT_TRUE(Save(row.after, "new") == row.after);
        EXPECT_TRUE(Save(Save(row.after, "a longer packet"), "new") == row.after);
    }
}

void FormatHarness::ExpectRefusals(std::span<const RefusalCase> rows, std::string_view packet) const
{
    for (const RefusalCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Refusal(row.bytes), row.reason);
        EXPECT_EQ(Packet(row.bytes), row.packet);
        EXPECT_EQ(Save(row.bytes, packet), row.reason);
    }
}

void FormatHarness::ExpectEveryByteIsChecked(std::string_view bytes, std::string_view packet) const
{
    MemorySource original(bytes);
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    const SavePlan plan = format->Plan({std::string(packet), ""});
    const std::string saved = Apply(bytes, plan);
    const auto passes = [&](std::string_view copy) {
        MemorySource written(copy);
        try {
            CheckCopy(original, *format, plan, written, *reader_(written));
            return true;
        } catch (const PhotoError&) {
            return false;
        }
    };
    EXPECT_TRUE(passes(saved));
    for (std::size_t at = 0; at < saved.size(); ++at) {
        std::string damaged = saved;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x01);
        EXPECT_FALSE(passes(damaged)) << at;
        EXPECT_FALSE(passes(std::string_view(saved).substr(0, at))) << at;
    }
    EXPECT_FALSE(passes(saved + "x"));

    // A plan that does harm is seen as well, though the copy follows it: one byte of any place that
    // is neither the packet's nor points past it, and one byte put in between.
    MemorySource source(bytes);
    for (std::size_t at = 0; at <= bytes.size(); ++at) {
        for (const std::uint64_t replaced : {1u, 0u}) {
            SavePlan harmful = plan;
            harmful.push_back({{at, replaced}, "x"});
            photo::SortPlan(harmful);
            bool overlaps = at + replaced > bytes.size();
            for (std::size_t i = 1; i < harmful.size(); ++i) {
                overlaps = overlaps || harmful[i].replaced.offset < harmful[i - 1].replaced.End() ||
                           harmful[i].replaced.offset == harmful[i - 1].replaced.offset;
            }
            const bool isAppended = at == bytes.size();
            bool isOwn = false;
            for (const ByteRange& range : format->Changeable()) {
                isOwn = isOwn || (at >= range.offset && at + replaced <= range.End());
            }
            if (overlaps || isAppended || isOwn) {
                continue;
            }
            const std::string copy = Apply(bytes, harmful);
            MemorySource written(copy);
            EXPECT_THROW(CheckCopy(source, *format, harmful, written, *reader_(written)),
                         PhotoError)
                << at << " " << replaced;
        }
    }
}

}  // namespace kivxmp::test
