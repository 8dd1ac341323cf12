// The only source that knows Exiv2. Just two of its decoders are used, on memory: it opens no file,
// starts no XMP toolkit, prints nothing and writes nothing.

#include "framework/kivxmp/src/ExifIimReader.h"

#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/iptc.hpp>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/IimBlock.h"

#include <kivcore/Trace.h>

namespace kivxmp::photo {

namespace {

constexpr std::size_t kMaxNumbers = 64;
constexpr unsigned kApplicationRecord = 2;
constexpr std::size_t kTimeBytes = 6;  // HHMMSS, without a zone

/// Keeps Exiv2 from speaking: left to itself it writes to standard error. Its settings are the
/// process's own, which may use Exiv2 besides.
class QuietLog {
public:
    QuietLog() { Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute); }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
    ~QuietLog()
    {
        Exiv2::LogMsg::setLevel(level_);
        Exiv2::LogMsg::setHandler(handler_);
    }

private:
    Exiv2::LogMsg::Level level_ = Exiv2::LogMsg::level();
    Exiv2::LogMsg::Handler handler_ = Exiv2::LogMsg::handler();
};

/// Runs `read`; whatever it throws ends there.
template <class Read>
void RunContained(const char* what, const Read& read) noexcept
{
    static constinit kivcore::debug::TraceSite site("kivxmp", 1);
    try {
        const QuietLog quiet;
        read();
    } catch (const std::exception& error) {
        site.Report(std::string(what) + " cannot be read: " + error.what());
    } catch (...) {
        site.Report(std::string(what) + " cannot be read");
    }
}

struct NumberType {
    Exiv2::TypeId type;
    std::size_t bytes;
    bool isSigned;
    bool isRatio;  // two numbers
};

constexpr NumberType kNumberTypes[] = {
    {Exiv2::unsignedShort, 2, false, false},   {Exiv2::signedShort, 2, true, false},
    {Exiv2::unsignedLong, 4, false, false},    {Exiv2::signedLong, 4, true, false},
    {Exiv2::unsignedRational, 4, false, true}, {Exiv2::signedRational, 4, true, true},
    {Exiv2::tiffIfd, 4, false, false},
};

const NumberType* FindNumberType(Exiv2::TypeId type)
{
    for (const NumberType& row : kNumberTypes) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

bool HasBytesAsTheyAre(Exiv2::TypeId type)
{
    switch (type) {
        case Exiv2::unsignedByte:
        case Exiv2::signedByte:
        case Exiv2::asciiString:
        case Exiv2::undefined:
        case Exiv2::comment:
        case Exiv2::string:
        case Exiv2::date:
        case Exiv2::time:
            return true;
        default:
            return false;
    }
}

std::int64_t NumberAt(std::string_view bytes, std::size_t at, const NumberType& type)
{
    const auto value =
        static_cast<std::int64_t>(GetNumber(bytes, at, type.bytes, ByteOrder::kLittle));
    const std::int64_t range = std::int64_t{1} << (8 * type.bytes);
    return type.isSigned && value >= range / 2 ? value - range : value;
}

std::vector<Ratio> NumbersOf(std::string_view bytes, const NumberType& type)
{
    const std::size_t step = type.bytes * (type.isRatio ? 2 : 1);
    std::vector<Ratio> numbers;
    for (std::size_t at = 0; at + step <= bytes.size() && numbers.size() < kMaxNumbers;
         at += step) {
        numbers.push_back(
            {NumberAt(bytes, at, type), type.isRatio ? NumberAt(bytes, at + type.bytes, type) : 1});
    }
    return numbers;
}

/// `order` is that of the data: texts are to come as they stand there.
std::string BytesOf(const Exiv2::Metadatum& datum, Exiv2::ByteOrder order)
{
    std::string bytes(static_cast<std::size_t>(datum.size()), '\0');
    const auto copied = datum.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), order);
    bytes.resize(static_cast<std::size_t>(copied));
    return bytes;
}

template <class Data>
void AddTags(const Data& data, Exiv2::ByteOrder order, TagFilter isWanted, TagList& tags)
{
    for (const auto& datum : data) {
        const Exiv2::TypeId type = datum.typeId();
        const NumberType* const numberType = FindNumberType(type);
        if ((numberType == nullptr && !HasBytesAsTheyAre(type)) || datum.size() <= 0 ||
            static_cast<std::size_t>(datum.size()) > kTagBytesLimit) {
            continue;
        }
        TagValue tag;
        tag.name = datum.key();
        if (!isWanted(tag.name)) {
            continue;
        }
        if (numberType != nullptr) {
            tag.numbers = NumbersOf(BytesOf(datum, Exiv2::littleEndian), *numberType);
        } else {
            tag.bytes = BytesOf(datum, order);
        }
        tags.values.push_back(std::move(tag));
    }
}

}  // namespace

TagList ReadExifTags(std::string_view tiff, TagFilter isWanted)
{
    TagList tags;
    constexpr std::size_t kHeaderBytes = 8;
    if (tiff.size() < kHeaderBytes) {
        return tags;
    }
    RunContained("Exif data", [&] {
        Exiv2::ExifData data;
        const Exiv2::ByteOrder order =
            Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte*>(tiff.data()),
                                      static_cast<std::uint32_t>(tiff.size()));
        tags.order = order == Exiv2::bigEndian ? ByteOrder::kBig : ByteOrder::kLittle;
        AddTags(data, order, isWanted, tags);
    });
    return tags;
}

TagList ReadIimTags(std::string_view iim, TagFilter isWanted)
{
    TagList tags;
    tags.order = ByteOrder::kBig;
    if (iim.empty()) {
        return tags;
    }
    RunContained("IIM data", [&] {
        Exiv2::IptcData data;
        Exiv2::IptcParser::decode(data, reinterpret_cast<const Exiv2::byte*>(iim.data()),
                                  static_cast<std::uint32_t>(iim.size()));
        AddTags(data, Exiv2::bigEndian, isWanted, tags);
    });
    // Exiv2 makes Greenwich time of a time without a zone.
    const std::pair<std::string_view, unsigned> times[] = {
        {"Iptc.Application2.TimeCreated", 60}, {"Iptc.Application2.DigitizationTime", 63}};
    for (TagValue& tag : tags.values) {
        for (const auto& [name, number] : times) {
            if (tag.name == name &&
                FirstDataset(iim, kApplicationRecord, number).size() == kTimeBytes) {
                tag.bytes.resize(kTimeBytes);
            }
        }
    }
    return tags;
}

}  // namespace kivxmp::photo
