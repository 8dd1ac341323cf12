#include "framework/kivxmp/src/TagScanner.h"

#include <algorithm>

namespace kivxmp {
namespace {

constexpr std::string_view kSpaces = " \t\r\n";

std::size_t SkipSpaces(std::string_view text, std::size_t at) noexcept
{
    return std::min(text.find_first_not_of(kSpaces, at), text.size());
}

/// Behind the construct "<!...>" or "<?...?>" at `at`; npos if it has no end.
std::size_t SkipMarkup(std::string_view text, std::size_t at) noexcept
{
    struct Construct {
        std::string_view opening;
        std::string_view closing;
    };
    constexpr Construct kConstructs[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"</", ">"}};
    for (const Construct& construct : kConstructs) {
        if (text.substr(at, construct.opening.size()) == construct.opening) {
            const std::size_t end = text.find(construct.closing, at + construct.opening.size());
            return end == std::string_view::npos ? end : end + construct.closing.size();
        }
    }
    return std::string_view::npos;
}

}  // namespace

std::string_view PrefixOf(std::string_view name) noexcept
{
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

StartTag ScanStartTag(std::string_view text, std::size_t begin)
{
    StartTag tag;
    std::size_t at = std::min(text.find_first_of(" \t\r\n/>", begin + 1), text.size());
    tag.name = text.substr(begin + 1, at - begin - 1);
    tag.nameEnd = tag.attributesEnd = at;
    while (at < text.size()) {
        const std::size_t spaceBegin = at;
        at = SkipSpaces(text, at);
        if (at == text.size()) {
            break;
        }
        if (text[at] == '/' || text[at] == '>') {
            tag.isEmpty = text[at] == '/';
            tag.end = std::min(at + (tag.isEmpty ? 2 : 1), text.size());
            return tag;
        }
        const std::size_t nameBegin = at;
        at = std::min(text.find_first_of(" \t\r\n=", at), text.size());
        const std::string_view name = text.substr(nameBegin, at - nameBegin);
        const std::size_t quote = text.find_first_of("\"'", at);
        const std::size_t close =
            quote == std::string_view::npos ? quote : text.find(text[quote], quote + 1);
        if (close == std::string_view::npos) {
            break;
        }
        at = close + 1;
        tag.attributes.push_back({name, spaceBegin, {nameBegin, at}});
        tag.attributesEnd = at;
    }
    tag.end = text.size();
    return tag;
}

std::vector<std::string_view> PrefixesUsed(std::string_view xml)
{
    std::vector<std::string_view> prefixes;
    std::size_t at = 0;
    while ((at = xml.find('<', at)) != std::string_view::npos && at + 1 < xml.size()) {
        const char next = xml[at + 1];
        if (next == '!' || next == '?' || next == '/') {
            at = SkipMarkup(xml, at);
            continue;
        }
        const StartTag tag = ScanStartTag(xml, at);
        prefixes.push_back(PrefixOf(tag.name));
        for (const AttributePlace& attribute : tag.attributes) {
            const std::string_view prefix = PrefixOf(attribute.name);
            if (!prefix.empty() && prefix != "xmlns" && prefix != "xml") {
                prefixes.push_back(prefix);
            }
        }
        at = tag.end;
    }
    std::sort(prefixes.begin(), prefixes.end());
    prefixes.erase(std::unique(prefixes.begin(), prefixes.end()), prefixes.end());
    return prefixes;
}

}  // namespace kivxmp
