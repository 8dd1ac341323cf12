#include "tools/pemtext/Literals.h"

#include "tools/pemtext/TextForm.h"

#include <algorithm>
#include <cstdint>

namespace pemtext {

namespace {

bool IsWord(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_';
}

class CodeScanner {
public:
    explicit CodeScanner(std::string_view source) : source_(source) {}

    std::vector<Literal> Scan()
    {
        while (at_ < source_.size()) {
            if (SkipSpace() || SkipComment())
                continue;
            if (TakeLiteral())
                continue;
            open_ = false;  // anything else ends a row of adjacent literals
            if (source_[at_] == '\'')
                SkipCharacter();
            else if (IsWord(source_[at_]))
                SkipWord();
            else
                ++at_;
        }
        return std::move(literals_);
    }

private:
    bool StartsWith(std::string_view text) const { return source_.substr(at_).starts_with(text); }

    void Advance(std::size_t end)
    {
        end = std::min(end, source_.size());
        line_ += static_cast<std::size_t>(
            std::count(source_.begin() + static_cast<std::ptrdiff_t>(at_),
                       source_.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
        at_ = end;
    }

    bool SkipSpace()
    {
        const std::size_t end = source_.find_first_not_of(" \t\r\n\f\v", at_);
        if (end == at_)
            return false;
        Advance(end);
        return true;
    }

    bool SkipComment()
    {
        if (StartsWith("//"))
            Advance(source_.find('\n', at_));
        else if (StartsWith("/*"))
            Advance(std::min(source_.find("*/", at_ + 2), source_.size() - 2) + 2);
        else
            return false;
        return true;
    }

    // A digit separator is no character.
    void SkipWord()
    {
        while (at_ < source_.size() &&
               (IsWord(source_[at_]) || (source_[at_] == '\'' && at_ + 1 < source_.size() &&
                                         IsWord(source_[at_ + 1]) && IsDigit(source_[start_])))) {
            ++at_;
        }
    }

    static bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

    void SkipCharacter()
    {
        ++at_;
        while (at_ < source_.size() && source_[at_] != '\'' && source_[at_] != '\n')
            at_ += source_[at_] == '\\' ? 2 : 1;
        Advance(at_ + (at_ < source_.size() && source_[at_] == '\'' ? 1 : 0));
    }

    bool TakeLiteral()
    {
        start_ = at_;
        constexpr std::string_view kPrefixes[] = {"u8", "u", "U", "L", ""};
        for (const std::string_view prefix : kPrefixes) {
            if (!StartsWith(prefix))
                continue;
            const std::size_t quote = at_ + prefix.size();
            if (source_.substr(quote).starts_with("R\"")) {
                TakeRaw(quote + 2);
                return true;
            }
            if (source_.substr(quote).starts_with('"')) {
                TakeEscaped(quote + 1);
                return true;
            }
        }
        return false;
    }

    void TakeRaw(std::size_t start)
    {
        const std::size_t open = source_.find('(', start);
        if (open == std::string_view::npos) {
            Advance(source_.size());
            return;
        }
        const std::string close = ")" + std::string(source_.substr(start, open - start)) + "\"";
        const std::size_t end = source_.find(close, open);
        Add(std::string(
            source_.substr(open + 1, end == std::string_view::npos ? end : end - open - 1)));
        Advance(end == std::string_view::npos ? end : end + close.size());
    }

    void TakeEscaped(std::size_t start)
    {
        std::string text;
        std::size_t at = start;
        while (at < source_.size() && source_[at] != '"' && source_[at] != '\n') {
            if (source_[at] == '\\' && at + 1 < source_.size())
                TakeEscape(++at, text);
            else
                text += source_[at++];
        }
        Add(text);
        Advance(at + 1);
    }

    // Up to `most` digits of a base.
    std::uint32_t TakeNumber(std::size_t& at, std::size_t most, std::uint32_t base) const
    {
        std::uint32_t value = 0;
        for (; most > 0 && at < source_.size(); --most, ++at) {
            const char byte = source_[at];
            std::uint32_t digit = base;
            if (IsDigit(byte))
                digit = static_cast<std::uint32_t>(byte - '0');
            else if ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'f')
                digit = static_cast<std::uint32_t>((byte | 0x20) - 'a') + 10;
            if (digit >= base)
                break;
            value = value * base + digit;
        }
        return value;
    }

    void TakeEscape(std::size_t& at, std::string& text) const
    {
        constexpr std::string_view kLetters = "ntrbfav";
        constexpr std::string_view kValues = "\n\t\r\b\f\a\v";
        const char letter = source_[at];
        if (const std::size_t row = kLetters.find(letter); row != std::string_view::npos) {
            text += kValues[row];
            ++at;
        } else if (letter == 'x') {
            ++at;
            text += static_cast<char>(TakeNumber(at, 2, 16));
        } else if (letter == 'u' || letter == 'U') {
            ++at;
            AppendUtf8(TakeNumber(at, letter == 'u' ? 4 : 8, 16), text);
        } else if (letter >= '0' && letter <= '7') {
            text += static_cast<char>(TakeNumber(at, 3, 8));
        } else {
            if (letter != '\n')  // a line that goes on
                text += letter;
            ++at;
        }
    }

    void Add(const std::string& text)
    {
        if (open_)
            literals_.back().text += text;
        else
            literals_.push_back({text, line_});
        open_ = true;
    }

    std::string_view source_;
    std::size_t at_ = 0;
    std::size_t start_ = 0;  // of the token
    std::size_t line_ = 1;
    bool open_ = false;
    std::vector<Literal> literals_;
};

std::string WithoutEntities(std::string_view text)
{
    struct EntityRow {
        std::string_view name;
        char byte;
    };
    constexpr EntityRow kEntities[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}};
    std::string result;
    while (!text.empty()) {
        const auto row = std::ranges::find_if(
            kEntities, [&](const EntityRow& entity) { return text.starts_with(entity.name); });
        const bool found = row != std::ranges::end(kEntities);
        result += found ? row->byte : text.front();
        text.remove_prefix(found ? row->name.size() : 1);
    }
    return result;
}

}  // namespace

std::vector<Literal> LiteralsOfCode(std::string_view source)
{
    return CodeScanner(source).Scan();
}

std::vector<Literal> LiteralsOfXml(std::string_view source)
{
    std::vector<Literal> literals;
    std::size_t line = 1;
    std::size_t counted = 0;
    for (std::size_t at = source.find("$$$/"); at != std::string_view::npos;
         at = source.find("$$$/", at)) {
        // What stands in front tells what ends it.
        const bool wrapped = at > 0 && source[at - 1] == '(';
        const std::size_t start = wrapped ? at - 1 : at;
        const char before = start > 0 ? source[start - 1] : '>';
        const char close = before == '"' || before == '\'' ? before : '<';
        const std::size_t end = std::min(source.find(close, at), source.size());
        line += static_cast<std::size_t>(
            std::count(source.begin() + static_cast<std::ptrdiff_t>(counted),
                       source.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
        counted = at;
        literals.push_back({WithoutEntities(source.substr(start, end - start)), line});
        at = end;
    }
    return literals;
}

}  // namespace pemtext
