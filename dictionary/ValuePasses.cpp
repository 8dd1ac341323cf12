#include "dictionary/ValuePasses.h"

#include "dictionary/ValueTables.h"

#include <span>

namespace morvish_private {

namespace {

constexpr std::u16string_view kCopyYear = u"2026";

// The shortest marker: "#{", one unit, "}".
constexpr std::size_t kShortestMarker = 4;

void RunEscapePass(std::u16string_view text, std::u16string& out)
{
    out.clear();
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t escape = text[i];
        if ((escape != u'^' && escape != u'\\') || i + 1 == text.size()) {
            out += escape;
            continue;
        }
        const char16_t unit = text[++i];
        bool found = false;
        for (const EscapeRow& row : escape == u'^' ? CaretTable() : BackslashTable()) {
            found = row.unit == unit;
            if (found) {
                out += row.result;
                break;
            }
        }
        if (found)
            continue;
        out += escape;
        if (unit != escape)
            out += unit;
    }
}

class MarkerPass {
public:
    MarkerPass(std::u16string_view text, std::u16string& out) : text_(text), out_(out) {}

    void Run()
    {
        out_.clear();
        out_.reserve(text_.size());
        std::size_t hash;
        while ((hash = text_.find(u'#', position_)) != std::u16string_view::npos) {
            if (!TakeMarker(hash)) {
                // A '#' that stands for itself is copied, with all that comes before it, even where
                // text is being skipped. This is for compatibility; the text of another platform
                // must not hold one. ValuePasses.LiteralHashLeaks holds it.
                CopyUpTo(hash + 1);
            }
            if (stopped_)
                return;
        }
        if (!skipping_)
            CopyUpTo(text_.size());
    }

private:
    // @return false, having done nothing, if no whole marker stands at `hash`
    bool TakeMarker(std::size_t hash)
    {
        if (text_.size() - hash < kShortestMarker || text_[hash + 1] != u'{')
            return false;
        const std::u16string_view rest = text_.substr(hash + 2);
        const MarkerRow* const row = FindMarker(rest.data(), rest.size());
        CodePointReference reference{};
        std::size_t length;
        if (row != nullptr) {
            length = row->length;
        } else {
            reference = ParseCodePoint(rest.data(), rest.size());
            if (reference.prefix == nullptr)
                return false;
            length = reference.consumed;
        }
        if (length == rest.size() || rest[length] != u'}')
            return false;

        if (!skipping_)
            CopyUpTo(hash);
        position_ = hash + 2 + length + 1;
        if (row != nullptr)
            Act(*row);
        else
            out_ += reference.value;  // also while skipping, for compatibility
        return true;
    }

    void Act(const MarkerRow& row)
    {
        switch (SpecialMarkerOf(row)) {
            case SpecialMarker::kNone:
                Emit({&row.code, 1});
                break;
            case SpecialMarker::kEndl:
                Emit(u"\r\n");
                break;
            case SpecialMarker::kComment:
                stopped_ = !skipping_;
                break;
            case SpecialMarker::kCopyYear:
                Emit(kCopyYear);
                break;
            case SpecialMarker::kOwnPlatform:
                out_.clear();
                skipping_ = false;
                seenOwnPlatform_ = true;
                break;
            case SpecialMarker::kOtherPlatform:
                stopped_ = seenOwnPlatform_;
                skipping_ = true;
                break;
        }
    }

    void Emit(std::u16string_view units)
    {
        if (!skipping_)
            out_ += units;
    }

    void CopyUpTo(std::size_t limit)
    {
        out_ += text_.substr(position_, limit - position_);
        position_ = limit;
    }

    const std::u16string_view text_;
    std::u16string& out_;
    std::size_t position_ = 0;
    bool skipping_ = false;
    bool seenOwnPlatform_ = false;
    bool stopped_ = false;
};

}  // namespace

std::u16string EscapeValue(const char16_t* text, std::size_t lengthUnits)
{
    ValueProcessor processor;
    return std::u16string(processor.Process({text, lengthUnits}));
}

std::u16string SubstituteMarkers(const char16_t* text, std::size_t lengthUnits)
{
    std::u16string out;
    MarkerPass({text, lengthUnits}, out).Run();
    return out;
}

std::u16string_view ValueProcessor::Process(std::u16string_view raw)
{
    bool escapes = false;
    bool markers = false;
    for (const char16_t unit : raw) {
        escapes |= (unit == u'^') | (unit == u'\\');
        markers |= unit == u'#';
    }
    // Most values hold neither. No escape makes a '#', so its absence can be told before the first
    // pass.
    std::u16string_view text = raw;
    if (escapes) {
        RunEscapePass(text, escaped_);
        text = escaped_;
    }
    if (markers) {
        MarkerPass(text, substituted_).Run();
        text = substituted_;
    }
    return text;
}

}  // namespace morvish_private
