#include "tools/svgloom/check/SourceText.h"

#include <algorithm>
#include <functional>

namespace svgloom {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSection = "<![CDATA[";

bool ContinuesCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The length of the reference at the start of `text` as the XML library reads it; 0 if it copies
/// the "&" as it is.
std::size_t ReferenceLength(std::string_view text)
{
    for (const std::string_view name : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
        if (text.starts_with(name)) {
            return name.size();
        }
    }
    if (!text.starts_with("&#")) {
        return 0;
    }
    const std::size_t end = text.find(';');
    return end != std::string_view::npos ? end + 1 : 0;
}

}  // namespace

SourceText::SourceText(std::string_view text) : original_(text.substr(0, text.find('\0')))
{
    copy_ = original_;
}

bool SourceText::Holds(const char* place) const
{
    return !std::less<const char*>()(place, copy_.data()) &&
           !std::less<const char*>()(copy_.data() + copy_.size(), place);
}

SourceValue::SourceValue(const SourceText& source, std::string_view text, std::size_t otherwise)
    : text_(text), start_(otherwise)
{
    if (!source.Holds(text.data())) {
        return;
    }
    start_ = source.OffsetOf(text.data());
    original_ = source.Original().substr(start_);
    // Nothing is translated in a section. A value without "&" is as long here as there.
    const bool isSection = source.Original().substr(0, start_).ends_with(kSection);
    hasReferences_ =
        !isSection && original_.substr(0, text.size()).find('&') != std::string_view::npos;
}

std::size_t SourceValue::OffsetAt(std::size_t index) const
{
    if (!hasReferences_) {
        return start_ + std::min(index, original_.size());
    }
    if (index < index_) {
        index_ = 0;
        offset_ = 0;
    }
    while (index_ < index && offset_ < original_.size()) {
        const std::size_t reference =
            original_[offset_] == '&' ? ReferenceLength(original_.substr(offset_)) : 0;
        ++index_;
        if (reference == 0) {
            ++offset_;
            continue;
        }
        // A reference is one character, which can be several bytes.
        while (index_ < text_.size() && ContinuesCharacter(text_[index_])) {
            ++index_;
        }
        offset_ += reference;
    }
    return start_ + offset_;
}

LinePlaces::LinePlaces(std::string_view text) : text_(text)
{
    if (text.starts_with(kByteOrderMark)) {
        offset_ = kByteOrderMark.size();
    }
}

LinePlaces::Place LinePlaces::Advance(std::size_t offset)
{
    const std::size_t end = std::min(offset, text_.size());
    for (; offset_ < end; ++offset_) {
        const char c = text_[offset_];
        const bool isPair = c == '\r' && offset_ + 1 < text_.size() && text_[offset_ + 1] == '\n';
        if (c == '\n' || (c == '\r' && !isPair)) {
            ++place_.line;
            place_.column = 1;
        } else if (!ContinuesCharacter(c) && !isPair) {
            ++place_.column;
        }
    }
    return place_;
}

}  // namespace svgloom
