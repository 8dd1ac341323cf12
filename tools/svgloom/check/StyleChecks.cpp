// A style sheet is cleaned and taken apart by the engine itself; only the way back from the cleaned
// text to the file is found here, by walking along both.

#include "tools/svgloom/check/StyleChecks.h"

#include <algorithm>

#include "svgloom/src/Declarations.h"
#include "svgloom/src/StyleSheet.h"
#include "svgloom/src/StyleText.h"
#include "tools/svgloom/check/PropertyChecks.h"
#include "tools/svgloom/check/References.h"
#include "tools/svgloom/check/UnreadNames.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::Selector;
using SVGLoom::SelectorKind;
using SVGLoom::TrimStyleText;

constexpr std::string_view kOpenComment = "/*";
constexpr std::string_view kCloseComment = "*/";

/// The cleaned text of a sheet, without comments.
class CleanedSheet final : public Locator {
public:
    explicit CleanedSheet(const SourceValue& value)
        : value_(value), text_(SVGLoom::CleanStyleText(value.Text()))
    {
        SVGLoom::RemoveComments(text_);
        Align();
    }

    std::string_view Text() const { return text_; }
    std::size_t OffsetOf(const char* place) const override
    {
        const auto index = static_cast<std::size_t>(place - text_.data());
        const auto next = std::ranges::upper_bound(shifts_, index, {}, &Shift::index);
        return value_.OffsetAt(next == shifts_.begin() ? index : index + std::prev(next)->shift);
    }

private:
    /// From `index` on, characters stand `shift` behind in the value.
    struct Shift {
        std::size_t index;
        std::size_t shift;
    };

    /// Finds what the cleaning left out: white space at the start, one of CR LF, and comments.
    void Align()
    {
        const std::string_view raw = value_.Text();
        const std::string_view trimmed = TrimStyleText(raw);
        if (trimmed.empty()) {
            return;
        }
        auto at = static_cast<std::size_t>(trimmed.data() - raw.data());
        std::size_t shift = 0;
        for (std::size_t index = 0; index < text_.size() && at < raw.size(); ++index, ++at) {
            for (;;) {
                if (raw.substr(at).starts_with(kOpenComment)) {
                    at = std::min(raw.find(kCloseComment, at + kOpenComment.size()), raw.size());
                    at = std::min(at + kCloseComment.size(), raw.size());
                } else if (raw.substr(at).starts_with("\r\n")) {
                    ++at;
                    break;
                } else {
                    break;
                }
            }
            if (at - index != shift) {
                shift = at - index;
                shifts_.push_back({index, shift});
            }
        }
    }

    const SourceValue& value_;
    std::string text_;
    std::vector<Shift> shifts_;
};

/// Whether a name is read, or would show if it were.
bool Matters(std::string_view name, std::string_view value)
{
    const AttributeName known = SVGLoom::FindAttribute(name);
    return SVGLoom::IsProperty(known) || LookUpAttribute(name, value).loss == Loss::kEffect;
}

void CheckName(std::string_view name, std::string_view value, const Locator& where,
               Reporter& reporter)
{
    if (name.starts_with(kOpenComment)) {
        return;  // told as a comment
    }
    const UnreadName unread = LookUpAttribute(name, value);
    if (unread.loss == Loss::kEffect) {
        reporter.Report(Rule::kPropertyUnread, where.OffsetOf(name.data()), Shown(name),
                        unread.advice);
    } else if (unread.loss == Loss::kUnknown) {
        reporter.Report(Rule::kPropertyUnknown, where.OffsetOf(name.data()), Shown(name));
    }
}

/// A class as the class attribute of an element can name it.
bool IsOneClass(const Selector& selector)
{
    return selector.kind == SelectorKind::kClass &&
           selector.name.find_first_of(" \t.:#>+~*[") == std::string_view::npos;
}

/// @return whether the selector can match an element
bool CheckSelector(std::string_view text, const Locator& where, SheetClasses& classes,
                   Reporter& reporter)
{
    const std::size_t offset = where.OffsetOf(text.data());
    if (text.starts_with('@')) {
        reporter.Report(Rule::kAtRule, offset, Shown(text));
        return false;
    }
    const Selector selector = SVGLoom::ParseSelector(text);
    if (!IsOneClass(selector)) {
        reporter.Report(Rule::kSelectorUnmatched, offset, Shown(text));
        return false;
    }
    if (classes.used.Find(selector.name) != nullptr) {
        reporter.Report(Rule::kStyleLate, offset, Shown(text));
    }
    classes.order[selector.name] = offset;
    return true;
}

/// @return false if an error ends the reading
bool CheckDeclarations(std::string_view block, Block kind, const Locator& where, Reporter& reporter)
{
    bool goesOn = true;
    StyleTexts seen{};
    const auto check = [&](std::string_view piece) {
        if (!goesOn) {
            return;
        }
        const std::size_t colon = piece.find(':');
        if (colon == std::string_view::npos) {
            reporter.Report(Rule::kDeclarationNoColon, where.OffsetOf(piece.data()),
                            Shown(TrimStyleText(piece)));
            goesOn = false;
            return;
        }
        const std::string_view name = TrimStyleText(piece.substr(0, colon));
        const std::string_view value = TrimStyleText(piece.substr(colon + 1));
        if (value.empty() || name.empty() || kind == Block::kUnmatched) {
            return;
        }
        const AttributeName property = SVGLoom::FindAttribute(name);
        if (!SVGLoom::IsProperty(property)) {
            const bool isSize =
                property == AttributeName::kWidth || property == AttributeName::kHeight;
            if (isSize && kind == Block::kRoot) {
                return;
            }
            CheckName(name, value, where, reporter);
            return;
        }
        std::string_view& first = seen[static_cast<std::size_t>(property)];
        if (!first.empty()) {
            if (first != value) {
                reporter.Report(Rule::kDeclarationTwice, where.OffsetOf(name.data()), name);
            }
            return;
        }
        first = value;
        const bool hides =
            property == AttributeName::kDisplay || property == AttributeName::kVisibility;
        if (hides && kind == Block::kNotDrawn) {
            return;
        }
        CheckProperty(property, value, where, reporter);
    };
    const std::string_view rest = TrimStyleText(SVGLoom::ForEachPiece(block, check));
    const std::size_t colon = rest.find(':');
    if (goesOn && kind != Block::kUnmatched && colon != std::string_view::npos &&
        Matters(TrimStyleText(rest.substr(0, colon)), TrimStyleText(rest.substr(colon + 1)))) {
        reporter.Report(Rule::kDeclarationOpen, where.OffsetOf(rest.data()), Shown(rest));
    }
    return goesOn;
}

}  // namespace

bool CheckStyleAttribute(const SourceValue& value, Block kind, Reporter& reporter)
{
    const std::string_view text = value.Text();
    const std::size_t comment = text.find(kOpenComment);
    if (comment != std::string_view::npos) {
        reporter.Report(Rule::kStyleComment, value.OffsetAt(comment));
    }
    return CheckDeclarations(text, kind, value, reporter);
}

bool CheckStyleSheet(const SourceValue& value, SheetClasses& classes, Reporter& reporter)
{
    const CleanedSheet sheet(value);
    bool goesOn = true;
    SVGLoom::ForEachRule(sheet.Text(), [&](std::string_view selectors, std::string_view block) {
        bool matches = false;
        SVGLoom::ForEachSelector(selectors, [&](std::string_view text) {
            if (goesOn && text == ".") {
                reporter.Report(Rule::kSelectorEmpty, sheet.OffsetOf(text.data()));
                goesOn = false;
            } else if (goesOn) {
                matches = CheckSelector(text, sheet, classes, reporter) || matches;
            }
        });
        if (goesOn) {
            goesOn = CheckDeclarations(block, matches ? Block::kApplied : Block::kUnmatched, sheet,
                                       reporter);
        }
    });
    return goesOn;
}

}  // namespace svgloom
