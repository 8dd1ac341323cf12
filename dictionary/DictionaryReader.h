// Readers: from the bytes of a text dictionary to its lines in UTF-16. Which reader serves a source
// is decided by the first two bytes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <streambuf>
#include <string>
#include <string_view>

namespace morvish_private {

class DictionaryReader {
public:
    DictionaryReader(const DictionaryReader&) = delete;
    DictionaryReader& operator=(const DictionaryReader&) = delete;

    virtual ~DictionaryReader();

    /// The next line without its terminator, ending in NUL. It belongs to the reader and is valid
    /// until the next call.
    /// @return null when the input is exhausted, from then on always
    virtual const char16_t* ReadLine() = 0;

    /// The line that ReadLine() returned last, with its length.
    virtual std::u16string_view Line() const { return {line_.get(), lineLength_}; }

    /// True for the readers of UTF-16.
    virtual bool ReadsUtf16() const = 0;

protected:
    /// `stream` must outlive the reader.
    explicit DictionaryReader(std::istream& stream);
    DictionaryReader(const char* start, const char* end);

    /// The next byte of the source.
    /// @return false at the end of the input or at the stream's first failure
    bool ReadByte(unsigned char& byte);

    /// Appends to the line buffer, which grows by half of its size as often as needed.
    void AppendUnit(char16_t unit);

    enum class SourceKind : std::uint8_t { kStream = 0, kMemory = 2 };

    std::istream* stream_ = nullptr;  // null for memory
    std::unique_ptr<char16_t[]> line_;
    std::size_t lineCapacity_ = 0;  // in units
    std::size_t lineLength_ = 0;    // in units, without the NUL
    SourceKind sourceKind_ = SourceKind::kStream;
    const char* memoryStart_ = nullptr;
    const char* memoryEnd_ = nullptr;
    const char* memoryPosition_ = nullptr;

private:
    std::streambuf* ownBuffer_ = nullptr;  // of a stream of ours, read without going through get()
};

/// UTF-16 with the low byte first.
class UnicodeReader : public DictionaryReader {
public:
    explicit UnicodeReader(std::istream& stream) : DictionaryReader(stream) {}
    UnicodeReader(const char* start, const char* end) : DictionaryReader(start, end) {}

    const char16_t* ReadLine() override;
    bool ReadsUtf16() const override { return true; }

    /// Reads the next unit. A NUL unit ends the input, an odd last byte counts for nothing.
    /// @return true at the end of the input
    virtual bool ReadChar(char16_t& unit);

private:
    bool finished_ = false;
};

/// UTF-16 with the high byte first.
class ByteSwapUnicodeReader : public UnicodeReader {
public:
    using UnicodeReader::UnicodeReader;

    bool ReadChar(char16_t& unit) override;
};

/// UTF-8. A line that is not well-formed ends the input.
class UTF8Reader : public DictionaryReader {
public:
    explicit UTF8Reader(std::istream& stream);
    UTF8Reader(const char* start, const char* end);

    /// One '\r' before the line end is dropped; a NUL byte cuts the line.
    const char16_t* ReadLine() override;
    std::u16string_view Line() const override { return text_; }
    bool ReadsUtf16() const override { return false; }

    /// A stream buffer that reads from a block of memory.
    class ReadBuf : public std::streambuf {
    public:
        ReadBuf() = default;
        ReadBuf(const char* start, const char* end);
    };

private:
    ReadBuf readBuffer_;
    std::unique_ptr<std::istream> memoryStream_;  // over readBuffer_, for a source in memory
    std::string bytes_;
    std::u16string text_;
    bool finished_ = false;
};

/// The reader for what `stream` holds: FF FE and FE FF are consumed and stand for the two orders of
/// UTF-16; with anything else the stream is put back to its start and read as UTF-8. A UTF-8
/// signature is not recognised, it becomes U+FEFF in the first line.
std::unique_ptr<DictionaryReader> CreateReader(std::istream& stream);

/// The same for a block of memory, which must outlive the reader.
/// @return null for fewer than two bytes
std::unique_ptr<DictionaryReader> CreateReader(const char* start, const char* end);

}  // namespace morvish_private
