#include "tools/svgloom/check/Reporter.h"

#include <algorithm>

namespace svgloom {

namespace {

bool EndsReading(Rule rule)
{
    return rule == Rule::kClipPathShort || rule == Rule::kGradientHrefEmpty ||
           rule == Rule::kDeclarationNoColon || rule == Rule::kSelectorEmpty;
}

}  // namespace

void Reporter::Report(Rule rule, std::size_t offset, std::string_view first,
                      std::string_view second)
{
    if (isQuiet_ && !EndsReading(rule)) {
        return;
    }
    if (findings_.size() >= kMaxFindings) {
        ++more_;
        return;
    }
    findings_.push_back({rule, offset, MessageOf(rule, first, second)});
}

std::vector<ArtworkFinding> Reporter::Take()
{
    std::ranges::stable_sort(findings_, {}, &ArtworkFinding::offset);
    if (more_ > 0) {
        const std::size_t last = findings_.back().offset;
        findings_.push_back(
            {Rule::kMoreFindings, last, MessageOf(Rule::kMoreFindings, std::to_string(more_), {})});
    }
    return std::move(findings_);
}

std::string Shown(std::string_view text)
{
    constexpr std::size_t kMaxBytes = 40;
    constexpr unsigned kContinuationMask = 0xC0;
    constexpr unsigned kContinuation = 0x80;
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        // Not inside a character.
        if (shown.size() >= kMaxBytes && (byte & kContinuationMask) != kContinuation) {
            return shown + "...";
        }
        if (shown.size() >= 2 * kMaxBytes) {
            return shown + "...";
        }
        shown += byte < ' ' || byte == 0x7F ? ' ' : c;
    }
    return shown;
}

}  // namespace svgloom
