#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryLine.h"
#include "dictionary/ValueTables.h"
#include "tools/pemtext/Catalog.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/SourceLines.h"
#include "tools/pemtext/TextForm.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace pemtext {

namespace {

using morvish_private::LineParts;

std::string Quoted(const std::string& key)
{
    std::string text = "\"";
    for (const char byte : key)
        text += byte >= ' ' && byte <= '~' ? byte : '?';
    return text + "\"";
}

// Looks at one text dictionary by itself.
class LineChecker {
public:
    LineChecker(const std::string& file, Findings& findings) : file_(file), findings_(findings) {}

    void Check(const std::string& content)
    {
        const SourceText source = SplitText(content);
        for (const SourceLine& line : source.lines) {
            line_ = line.number;
            CheckLine(line.text);
        }
        for (const std::size_t number : source.cutByNul)
            Report(number, Severity::kError, "a NUL cuts the rest of the line", "nul");
        TellEnd(source);
        if (content.size() < 2)
            Report(1, Severity::kError, "the file is too short for a dictionary", "too-short");
    }

private:
    void Report(std::size_t line, Severity severity, const std::string& message,
                std::string_view id)
    {
        findings_.Add({file_, line, severity, message, id});
    }
    void Warn(const std::string& message, std::string_view id)
    {
        Report(line_, Severity::kWarning, message, id);
    }

    void TellEnd(const SourceText& source)
    {
        const std::string lost = std::to_string(source.lineCount - source.endLine + 1);
        switch (source.end) {
            case SourceText::End::kComplete:
                break;
            case SourceText::End::kBrokenUtf8:
                Report(source.endLine, Severity::kError,
                       "the line is not well-formed UTF-8; reading stops here, and " + lost +
                           " lines are lost",
                       "broken-utf8");
                break;
            case SourceText::End::kNulUnit:
                Report(source.endLine, Severity::kError,
                       "a NUL ends the file here; what follows is lost", "nul");
                break;
            case SourceText::End::kHalfUnit:
                Report(source.endLine, Severity::kWarning,
                       "the last byte is half a character of UTF-16 and counts for nothing",
                       "half-unit");
                break;
        }
    }

    void CheckLine(std::u16string_view text)
    {
        if (text == u"\uFEFF")
            return;  // a byte-order mark alone on its line
        const LineParts parts = morvish_private::SplitLine(text);
        if (!parts.valid) {
            Report(line_, Severity::kError,
                   "the line is dropped: it begins with '$', but not with \"$$$\"",
                   "rejected-line");
            return;
        }
        std::string key;
        morvish_private::NarrowKey(parts.key, key);
        if (!parts.hasPrefix)
            Warn("the line defines the key " + Quoted(key) +
                     ", by accident? Keys are written with \"$$$\"",
                 "accidental-key");
        else if (key.empty())
            Warn("the line defines the empty key", "accidental-key");
        else if (!parts.hasEquals)
            Warn("the key " + Quoted(key) + " has no '=' and so an empty value", "no-value");
        if (std::ranges::any_of(parts.key, [](char16_t unit) { return unit > 0x7E; }) &&
            parts.hasPrefix)
            Warn("the key " + Quoted(key) + " holds characters that are not ASCII", "key-bytes");
        CheckQuotes(text, parts);
        CheckTwice(key);
        CheckEscapes(parts.value);
        CheckMarkers(parts.value);
    }

    void CheckQuotes(std::u16string_view text, const LineParts& parts)
    {
        if (!parts.hasPrefix)
            return;
        if (parts.hasQuotes && !parts.hasClosingQuote) {
            Warn("the closing quote is missing", "open-quote");
            return;
        }
        if (!parts.hasQuotes)
            return;
        const std::u16string_view last = parts.hasEquals ? parts.value : parts.key;
        const auto end = static_cast<std::size_t>(last.data() + last.size() - text.data()) + 1;
        if (text.find_first_not_of(u" \t\r", end) != std::string_view::npos)
            Warn(
                "the text behind the closing quote does not count; a quote in a value is "
                "written \\\"",
                "ignored-text");
    }

    void CheckTwice(const std::string& key)
    {
        const auto [first, isNew] = firstLines_.try_emplace(key, line_);
        if (isNew)
            return;
        Warn("the key " + Quoted(key) + " is defined again; this line counts", "duplicate-key");
        Report(first->second, Severity::kNote, "first defined here", "duplicate-key");
    }

    void CheckEscapes(std::u16string_view value)
    {
        for (std::size_t i = 0; i + 1 < value.size(); ++i) {
            const char16_t escape = value[i];
            if (escape != u'\\' && escape != u'^')
                continue;
            const char16_t unit = value[++i];
            const bool placeholder = escape == u'^' && unit >= u'0' && unit <= u'9';
            const auto table =
                escape == u'^' ? morvish_private::CaretTable() : morvish_private::BackslashTable();
            if (unit == escape || placeholder ||
                std::ranges::find(table, unit, &morvish_private::EscapeRow::unit) != table.end())
                continue;
            const std::u16string shown = {escape, unit};
            Warn("\"" + RawValue(shown) + "\" is no escape and is shown as it is",
                 "unknown-escape");
        }
    }

    void CheckMarkers(std::u16string_view value)
    {
        for (std::size_t at = value.find(u"#{"); at != std::string_view::npos;
             at = value.find(u"#{", at + 2)) {
            if (at > 0 && value[at - 1] == u'^')
                continue;  // an escape of its own
            const std::u16string_view rest = value.substr(at + 2);
            const auto* const row = morvish_private::FindMarker(rest.data(), rest.size());
            std::size_t length = row != nullptr ? row->length : 0;
            if (row == nullptr) {
                const auto reference = morvish_private::ParseCodePoint(rest.data(), rest.size());
                length = reference.prefix != nullptr ? reference.consumed : rest.size();
            }
            if (length < rest.size() && rest[length] == u'}')
                continue;
            const std::size_t close = rest.find(u'}');
            Warn("\"#{" +
                     RawValue(rest.substr(0, close == std::string_view::npos ? 20 : close + 1)) +
                     "\" is no marker and is shown as it is",
                 "unknown-marker");
        }
    }

    std::string file_;
    Findings& findings_;
    std::size_t line_ = 0;
    std::map<std::string, std::size_t> firstLines_;
};

// The placeholders "^0" to "^9" that the program fills in, sorted.
std::string Placeholders(std::u16string_view value)
{
    std::string found;
    for (std::size_t i = 0; i + 1 < value.size(); ++i) {
        if (value[i] == u'^' && value[i + 1] >= u'0' && value[i + 1] <= u'9')
            found += static_cast<char>(value[i + 1]);
    }
    std::ranges::sort(found);
    return found;
}

std::string Named(const std::string& placeholders)
{
    if (placeholders.empty())
        return "none";
    std::string names;
    for (const char digit : placeholders)
        names += (names.empty() ? "^" : " ^") + std::string(1, digit);
    return names;
}

// What a text ends in: a full stop counts like the one of another script. 0 for no punctuation.
char EndMark(std::u16string_view value)
{
    struct MarkRow {
        std::u16string_view end;
        char mark;
    };
    // The longest first.
    constexpr MarkRow kMarks[] = {
        {u"...", '~'},    {u"\u2026", '~'}, {u".", '.'},      {u"\u3002", '.'}, {u"\uFF0E", '.'},
        {u"\u0964", '.'}, {u"!", '!'},      {u"\uFF01", '!'}, {u"?", '?'},      {u"\uFF1F", '?'},
        {u"\u061F", '?'}, {u"\u037E", '?'}, {u":", ':'},      {u"\uFF1A", ':'},
    };
    const std::size_t last = value.find_last_not_of(u" \t\r\n\u00A0");
    const std::u16string_view text = value.substr(0, last == std::string_view::npos ? 0 : last + 1);
    for (const MarkRow& row : kMarks) {
        if (!text.ends_with(row.end))
            continue;
        // "31." is an ordinal number in many languages.
        const std::u16string_view before = text.substr(0, text.size() - row.end.size());
        const bool number = row.end == u"." && !before.empty() &&
                            before.find_first_not_of(u"0123456789") == std::string_view::npos;
        return number ? '\0' : row.mark;
    }
    return 0;
}

void Compare(const Catalog& reference, const Catalog& catalog, Findings& findings)
{
    for (const CatalogEntry& entry : catalog.Entries()) {
        const CatalogEntry* const base = reference.Find(entry.key);
        if (base == nullptr) {
            findings.Add({catalog.File(), entry.line, Severity::kWarning,
                          "the key " + Quoted(entry.key) + " is not in " + reference.File(),
                          "obsolete-key"});
            continue;
        }
        const std::string wanted = Placeholders(base->value);
        const std::string found = Placeholders(entry.value);
        if (wanted != found)
            findings.Add({catalog.File(), entry.line, Severity::kError,
                          "placeholders of " + Quoted(entry.key) + " differ: " + Named(found) +
                              " here, " + Named(wanted) + " in " + reference.File(),
                          "placeholders"});
        if (!entry.value.empty() && EndMark(base->value) != EndMark(entry.value))
            findings.Add(
                {catalog.File(), entry.line, Severity::kWarning,
                 Quoted(entry.key) + " ends in other punctuation than in " + reference.File(),
                 "end-punctuation"});
    }
    for (const CatalogEntry& base : reference.Entries()) {
        if (catalog.Find(base.key) == nullptr)
            findings.Add({reference.File(), base.line, Severity::kWarning,
                          "the key " + Quoted(base.key) + " is missing in " + catalog.File(),
                          "missing-key"});
    }
}

void CheckFile(const std::string& file, const Catalog* reference, Findings& findings)
{
    const std::string content = ReadInput(file);
    if (IsImage(content)) {
        morvish::Dictionary dictionary;
        dictionary.LoadFromMemory(content.data(), content.size());
        if (!dictionary.Valid() || dictionary.MajorVersion() == 0) {
            findings.Add({file, 1, Severity::kError,
                          "the binary image is broken or of a version that is not read",
                          "broken-image"});
            return;
        }
    } else {
        LineChecker(file, findings).Check(content);
    }
    if (reference != nullptr)
        Compare(*reference, Catalog(file), findings);
}

}  // namespace

int RunCheck(const Arguments& arguments)
{
    constexpr std::string_view kFormats[] = {"text", "json"};
    const bool asJson = arguments.Choice("--format", kFormats) == "json";
    std::optional<Catalog> reference;
    if (const auto base = arguments.Value("--reference"))
        reference.emplace(*base);
    Findings findings;
    for (const std::string& file : arguments.Files())
        CheckFile(file, reference ? &*reference : nullptr, findings);
    findings.PrintAll(asJson);
    const bool bad =
        findings.Errors() > 0 || (arguments.Has("--strict") && findings.Warnings() > 0);
    return bad ? kBad : kDone;
}

}  // namespace pemtext
