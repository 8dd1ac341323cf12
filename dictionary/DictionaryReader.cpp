#include "dictionary/DictionaryReader.h"

#include "dictionary/GrownCapacity.h"
#include "dictionary/InputStreams.h"
#include "dictionary/Utf8.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace morvish_private {

namespace {

constexpr std::size_t kFirstLineCapacity = 256;

bool IsLineEnd(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029;
}

std::streambuf* BufferOfOwnStream(std::istream& stream)
{
    const bool own = dynamic_cast<morvish::basic_ifstream<char>*>(&stream) != nullptr ||
                     dynamic_cast<morvish::basic_irstream<char>*>(&stream) != nullptr;
    return own ? stream.rdbuf() : nullptr;
}

// std::getline() up to a '\n'. By itself it turns a lack of memory into a failure of the stream, so
// that a load would end as if the file did.
bool GetLine(std::istream& stream, std::string& bytes)
{
    if (!stream.good())
        return false;
    const std::ios_base::iostate mask = stream.exceptions();
    stream.exceptions(mask | std::ios_base::badbit);
    try {
        std::getline(stream, bytes, stream.widen('\n'));
    } catch (const std::bad_alloc&) {
        stream.clear(stream.rdstate() & ~std::ios_base::badbit);
        stream.exceptions(mask);
        throw;
    } catch (...) {
        // What else a stream's buffer throws is the stream's failure.
        if ((mask & std::ios_base::badbit) != 0)
            throw;
    }
    stream.exceptions(mask);
    return !stream.fail();
}

}  // namespace

DictionaryReader::DictionaryReader(std::istream& stream)
    : stream_(&stream), ownBuffer_(BufferOfOwnStream(stream))
{
}

DictionaryReader::DictionaryReader(const char* start, const char* end)
    : sourceKind_(SourceKind::kMemory), memoryStart_(start), memoryEnd_(end), memoryPosition_(start)
{
}

DictionaryReader::~DictionaryReader() = default;

bool DictionaryReader::ReadByte(unsigned char& byte)
{
    if (sourceKind_ == SourceKind::kMemory) {
        if (memoryPosition_ == memoryEnd_)
            return false;
        byte = static_cast<unsigned char>(*memoryPosition_++);
        return true;
    }
    if (!stream_->good())
        return false;
    // get() builds a sentry for every byte. Our own buffers need none.
    const int read = ownBuffer_ != nullptr ? ownBuffer_->sbumpc() : stream_->get();
    if (read == std::char_traits<char>::eof()) {
        stream_->setstate(std::ios_base::eofbit | std::ios_base::failbit);
        return false;
    }
    byte = static_cast<unsigned char>(read);
    return true;
}

void DictionaryReader::AppendUnit(char16_t unit)
{
    if (lineLength_ == lineCapacity_) {
        const std::size_t capacity =
            line_ ? GrownCapacity(lineCapacity_, lineCapacity_ + 1) : kFirstLineCapacity;
        auto grown = std::make_unique<char16_t[]>(capacity);
        std::copy_n(line_.get(), lineLength_, grown.get());
        line_ = std::move(grown);
        lineCapacity_ = capacity;
    }
    line_[lineLength_++] = unit;
}

bool UnicodeReader::ReadChar(char16_t& unit)
{
    unsigned char low = 0;
    unsigned char high = 0;
    // An odd last byte is dropped, not reported: half a unit carries no text, and a file that was
    // cut short still gives its other entries. DictionaryReader.OddLastByte holds this.
    if (!ReadByte(low) || !ReadByte(high))
        return true;
    unit = static_cast<char16_t>(low | (high << 8));
    return unit == 0;
}

const char16_t* UnicodeReader::ReadLine()
{
    lineLength_ = 0;
    bool ended = false;
    // CR LF ends two lines, the second one empty; whoever loads a dictionary skips empty lines.
    while (!finished_) {
        char16_t unit = 0;
        finished_ = ReadChar(unit);
        if (finished_)
            break;
        if (IsLineEnd(unit)) {
            ended = true;
            break;
        }
        AppendUnit(unit);
    }
    if (!ended && lineLength_ == 0)
        return nullptr;
    AppendUnit(0);
    --lineLength_;
    return line_.get();
}

bool ByteSwapUnicodeReader::ReadChar(char16_t& unit)
{
    const bool ended = UnicodeReader::ReadChar(unit);
    unit = static_cast<char16_t>((unit << 8) | (unit >> 8));
    return ended;
}

UTF8Reader::ReadBuf::ReadBuf(const char* start, const char* end)
{
    // The get area is typed for writing, but nothing that reads from it writes.
    setg(const_cast<char*>(start), const_cast<char*>(start), const_cast<char*>(end));
}

UTF8Reader::UTF8Reader(std::istream& stream) : DictionaryReader(stream) {}

UTF8Reader::UTF8Reader(const char* start, const char* end)
    : DictionaryReader(start, end),
      readBuffer_(start, end),
      memoryStream_(std::make_unique<std::istream>(&readBuffer_))
{
}

const char16_t* UTF8Reader::ReadLine()
{
    if (finished_)
        return nullptr;
    std::istream& source = memoryStream_ ? *memoryStream_ : *stream_;
    if (!GetLine(source, bytes_)) {
        finished_ = true;
        return nullptr;
    }
    if (!bytes_.empty() && bytes_.back() == '\r')
        bytes_.pop_back();
    const std::string_view line(bytes_.c_str());  // up to the first NUL
    if (!ConvertUtf8(line, text_)) {
        finished_ = true;
        return nullptr;
    }
    return text_.c_str();
}

std::unique_ptr<DictionaryReader> CreateReader(std::istream& stream)
{
    const int first = stream.get();
    const int second = stream.good() ? stream.get() : std::char_traits<char>::eof();
    if (first == 0xFF && second == 0xFE)
        return std::make_unique<UnicodeReader>(stream);
    if (first == 0xFE && second == 0xFF)
        return std::make_unique<ByteSwapUnicodeReader>(stream);
    stream.clear();
    stream.seekg(0);
    return std::make_unique<UTF8Reader>(stream);
}

std::unique_ptr<DictionaryReader> CreateReader(const char* start, const char* end)
{
    if (end - start < 2)
        return nullptr;
    const auto first = static_cast<unsigned char>(start[0]);
    const auto second = static_cast<unsigned char>(start[1]);
    if (first == 0xFF && second == 0xFE)
        return std::make_unique<UnicodeReader>(start + 2, end);
    if (first == 0xFE && second == 0xFF)
        return std::make_unique<ByteSwapUnicodeReader>(start + 2, end);
    return std::make_unique<UTF8Reader>(start, end);
}

}  // namespace morvish_private
