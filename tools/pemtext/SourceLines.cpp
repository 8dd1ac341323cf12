#include "tools/pemtext/SourceLines.h"

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryReader.h"

#include <algorithm>
#include <memory>

namespace pemtext {

namespace {

using morvish_private::DictionaryReader;

// The units of a file of UTF-16, as far as they count for lines.
class UnitLines {
public:
    explicit UnitLines(const std::string& content)
    {
        const bool little = static_cast<unsigned char>(content[0]) == 0xFF;
        std::size_t line = 1;
        std::size_t at = 2;
        for (; content.size() - at >= 2; at += 2) {
            const auto first = static_cast<unsigned char>(content[at]);
            const auto second = static_cast<unsigned char>(content[at + 1]);
            const auto unit =
                static_cast<char16_t>(little ? first | (second << 8) : (first << 8) | second);
            if (unit == 0) {
                endsEarly_ = content.size() - at > 2;
                break;
            }
            if (unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029) {
                numbers_.push_back(line);
                // CR LF ends two lines for the reader and one for the eye.
                const bool joined = unit == u'\r' && NextIsLineFeed(content, at + 2, little);
                if (!joined)
                    ++line;
            }
        }
        hasHalf_ = content.size() - at == 1;
        numbers_.push_back(line);
    }

    // The number for the reader's line `index`, from 0.
    std::size_t Number(std::size_t index) const
    {
        return numbers_[std::min(index, numbers_.size() - 1)];
    }
    std::size_t Last() const { return numbers_.back(); }
    bool EndsEarly() const { return endsEarly_; }
    bool HasHalfUnit() const { return hasHalf_; }

private:
    static bool NextIsLineFeed(const std::string& content, std::size_t at, bool little)
    {
        return content.size() - at >= 2 && content[at + (little ? 0 : 1)] == '\n' &&
               content[at + (little ? 1 : 0)] == '\0';
    }

    std::vector<std::size_t> numbers_;
    bool endsEarly_ = false;
    bool hasHalf_ = false;
};

void SplitUtf16(const std::string& content, DictionaryReader& reader, SourceText& result)
{
    const UnitLines numbers(content);
    for (std::size_t index = 0; reader.ReadLine() != nullptr; ++index) {
        if (!reader.Line().empty())
            result.lines.push_back({numbers.Number(index), std::u16string(reader.Line())});
    }
    result.lineCount = numbers.Last();
    result.endLine = numbers.Last();
    if (numbers.EndsEarly())
        result.end = SourceText::End::kNulUnit;
    else if (numbers.HasHalfUnit())
        result.end = SourceText::End::kHalfUnit;
}

void SplitUtf8(const std::string& content, DictionaryReader& reader, SourceText& result)
{
    std::size_t number = 0;
    std::size_t start = 0;
    for (; reader.ReadLine() != nullptr; ++number) {
        if (!reader.Line().empty())
            result.lines.push_back({number + 1, std::u16string(reader.Line())});
        const std::size_t end = std::min(content.find('\n', start), content.size());
        if (std::string_view(content).substr(start, end - start).find('\0') != std::string::npos)
            result.cutByNul.push_back(number + 1);
        start = std::min(end + 1, content.size());
    }
    const auto lineEnds =
        static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
    result.lineCount = lineEnds + (content.empty() || content.back() == '\n' ? 0 : 1);
    if (number < result.lineCount) {
        result.end = SourceText::End::kBrokenUtf8;
        result.endLine = number + 1;
    }
}

}  // namespace

SourceText SplitText(const std::string& content)
{
    SourceText result;
    const auto reader =
        morvish_private::CreateReader(content.data(), content.data() + content.size());
    if (!reader)
        return result;
    if (reader->ReadsUtf16())
        SplitUtf16(content, *reader, result);
    else
        SplitUtf8(content, *reader, result);
    return result;
}

bool IsImage(std::string_view content)
{
    return content.starts_with(morvish::kImageMagic);
}

}  // namespace pemtext
