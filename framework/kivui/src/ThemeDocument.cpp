#include "framework/kivui/src/ThemeDocument.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include <kivcore/Xml.h>

namespace kivui::ui {

namespace {

using kivcore::xml::Attributes;

constexpr int kOldestVersion = 2;
constexpr int kNewestVersion = 5;

constexpr std::string_view kSpace = " \t\r\n";

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

template <class Number>
std::optional<Number> ParseNumber(std::string_view text)
{
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stopped != end || text.empty()) {
        return std::nullopt;
    }
    return value;
}

// "#RRGGBB" or "#RRGGBBAA".
std::optional<ColorRGBA> ParseColor(std::string_view text)
{
    if ((text.size() != 7 && text.size() != 9) || text.front() != '#') {
        return std::nullopt;
    }
    float parts[4] = {0, 0, 0, 1};
    for (std::size_t i = 0; 2 * i + 1 < text.size(); ++i) {
        std::uint8_t byte = 0;
        const char* const first = text.data() + 2 * i + 1;
        const auto [stopped, error] = std::from_chars(first, first + 2, byte, 16);
        if (error != std::errc() || stopped != first + 2) {
            return std::nullopt;
        }
        parts[i] = static_cast<float>(byte) / 255.0f;
    }
    return ColorRGBA{parts[0], parts[1], parts[2], parts[3]};
}

class Handler : public kivcore::xml::DocHandler {
public:
    Handler(const kivcore::xml::DocParser& parser, std::string_view sourceName)
        : parser_(parser), sourceName_(sourceName)
    {
    }

    void StartElement(const std::string& name, const Attributes& attributes) override
    {
        ++depth_;
        if (depth_ == 1) {
            Root(name, attributes);
        } else if (depth_ == 2 && name == "color") {
            ColorRow(attributes);
        } else if (depth_ == 2 && name == "fontsize") {
            FontSizeRow(attributes);
        } else {
            Refuse("element \"" + name + "\" does not belong here");
        }
    }

    void EndElement(const std::string&) override { --depth_; }

    void Text(std::string_view text) override
    {
        if (!Trimmed(text).empty()) {
            Refuse("text does not belong here");
        }
    }

    ThemeDocument Take() { return std::move(document_); }

private:
    [[noreturn]] void Refuse(const std::string& reason) const
    {
        throw kivcore::xml::ParseError(sourceName_ + ":" + std::to_string(parser_.Line()) + ": " +
                                       reason);
    }

    const std::string& Required(const Attributes& attributes, std::string_view name) const
    {
        const std::string* const value = kivcore::xml::FindAttribute(attributes, name);
        if (value == nullptr) {
            Refuse("attribute \"" + std::string(name) + "\" is missing");
        }
        return *value;
    }

    std::size_t Index(const Attributes& attributes, std::size_t limit) const
    {
        const std::string& text = Required(attributes, "index");
        const std::optional<std::size_t> index = ParseNumber<std::size_t>(text);
        if (!index || *index >= limit) {
            Refuse("index \"" + text + "\" is no number below " + std::to_string(limit));
        }
        return *index;
    }

    void Root(const std::string& name, const Attributes& attributes) const
    {
        if (name != "colorthemes") {
            Refuse("the document is \"" + name + "\", not \"colorthemes\"");
        }
        const std::string& text = Required(attributes, "version");
        const std::optional<int> version = ParseNumber<int>(text);
        if (!version || *version < kOldestVersion || *version > kNewestVersion) {
            Refuse("version \"" + text + "\" is not known");
        }
    }

    void ColorRow(const Attributes& attributes)
    {
        const std::size_t index = Index(attributes, kMaxThemeColors);
        if (index >= document_.colors.size()) {
            document_.colors.resize(index + 1);
        }
        KeyFrames& frames = document_.colors[index];
        if (!frames.empty()) {
            Refuse("color " + std::to_string(index) + " stands twice");
        }
        std::string_view rest = Required(attributes, "keys");
        for (bool isLast = false; !isLast;) {
            const std::size_t bar = rest.find('|');
            isLast = bar == std::string_view::npos;
            AddFrame(Trimmed(rest.substr(0, bar)), frames);
            rest.remove_prefix(isLast ? rest.size() : bar + 1);
        }
    }

    void AddFrame(std::string_view text, KeyFrames& frames) const
    {
        const std::size_t space = text.find_first_of(kSpace);
        const std::optional<float> percent = ParseNumber<float>(text.substr(0, space));
        const std::optional<ColorRGBA> color = ParseColor(
            space == std::string_view::npos ? std::string_view() : Trimmed(text.substr(space)));
        if (!percent || !(*percent >= 0 && *percent <= 100) || !color) {
            Refuse("key frame \"" + std::string(text) +
                   "\" is no brightness from 0 to 100 and color #RRGGBB or #RRGGBBAA");
        }
        if (!frames.empty() && *percent < frames.back().percent) {
            Refuse("key frame \"" + std::string(text) + "\" goes back in brightness");
        }
        if (frames.size() == kMaxKeyFrames) {
            Refuse("more than " + std::to_string(kMaxKeyFrames) + " key frames");
        }
        frames.push_back({*percent, *color});
    }

    void FontSizeRow(const Attributes& attributes)
    {
        const std::size_t index = Index(attributes, kMaxThemeFontSizes);
        const std::string& text = Required(attributes, "size");
        const std::optional<double> size = ParseNumber<double>(text);
        if (!size || !(*size > 0 && *size <= kMaxThemeFontSize)) {
            Refuse("font size \"" + text + "\" is not above 0 and at most 96");
        }
        if (index >= document_.fontSizes.size()) {
            document_.fontSizes.resize(index + 1);
        }
        document_.fontSizes[index] = *size;
    }

    const kivcore::xml::DocParser& parser_;
    std::string sourceName_;
    ThemeDocument document_;
    int depth_ = 0;
};

float Between(float from, float to, float part)
{
    return from + (to - from) * part;
}

}  // namespace

ColorRGBA ColorAt(std::span<const KeyFrame> frames, float percent)
{
    if (frames.empty()) {
        return {0, 0, 0, 0};
    }
    // The first frame behind `percent`; of several at `percent` itself the last one counts.
    const auto next =
        std::upper_bound(frames.begin(), frames.end(), percent,
                         [](float value, const KeyFrame& frame) { return value < frame.percent; });
    if (next == frames.begin()) {
        return frames.front().color;
    }
    const KeyFrame& before = *(next - 1);
    if (next == frames.end()) {
        return before.color;
    }
    const float part = (percent - before.percent) / (next->percent - before.percent);
    return {Between(before.color.red, next->color.red, part),
            Between(before.color.green, next->color.green, part),
            Between(before.color.blue, next->color.blue, part),
            Between(before.color.alpha, next->color.alpha, part)};
}

ThemeDocument ReadThemeDocument(std::string_view text, std::string_view sourceName)
{
    const std::unique_ptr<kivcore::xml::DocParser> parser = kivcore::xml::NewParser();
    Handler handler(*parser, sourceName);
    parser->Parse(text, sourceName, handler);
    return handler.Take();
}

}  // namespace kivui::ui
