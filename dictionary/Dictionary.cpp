#include "dictionary/Dictionary.h"

#include "dictionary/DictionaryLine.h"
#include "dictionary/DictionaryReader.h"
#include "dictionary/FullHash.h"
#include "dictionary/ImageSource.h"
#include "dictionary/KeyEnd.h"
#include "dictionary/KeyHash.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace morvish {

using morvish_private::ByteRunValue;
using morvish_private::DictionaryEntry;
using morvish_private::DictionaryReader;
using morvish_private::FastArray;
using morvish_private::TextArena;

namespace {

// A block of at most this size is no image, whatever it begins with.
constexpr std::size_t kSmallestImageBytes = 24;

// The file's byte-order mark, alone on its line.
constexpr std::u16string_view kMarkLine = u"\uFEFF";

constinit Dictionary* fallbackDictionary = nullptr;

struct SplitKey {
    std::string_view name;
    const char* defaultText;  // null if there is none
};

// @return false for a key that no dictionary can hold
bool Split(const char* key, SplitKey& result)
{
    if (key == nullptr || *key == '\0')
        return false;
    if (*key == '$') {
        if (key[1] != '$' || key[2] != '$')
            return false;
        key += 3;
    }
    const char* const end = morvish_private::FindKeyEnd(key);
    result.name = std::string_view(key, static_cast<std::size_t>(end - key));
    result.defaultText = *end == '=' ? end + 1 : nullptr;
    return true;
}

bool Answer(const ByteRunValue* value, const char16_t*& units, std::size_t& lengthUnits)
{
    units = value != nullptr ? value->units : nullptr;
    lengthUnits = value != nullptr ? value->LengthUnits() : 0;
    return value != nullptr;
}

// The text for a key that no dictionary has.
DictionaryString ProcessedDefault(std::string_view defaultText, const ConversionContext* context)
{
    if (defaultText.empty())
        return {};
    std::u16string text;
    if (context != nullptr && context->selector != kSelectorNone) {
        text = ConvertToWide(*context, defaultText);
    } else {
        // With sign: a byte from 0x80 up becomes U+FF80 to U+FFFF. This is no Latin-1 on purpose,
        // for compatibility; a caller that has more than ASCII in its defaults gives a context.
        // Dictionary.DefaultsAreWidenedWithSign holds it.
        text.resize(defaultText.size());
        std::transform(defaultText.begin(), defaultText.end(), text.begin(), [](char byte) {
            return static_cast<char16_t>(static_cast<signed char>(byte));
        });
    }
    text = morvish_private::EscapeValue(text.data(), text.size());
    DictionaryString result;
    result.Assign(text.data(), text.size());
    return result;
}

}  // namespace

Dictionary::Dictionary(Format format)
    : binaryStore_(std::make_shared<FastArray>()), arena_(std::make_shared<TextArena>())
{
    if (format == Format::kBinary) {
        majorVersion_ = kImageMajor;
        minorVersion_ = kImageMinor;
    }
}

Dictionary::Dictionary(const Dictionary& other) : Dictionary()
{
    CopyBinaryPart(other);
}

Dictionary& Dictionary::operator=(const Dictionary& other)
{
    if (this == &other)
        return *this;
    Dictionary copy(other);
    chains_.Forget();
    index_.Clear();
    arena_ = std::move(copy.arena_);
    valid_ = true;
    binaryStore_ = std::move(copy.binaryStore_);
    majorVersion_ = copy.majorVersion_;
    minorVersion_ = copy.minorVersion_;
    headerText_ = std::move(copy.headerText_);
    return *this;
}

Dictionary::~Dictionary()
{
    if (fallbackDictionary == this)
        fallbackDictionary = nullptr;
    chains_.Forget();  // the entries go with the arena
}

void Dictionary::CopyBinaryPart(const Dictionary& other)
{
    if (!other.IsBinary())
        return;
    if (other.headerText_) {
        const std::size_t size = std::strlen(other.headerText_.get()) + 1;
        headerText_ = std::make_unique<char[]>(size);
        std::copy_n(other.headerText_.get(), size, headerText_.get());
    }
    binaryStore_ = other.binaryStore_;
    majorVersion_ = other.majorVersion_;
    minorVersion_ = other.minorVersion_;
}

void Dictionary::LoadFromStream(std::istream* stream)
{
    if (stream == nullptr) {
        valid_ = false;
        return;
    }
    const std::unique_ptr<DictionaryReader> reader = morvish_private::CreateReader(*stream);
    std::array<char, kImageMagic.size()> start{};
    stream->read(start.data(), start.size());
    const auto startBytes = static_cast<std::size_t>(stream->gcount());
    stream->clear();
    // Back to the very start: a reader of UTF-16 meets its byte-order mark as the first unit.
    stream->seekg(0);
    if (!reader->ReadsUtf16() && std::string_view(start.data(), startBytes) == kImageMagic) {
        morvish_private::StreamImageSource source(*stream);
        LoadImage(source, HeaderTextAtEnd::kRead);
        return;
    }
    LoadLines(*reader, MarkLine::kSkip);
}

void Dictionary::LoadFromMemory(const void* block, std::size_t sizeBytes)
{
    if (block == nullptr || sizeBytes == 0) {
        valid_ = false;
        return;
    }
    const char* const start = static_cast<const char*>(block);
    if (std::string_view(start, sizeBytes).starts_with(kImageMagic)) {
        if (sizeBytes <= kSmallestImageBytes) {
            valid_ = false;
            return;
        }
        morvish_private::MemoryImageSource source(start, sizeBytes);
        LoadImage(source, HeaderTextAtEnd::kSkip);
        return;
    }
    const std::unique_ptr<DictionaryReader> reader =
        morvish_private::CreateReader(start, start + sizeBytes);
    if (!reader) {
        valid_ = false;
        return;
    }
    // A byte-order mark alone on a line is not skipped here: it defines a key of one byte 0xFF.
    LoadLines(*reader, MarkLine::kKeep);
}

void Dictionary::LoadLines(DictionaryReader& reader, MarkLine markLine)
{
    // What was read before memory runs out counts.
    struct Guard {
        ~Guard() { dictionary.LinkPending(); }
        Dictionary& dictionary;
    };
    const Guard guard{*this};
    while (reader.ReadLine() != nullptr) {
        const std::u16string_view line = reader.Line();
        if (!line.empty() && (markLine == MarkLine::kKeep || line != kMarkLine))
            TakeLine(line);
    }
}

void Dictionary::ParseLine(const char16_t* line)
{
    TakeLine(line);
    LinkPending();
}

void Dictionary::TakeLine(std::u16string_view line)
{
    const morvish_private::LineParts parts = morvish_private::SplitLine(line);
    if (!parts.valid) {
        valid_ = false;
        return;
    }
    morvish_private::NarrowKey(parts.key, keyBuffer_);
    Store(keyBuffer_, parts.value);
}

void Dictionary::Store(std::string_view key, std::u16string_view rawValue)
{
    if (IsBinary()) {
        binaryStore_->Insert(key, processor_.Process(rawValue));
        return;
    }
    if (pendingCount_ == kPendingEntries)
        LinkPending();
    index_.ReserveNext(pendingCount_ + 1);
    DictionaryEntry* const entry = DictionaryEntry::Create(*arena_, key, rawValue, processor_);
    // The index is larger than the processor's caches and met at random: places are fetched some
    // entries before they are used.
    const std::uint32_t hash = morvish_private::FullHash(key);
    index_.Prefetch(hash);
    pending_[pendingCount_++] = {entry, hash};
}

void Dictionary::LinkPending() noexcept
{
    for (std::size_t i = 0; i < pendingCount_; ++i) {
        const auto [entry, hash] = pending_[i];
        TextIndex::Slot* const known =
            index_.Find(hash, [&, key = entry->View()](const DictionaryEntry* candidate) {
                return candidate->View() == key;
            });
        if (known != nullptr) {
            chains_.NoteFound(*known->Get());
            chains_.Remove();
            known->Set(entry);
        } else {
            index_.InsertReserved(hash, entry);
        }
        chains_.Push(entry);
    }
    pendingCount_ = 0;
}

std::size_t Dictionary::EntryCount() const
{
    return IsBinary() ? binaryStore_->Count() : index_.Count();
}

const Dictionary* Dictionary::OtherFallback() const
{
    return fallbackDictionary != this ? fallbackDictionary : nullptr;
}

const ByteRunValue* Dictionary::FindValue(std::string_view key) const
{
    if (IsBinary())
        return FindValue(binaryStore_->Find(key));
    const TextIndex::Slot* const found =
        index_.Find(morvish_private::FullHash(key),
                    [&](const DictionaryEntry* candidate) { return candidate->View() == key; });
    return found != nullptr ? &found->Get()->Value() : nullptr;
}

const ByteRunValue* Dictionary::FindValue(std::uint32_t index) const
{
    return IsBinary() && binaryStore_->Exists(index) ? &binaryStore_->RawValue(index) : nullptr;
}

DictionaryString Dictionary::Share(const ByteRunValue& value) const
{
    // The string keeps the whole store, whose count lies at hand.
    return IsBinary() ? DictionaryString(std::shared_ptr<const ByteRunValue>(binaryStore_, &value))
                      : DictionaryString(std::shared_ptr<const ByteRunValue>(arena_, &value));
}

DictionaryString Dictionary::Lookup(const char* key, const ConversionContext* context) const
{
    SplitKey split;
    if (!Split(key, split))
        return {};
    if (const ByteRunValue* const value = FindValue(split.name))
        return Share(*value);
    const Dictionary* const fallback = OtherFallback();
    if (fallback != nullptr) {
        if (const ByteRunValue* const value = fallback->FindValue(split.name))
            return fallback->Share(*value);
    }
    return split.defaultText != nullptr ? ProcessedDefault(split.defaultText, context)
                                        : DictionaryString();
}

bool Dictionary::RawLookup(const char* key, const char16_t*& units, std::size_t& lengthUnits) const
{
    const ByteRunValue* value = nullptr;
    SplitKey split;
    if (Split(key, split)) {
        value = FindValue(split.name);
        const Dictionary* const fallback = OtherFallback();
        if (value == nullptr && fallback != nullptr)
            value = fallback->FindValue(split.name);
    }
    return Answer(value, units, lengthUnits);
}

DictionaryString Dictionary::LookupIndex(std::uint32_t index) const
{
    if (!IsBinary())
        return {};
    if (const ByteRunValue* const value = FindValue(index))
        return Share(*value);
    const Dictionary* const fallback = OtherFallback();
    if (fallback != nullptr) {
        if (const ByteRunValue* const value = fallback->FindValue(index))
            return fallback->Share(*value);
    }
    return {};
}

bool Dictionary::RawLookupIndex(std::uint32_t index, const char16_t*& units,
                                std::size_t& lengthUnits) const
{
    const ByteRunValue* value = FindValue(index);
    const Dictionary* const fallback = OtherFallback();
    if (value == nullptr && IsBinary() && fallback != nullptr)
        value = fallback->FindValue(index);
    return Answer(value, units, lengthUnits);
}

void Dictionary::VisitEntries(EntryVisitor& visitor) const
{
    if (IsBinary()) {
        for (std::uint32_t index = 0; index < binaryStore_->Count(); ++index) {
            const std::u16string_view value = binaryStore_->RawValue(index).View();
            if (binaryStore_->HasKey(index))
                visitor.Visit(binaryStore_->Key(index), value);
            else
                visitor.VisitBare(index, value);
        }
        return;
    }
    for (std::uint32_t bucket = 0; bucket < morvish_private::kBucketCount; ++bucket) {
        for (const auto* item = chains_.Head(bucket); item != nullptr; item = item->next) {
            const auto& entry = static_cast<const DictionaryEntry&>(*item);
            visitor.Visit(entry.View(), entry.Value().View());
        }
    }
}

std::size_t Dictionary::TextStoreBytes() const
{
    return index_.ReservedBytes() + arena_->ReservedBytes();
}

void Dictionary::SetFallback(Dictionary* dictionary)
{
    fallbackDictionary = dictionary;
}

Dictionary* Dictionary::Fallback()
{
    return fallbackDictionary;
}

}  // namespace morvish
