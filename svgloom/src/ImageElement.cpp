#include "svgloom/src/ImageElement.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/ShapeBuilder.h"

namespace SVGLoom {

namespace {

struct FormatRow {
    std::string_view prefix;
    ImageFormat format;
};

constexpr FormatRow kFormats[] = {
    {"data:image/png;base64,", ImageFormat::kPNG},
    {"data:image/jpg;base64,", ImageFormat::kJPEG},
    {"data:image/jpeg;base64,", ImageFormat::kJPEG},
};

enum class Align { kMin, kMid, kMax };

struct AlignmentRow {
    std::string_view name;
    Align x;
    Align y;
};

// Any other word centres, "xMidYMid" too.
constexpr AlignmentRow kAlignments[] = {
    {"xMinYMin", Align::kMin, Align::kMin}, {"xMidYMin", Align::kMid, Align::kMin},
    {"xMaxYMin", Align::kMax, Align::kMin}, {"xMinYMid", Align::kMin, Align::kMid},
    {"xMaxYMid", Align::kMax, Align::kMid}, {"xMinYMax", Align::kMin, Align::kMax},
    {"xMidYMax", Align::kMid, Align::kMax}, {"xMaxYMax", Align::kMax, Align::kMax},
};

float Place(Align align, float start, float extent, float size)
{
    switch (align) {
        case Align::kMin:
            return start;
        case Align::kMax:
            return start + extent - size;
        default:
            return start + extent * 0.5f - size * 0.5f;
    }
}

struct AspectRatio {
    std::string_view alignment = "xMidYMid";
    bool slice = false;
};

/// One or two words count; of any other number nothing does.
AspectRatio ReadAspectRatio(std::string_view text)
{
    AspectRatio ratio;
    const std::vector<std::string_view> words = SVGStringParser::SplitWords(text);
    if (words.size() == 1 || words.size() == 2) {
        ratio.alignment = words[0];
        ratio.slice = words.size() == 2 && words[1] == "slice";
    }
    return ratio;
}

/// Where an image of `width` by `height` lands in `viewport`.
Rect Fit(const AspectRatio& ratio, const Rect& viewport, float width, float height)
{
    if (ratio.alignment == "none") {
        return viewport;
    }
    const float sx = viewport.width / width;
    const float sy = viewport.height / height;
    const float scale = ratio.slice ? std::max(sx, sy) : std::min(sx, sy);
    const float scaledWidth = scale * width;
    const float scaledHeight = scale * height;
    Align x = Align::kMid;
    Align y = Align::kMid;
    for (const AlignmentRow& row : kAlignments) {
        if (row.name == ratio.alignment) {
            x = row.x;
            y = row.y;
        }
    }
    return {Place(x, viewport.x, viewport.width, scaledWidth),
            Place(y, viewport.y, viewport.height, scaledHeight), scaledWidth, scaledHeight};
}

std::shared_ptr<ImageData> ReadData(std::string_view href, SVGRenderer& renderer)
{
    for (const FormatRow& row : kFormats) {
        if (href.starts_with(row.prefix)) {
            return renderer.CreateImageData(href.substr(row.prefix.size()), row.format);
        }
    }
    return nullptr;
}

}  // namespace

std::optional<PlacedImage> BuildImage(const Attributes& attributes, const Rect& viewBox,
                                      SVGRenderer& renderer)
{
    PlacedImage image;
    image.data = ReadData(attributes.Href(), renderer);
    if (image.data == nullptr) {
        return std::nullopt;
    }
    const float width = image.data->Width();
    const float height = image.data->Height();
    const LengthReader lengths(viewBox);
    image.clipArea = {lengths.Get(attributes, AttributeName::kX, 0),
                      lengths.Get(attributes, AttributeName::kY, 0),
                      lengths.Get(attributes, AttributeName::kWidth, width),
                      lengths.Get(attributes, AttributeName::kHeight, height)};
    image.fillArea = Fit(ReadAspectRatio(attributes.Text(AttributeName::kPreserveAspectRatio)),
                         image.clipArea, width, height);
    for (const float extent : {width, height, image.clipArea.width, image.clipArea.height,
                               image.fillArea.width, image.fillArea.height}) {
        if (extent == 0) {
            return std::nullopt;
        }
    }
    return image;
}

}  // namespace SVGLoom
