// Reading and writing of binary dictionaries:
//
//     magic 21, major version 1, minor version 1, store flag 1,
//     byte order 1 (0 little, 1 big; from version 2.1 on),
//     header text length 4, header text,
//     store image (StoreTables.cpp)

#include "dictionary/Dictionary.h"

#include "dictionary/ByteSink.h"
#include "dictionary/ImageSource.h"
#include "dictionary/StoreImageWriter.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <utility>

namespace morvish {

using morvish_private::ByteOrder;
using morvish_private::ByteSink;
using morvish_private::FastArray;
using morvish_private::ImageSource;
using morvish_private::StoreImageWriter;
using morvish_private::WrittenEntry;

namespace {

constexpr std::string_view kDefaultHeaderText = "en_US";
constexpr std::uint16_t kByteOrderMark = 0xFEFF;

// The two image modes of the numbered entry.
bool IsImageMode(std::int32_t mode)
{
    return mode == 0 || mode == 3;
}

// What the stream throws ends the writing and is told where the program's errors go.
template <typename Write>
std::uint64_t WriteGuarded(std::ostream& out, ByteOrder order, Write write)
{
    ByteSink sink(out, order);
    try {
        write(sink);
        sink.Flush();
    } catch (...) {
        std::cerr << "Serialize2"
                  << ": Caught exception\n";
    }
    return sink.WrittenBytes();
}

}  // namespace

void Dictionary::LoadImage(ImageSource& source, HeaderTextAtEnd atEnd)
{
    std::array<char, kImageMagic.size()> magic{};
    std::int8_t major = 0;
    std::int8_t minor = 0;
    std::uint8_t storeFlag = 0;
    std::uint8_t bigEndian = 0;
    bool complete = source.Read(magic.data(), magic.size()) && source.Read(&major, 1) &&
                    source.Read(&minor, 1) && source.Read(&storeFlag, 1);
    if (complete && major >= kImageMajor && minor >= 1)
        complete = source.Read(&bigEndian, 1);
    if (!complete) {
        valid_ = false;
        return;
    }
    if (major != kImageMajor || minor < 0) {
        // The two layouts of version 1 count as broken, because no file in them is known; any other
        // version is none of our business.
        if (major == 1 && (minor == 0 || minor == 5))
            valid_ = false;
        return;
    }

    const ByteOrder order = (bigEndian & 1) != 0 ? ByteOrder::kBig : ByteOrder::kLittle;
    std::array<unsigned char, 4> lengthBytes{};
    if (!source.Read(lengthBytes.data(), lengthBytes.size())) {
        valid_ = false;
        return;
    }
    const bool skipsText = atEnd == HeaderTextAtEnd::kSkip && source.LeftBytes() == 0;
    if (!skipsText && !ReadHeaderText(source, morvish_private::Load32(lengthBytes.data(), order))) {
        valid_ = false;
        return;
    }
    if (!binaryStore_->Load(source, storeFlag, order)) {
        valid_ = false;
        return;
    }
    majorVersion_ = kImageMajor;
    minorVersion_ = kImageMinor;
}

bool Dictionary::ReadHeaderText(ImageSource& source, std::uint32_t lengthBytes)
{
    if (lengthBytes > source.LeftBytes())
        return false;
    auto text = std::make_unique<char[]>(std::size_t{lengthBytes} + 1);
    if (!source.Read(text.get(), lengthBytes))
        return false;
    headerText_ = std::move(text);
    return true;
}

void Dictionary::SetHeaderText(const std::string& text)
{
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    headerText_ = std::move(copy);
}

std::uint64_t Dictionary::Serialize(std::ostream& out, std::int32_t mode, bool storeFlag,
                                    ByteOrder order) const
{
    return IsImageMode(mode) ? WriteImage(out, storeFlag, order) : WriteTextExport(out, order);
}

std::uint64_t Dictionary::SerializeLittleEndian(std::ostream& out, bool asImage,
                                                bool storeFlag) const
{
    return asImage ? WriteImage(out, storeFlag, ByteOrder::kLittle)
                   : WriteTextExport(out, ByteOrder::kLittle);
}

std::vector<WrittenEntry> Dictionary::WrittenEntries() const
{
    std::vector<WrittenEntry> entries;
    entries.reserve(EntryCount());
    if (IsBinary()) {
        if (binaryStore_->WrittenLayout() == FastArray::Layout::kMixed)
            throw std::length_error(
                "dictionary: entries with and without keys cannot be written together");
        for (const std::uint32_t index : binaryStore_->WrittenOrder())
            entries.push_back({binaryStore_->Key(index), binaryStore_->RawValue(index).View()});
        return entries;
    }
    class Collector : public EntryVisitor {
    public:
        explicit Collector(std::vector<WrittenEntry>& target) : target_(target) {}
        void Visit(std::string_view key, std::u16string_view value) override
        {
            target_.push_back({key, value});
        }

    private:
        std::vector<WrittenEntry>& target_;
    };
    Collector collector(entries);
    VisitEntries(collector);
    return entries;
}

std::uint64_t Dictionary::WriteImage(std::ostream& out, bool storeFlag, ByteOrder order) const
{
    const bool plain = IsBinary() && binaryStore_->WrittenLayout() == FastArray::Layout::kPlain;
    // Everything is measured before the first byte goes out.
    const StoreImageWriter store(WrittenEntries(), plain ? StoreImageWriter::Keys::kLeaveOut
                                                         : StoreImageWriter::Keys::kWrite);
    const std::string_view headerText =
        headerText_ ? std::string_view(headerText_.get()) : kDefaultHeaderText;
    return WriteGuarded(out, order, [&](ByteSink& sink) {
        sink.Put(kImageMagic);
        sink.Put8(kImageMajor);
        sink.Put8(kImageMinor);
        sink.Put8(storeFlag ? 1 : 0);
        sink.Put8(order == ByteOrder::kBig ? 1 : 0);
        sink.Put32(static_cast<std::uint32_t>(headerText.size()));
        sink.Put(headerText);
        store.Write(sink);
    });
}

std::uint64_t Dictionary::WriteTextExport(std::ostream& out, ByteOrder order) const
{
    // Mark and keys are always little-endian, only the values follow `order`. This is for
    // compatibility; DictionaryImage.ExportInBigEndianOrder holds it.
    const std::vector<WrittenEntry> entries = WrittenEntries();
    return WriteGuarded(out, ByteOrder::kLittle, [&](ByteSink& sink) {
        sink.Put16(kByteOrderMark);
        for (const WrittenEntry& entry : entries) {
            sink.Put16(u'"');
            for (const char byte : entry.key)
                sink.Put16(static_cast<unsigned char>(byte));
            sink.Put16(u'=');
            for (const char16_t unit : entry.value)
                sink.Put16(order == ByteOrder::kLittle
                               ? unit
                               : static_cast<std::uint16_t>((unit << 8) | (unit >> 8)));
        }
    });
}

}  // namespace morvish
