#include "tools/svgloom/check/RootChecks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/ShapeBuilder.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::Attributes;
using SVGLoom::SVGStringParser;

constexpr std::string_view kNamespace = "http://www.w3.org/2000/svg";

std::string SizeText(const SVGLoom::Rect& viewBox)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g by %g", static_cast<double>(viewBox.width),
                  static_cast<double>(viewBox.height));
    return text;
}

void ReadPrefixes(CheckedArtwork& artwork, const CheckedElement& root)
{
    for (const NamedValue& each : root.attributes.All()) {
        constexpr std::string_view kPrefix = "xmlns:";
        if (each.value == kNamespace && each.name.starts_with(kPrefix)) {
            artwork.prefixes[each.name.substr(kPrefix.size())] = true;
        }
    }
}

void CheckSizeRatio(CheckedArtwork& artwork, const CheckedElement& root)
{
    constexpr float kSeen = 0.01f;
    float width = 0;
    float height = 0;
    const SVGLoom::LengthReader lengths(artwork.viewBox);
    if (!lengths.Read(root.Known(), AttributeName::kWidth, width) ||
        !lengths.Read(root.Known(), AttributeName::kHeight, height)) {
        return;
    }
    const float a = width * artwork.viewBox.height;
    const float b = height * artwork.viewBox.width;
    if (std::abs(a - b) > kSeen * std::max(std::abs(a), std::abs(b))) {
        artwork.reporter.Report(Rule::kSizeRatio,
                                artwork.Value(root, AttributeName::kWidth).OffsetAt(0));
    }
}

}  // namespace

void CheckViewBox(CheckedArtwork& artwork, const CheckedElement& root)
{
    ReadPrefixes(artwork, root);
    const Attributes& known = root.Known();
    const std::string_view text = known.Text(AttributeName::kViewBox);
    const std::size_t offset = known.Has(AttributeName::kViewBox)
                                   ? artwork.Value(root, AttributeName::kViewBox).OffsetAt(0)
                                   : root.offset;
    std::vector<float> numbers;
    const bool isRead =
        known.Has(AttributeName::kViewBox) && SVGStringParser::ParseNumberList(text, numbers);
    if (known.Has(AttributeName::kViewBox) && numbers.size() != 4) {
        artwork.reporter.Report(Rule::kViewBoxInvalid, offset, Shown(text));
    }
    if (isRead && numbers.size() == 4) {
        artwork.viewBox = {numbers[0], numbers[1], numbers[2], numbers[3]};
    } else if (!isRead) {
        const SVGLoom::Rect before = artwork.viewBox;
        const SVGLoom::LengthReader lengths(before);
        lengths.Read(known, AttributeName::kX, artwork.viewBox.x);
        lengths.Read(known, AttributeName::kY, artwork.viewBox.y);
        bool isSized = true;
        for (const AttributeName name : {AttributeName::kWidth, AttributeName::kHeight}) {
            float& side =
                name == AttributeName::kWidth ? artwork.viewBox.width : artwork.viewBox.height;
            isSized = lengths.Read(known, name, side) &&
                      known.Text(name).find('%') == std::string_view::npos && isSized;
        }
        if (!isSized) {
            artwork.reporter.Report(Rule::kViewBoxMissing, root.offset, SizeText(artwork.viewBox));
        }
    }
    if (isRead && numbers.size() == 4) {
        CheckSizeRatio(artwork, root);
    }
    if (artwork.viewBox.width == 0 && artwork.viewBox.height == 0) {
        artwork.reporter.Report(Rule::kViewBoxEmpty, offset, SizeText(artwork.viewBox));
    } else if (artwork.viewBox.width <= 0 || artwork.viewBox.height <= 0) {
        artwork.reporter.Report(Rule::kNegativeSize, offset, "viewBox", SizeText(artwork.viewBox));
    }
    const std::string_view ratio = known.Text(AttributeName::kPreserveAspectRatio);
    const std::vector<std::string_view> words = SVGStringParser::SplitWords(ratio);
    if (!words.empty() && (words[0] != "xMinYMin" || (words.size() > 1 && words[1] == "slice"))) {
        artwork.reporter.Report(
            Rule::kPreserveAspectRatio,
            artwork.Value(root, AttributeName::kPreserveAspectRatio).OffsetAt(0), Shown(ratio));
    }
}

}  // namespace svgloom
