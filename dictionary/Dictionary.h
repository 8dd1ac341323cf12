// The localized texts of one language: filled from dictionary files, asked with keys of the form
// "$$$/Path/Name=default text".
//
// A dictionary belongs to one thread at a time; the strings that it returns may go anywhere. Two
// stores can hold the entries: the text store (bucket chains and an index) is in force while the
// major version is below 2, the binary store from then on.

#pragma once

#include "dictionary/BucketChains.h"
#include "dictionary/ByteOrder.h"
#include "dictionary/DictionaryEntry.h"
#include "dictionary/DictionaryString.h"
#include "dictionary/FastArray.h"
#include "dictionary/FlatIndex.h"
#include "dictionary/StringConverters.h"
#include "dictionary/TextArena.h"
#include "dictionary/ValuePasses.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace morvish_private {

class DictionaryReader;
class ImageSource;
struct WrittenEntry;

}  // namespace morvish_private

namespace morvish {

/// The version text of the dictionary library.
inline constexpr char kDictionaryVersionText[] = "5.9";

/// The 21 bytes that a binary dictionary begins with.
inline constexpr std::string_view kImageMagic = "Pemtext Binary Format";

class Dictionary {
public:
    enum class Format { kText, kBinary };

    /// An empty dictionary. kBinary gives one with version 2.7, ready to receive entries.
    explicit Dictionary(Format format = Format::kText);

    /// Copies the binary part only: a binary dictionary shares its store, a text dictionary gives
    /// an empty one. Copying onto itself does nothing.
    Dictionary(const Dictionary& other);
    Dictionary& operator=(const Dictionary& other);

    /// A fallback dictionary stops being one.
    ~Dictionary();

    /// Adds what `stream` holds from its offset 0 on; it must be able to seek. A binary image puts
    /// the binary store in force: entries of text that was loaded before are no longer found. Null
    /// and a broken image clear the valid flag; what was there before stays. An image of another
    /// major version than 2 is passed over.
    void LoadFromStream(std::istream* stream);

    /// Adds what the block holds. Null, fewer than two bytes, and an image of at most 24 bytes
    /// clear the valid flag and add nothing.
    void LoadFromMemory(const void* block, std::size_t sizeBytes);

    /// Adds the entry of one line that ends in NUL. A later entry of the same key replaces the
    /// earlier one. A line that begins with '$' but not with "$$$" clears the valid flag.
    void ParseLine(const char16_t* line);

    /// False once something could not be loaded; lookups answer all the same.
    bool Valid() const { return valid_; }

    /// The number of entries in the store in force.
    std::size_t EntryCount() const;

    /// The text for a key, whose form is "$$$", a path, and optionally '=' and a default text; the
    /// "$$$" may be missing. This dictionary is asked first, then the fallback dictionary, then the
    /// default is processed like a value. Without a default the result is empty, and so it is for a
    /// null or empty key and one that begins with fewer than three '$'.
    ///
    /// @param key      ends at its first NUL
    /// @param context  how the default is encoded; null and selector 0 widen it byte by byte, with
    ///                 sign
    /// Throws DictionaryException if the default cannot be converted.
    DictionaryString Lookup(const char* key, const ConversionContext* context = nullptr) const;

    /// The stored text for a key, neither copied nor counted: it stands until its entry is replaced
    /// or its dictionary (this or the fallback) is destroyed. The default counts for nothing.
    ///
    /// @return false, with null and 0 stored, if neither dictionary has the key
    bool RawLookup(const char* key, const char16_t*& units, std::size_t& lengthUnits) const;

    /// The text of an entry of a binary dictionary by its number, else that of the fallback
    /// dictionary if it is binary. A text dictionary answers with an empty string.
    DictionaryString LookupIndex(std::uint32_t index) const;

    /// The same without copying, as RawLookup().
    bool RawLookupIndex(std::uint32_t index, const char16_t*& units,
                        std::size_t& lengthUnits) const;

    std::int8_t MajorVersion() const { return majorVersion_; }
    std::int8_t MinorVersion() const { return minorVersion_; }

    /// The header text of a loaded image, null if there is none.
    const char* HeaderText() const { return headerText_.get(); }

    /// What an image is written with from now on, up to the first NUL.
    void SetHeaderText(const std::string& text);

    /// The store flag of the image loaded last, 0 without one.
    std::uint8_t StoreFlag() const { return binaryStore_->StoreFlag(); }

    /// Writes the store in force, with version 2.7: as a binary image for mode 0 and 3, as text
    /// export for any other. The export is for looking at: UTF-16 without line ends, which cannot
    /// be read back. Without a loaded header text the image's is "en_US".
    ///
    /// Throws std::length_error, with nothing written, if a text is too long for an image, and for
    /// a store that mixes entries with and without keys. An exception of the stream is reported on
    /// the standard error stream and ends the writing.
    /// @return the number of bytes that the stream took; its state tells whether these are all
    std::uint64_t Serialize(std::ostream& out, std::int32_t mode, bool storeFlag,
                            morvish_private::ByteOrder order) const;

    /// The same, an image or an export, always little-endian.
    std::uint64_t SerializeLittleEndian(std::ostream& out, bool asImage, bool storeFlag) const;

    /// Receives entries one by one; the views are valid during the call.
    class EntryVisitor {
    public:
        virtual ~EntryVisitor() = default;
        virtual void Visit(std::string_view key, std::u16string_view value) = 0;

        /// An entry without a key, which only its number finds. Left out unless overridden.
        virtual void VisitBare(std::uint32_t /*index*/, std::u16string_view /*value*/) {}
    };

    /// Shows all entries of the store in force: of a text dictionary bucket by bucket and the
    /// newest first, of a binary one by number.
    void VisitEntries(EntryVisitor& visitor) const;

    /// How far searches in the text store go.
    morvish_private::SearchCost TextSearchCost() const { return index_.Cost(); }

    /// What each store takes, keys and values included.
    std::size_t TextStoreBytes() const;
    std::size_t BinaryStoreBytes() const { return binaryStore_->ReservedBytes(); }

    /// The dictionary that answers where another one lacks a key; null for none. Not owned. It is
    /// unset when it is destroyed.
    static void SetFallback(Dictionary* dictionary);
    static Dictionary* Fallback();

private:
    using TextIndex = morvish_private::FlatIndex<morvish_private::DictionaryEntry*, nullptr>;

    // Whether a header text is looked for where nothing follows its length.
    enum class HeaderTextAtEnd { kRead, kSkip };

    static constexpr std::int8_t kImageMajor = 2;
    static constexpr std::int8_t kImageMinor = 7;

    void LoadImage(morvish_private::ImageSource& source, HeaderTextAtEnd atEnd);
    bool ReadHeaderText(morvish_private::ImageSource& source, std::uint32_t lengthBytes);
    std::vector<morvish_private::WrittenEntry> WrittenEntries() const;
    std::uint64_t WriteImage(std::ostream& out, bool storeFlag,
                             morvish_private::ByteOrder order) const;
    std::uint64_t WriteTextExport(std::ostream& out, morvish_private::ByteOrder order) const;

    bool IsBinary() const { return majorVersion_ >= 2; }
    const Dictionary* OtherFallback() const;
    void CopyBinaryPart(const Dictionary& other);
    enum class MarkLine { kSkip, kKeep };
    void LoadLines(morvish_private::DictionaryReader& reader, MarkLine markLine);
    void TakeLine(std::u16string_view line);
    void Store(std::string_view key, std::u16string_view rawValue);
    void LinkPending() noexcept;
    const morvish_private::ByteRunValue* FindValue(std::string_view key) const;
    const morvish_private::ByteRunValue* FindValue(std::uint32_t index) const;
    DictionaryString Share(const morvish_private::ByteRunValue& value) const;

    morvish_private::BucketChains chains_;   // 1021 heads, and what the last search found
    [[maybe_unused]] std::uint8_t one_ = 1;  // set at construction, used by nothing
    bool valid_ = true;
    std::shared_ptr<morvish_private::FastArray> binaryStore_;
    std::int8_t majorVersion_ = 0;
    std::int8_t minorVersion_ = 0;
    std::unique_ptr<char[]> headerText_;  // ends in NUL; null without an image

    // The text store's second index and its memory, which strings share as a whole: a count for
    // each entry or block would be one more place in memory that a lookup touches.
    TextIndex index_;
    std::shared_ptr<morvish_private::TextArena> arena_;

    // Entries whose place in the index is being fetched. Room for them has been made there.
    struct PendingEntry {
        morvish_private::DictionaryEntry* entry;
        std::uint32_t hash;
    };
    static constexpr std::size_t kPendingEntries = 16;
    std::array<PendingEntry, kPendingEntries> pending_{};
    std::size_t pendingCount_ = 0;

    // Buffers of ParseLine(), kept from line to line.
    std::string keyBuffer_;
    morvish_private::ValueProcessor processor_;
};

}  // namespace morvish
