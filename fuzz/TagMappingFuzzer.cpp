// Any tags with any values through the mapping: what comes out can stand in a packet.

#include <kivcore/StringConversion.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/TagMapping.h"
#include "framework/kivxmp/src/TagValue.h"

namespace {

using namespace kivxmp::photo;

void Require(bool holds)
{
    if (!holds) {
        __builtin_trap();
    }
}

bool CanStandInPackets(std::string_view text)
{
    return !text.empty() && kivcore::string::IsWellFormedUTF8(text) &&
           std::none_of(text.begin(), text.end(), [](char c) {
               return static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t';
           });
}

/// Tags that the rows of the table look at besides their own.
constexpr std::string_view kFurtherTags[] = {
    "Exif.Photo.SubSecTimeOriginal",     "Exif.Photo.OffsetTimeOriginal",
    "Exif.GPSInfo.GPSLatitudeRef",       "Exif.GPSInfo.GPSLongitudeRef",
    "Exif.GPSInfo.GPSDateStamp",         "Exif.Image.NewSubfileType",
    "Iptc.Envelope.CharacterSet",        "Iptc.Application2.TimeCreated",
    "Iptc.Application2.DigitizationTime"};

std::string_view NameOf(std::size_t number)
{
    static const std::vector<MappingRow>& rows = *new std::vector<MappingRow>(MappingRows());
    const std::size_t at = number % (rows.size() + std::size(kFurtherTags));
    return at < rows.size() ? rows[at].tag : kFurtherTags[at - rows.size()];
}

}  // namespace

/// The first byte gives the byte order. For each tag: a byte for its name, one for the kind (odd:
/// numbers) and length of its value, the value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    TagList exif;
    exif.order = (data[0] & 1) != 0 ? ByteOrder::kBig : ByteOrder::kLittle;
    TagList iim;
    std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    while (rest.size() > 2) {
        TagValue tag;
        tag.name = NameOf(static_cast<unsigned char>(rest[0]));
        const auto kind = static_cast<unsigned char>(rest[1]);
        std::string_view value = rest.substr(2, kind / 2);
        rest.remove_prefix(2 + value.size());
        if (kind % 2 == 0) {
            tag.bytes = value;
        }
        for (; kind % 2 == 1 && value.size() >= 8; value.remove_prefix(8)) {
            // Both halves as signed numbers of 32 bits, or as unsigned ones.
            const auto half = [&](std::size_t at) {
                const std::uint64_t number = GetNumber(value, at, 4, ByteOrder::kBig);
                return (data[0] & 2) != 0 ? static_cast<std::int64_t>(number)
                                          : static_cast<std::int32_t>(number);
            };
            tag.numbers.push_back({half(0), half(4)});
        }
        (tag.name.starts_with("Iptc.") ? iim : exif).values.push_back(std::move(tag));
    }

    std::set<std::pair<std::string_view, std::string_view>> seen;
    for (const MappedProperty& property : MapTags(exif, iim)) {
        Require(seen.insert({property.prefix, property.name}).second);
        Require(property.isIim == property.tag.starts_with("Iptc."));
        Require(property.texts.empty() == (property.form == MappedForm::kFields));
        Require(property.fields.empty() != (property.form == MappedForm::kFields));
        Require(std::all_of(property.texts.begin(), property.texts.end(), CanStandInPackets));
    }
    return 0;
}
