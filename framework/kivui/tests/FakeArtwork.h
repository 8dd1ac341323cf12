// Icons for tests of what draws them: each picture is one colour all over, which tells the icon and
// the theme's colour that it was drawn in.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include <kivui/IconCache.h>
#include <kivui/NodeManager.h>
#include <kivui/SVG.h>

namespace kivui::ui {

struct FakeIcon {
    std::string_view name;      // the artwork's text as well
    std::string_view variable;  // whose colour it takes
};
inline constexpr FakeIcon kFakeIcons[] = {
    {"camera", "icon"},           {"check", "icon"},      {"cross", "icon"},
    {"error", "error"},           {"mixed", "icon"},      {"star", "star"},
    {"star-empty", "star-empty"}, {"warning", "warning"}, {"revert", "icon"},
};

/// Red is the number of the theme's colour, green that of the icon, from 1 on.
inline std::string NameOfPixel(std::uint32_t argb)
{
    const std::size_t number = (argb >> 8) & 0xFFU;
    return number >= 1 && number <= std::size(kFakeIcons) ? std::string(kFakeIcons[number - 1].name)
                                                          : "?";
}

/// Registers the icons and a handler that draws them, for as long as it lives.
class FakeArtwork final : private svg::ISVGHandler {
public:
    FakeArtwork()
    {
        for (const FakeIcon& icon : kFakeIcons) {
            IconCache::Register(icon.name, icon.name);
        }
        manager_.SetSVGHandler(this);
        UI_NodeManager::Set(&manager_);
    }
    ~FakeArtwork()
    {
        manager_.SetSVGHandler(nullptr);
        IconCache::Terminate();
    }

private:
    struct Manager : OS_NodeManager {};
    struct Document : svg::ISVGDocument {
        float Width() const override { return 24; }
        float Height() const override { return 24; }
    };
    struct Style : svg::ICSSData {};

    boost::intrusive_ptr<svg::ISVGDocument> CreateDocument(std::string_view text) override
    {
        boost::intrusive_ptr<Document> document(new Document);
        const auto* const icon = std::find_if(std::begin(kFakeIcons), std::end(kFakeIcons),
                                              [&](const FakeIcon& i) { return i.name == text; });
        document->ownerValue = static_cast<std::uint32_t>(icon - std::begin(kFakeIcons));
        return document;
    }
    boost::intrusive_ptr<svg::ICSSData> CreateStyleData(std::string_view) override
    {
        return new Style;
    }
    void Render(scrivel::DrawingTarget& context, boost::intrusive_ptr<svg::ISVGDocument> document,
                boost::intrusive_ptr<svg::ICSSData> style, std::int32_t width,
                std::int32_t height) override
    {
        const std::uint32_t index = document->ownerValue;
        const auto color = style->colors.find(kFakeIcons[index].variable);
        const float red = color != style->colors.end() ? color->second.red : 1;
        const scrivel::PathP path(context.Factory().CreatePath());
        const auto right = static_cast<float>(width);
        const auto bottom = static_cast<float>(height);
        path->MoveTo(0, 0);
        path->LineTo(right, 0);
        path->LineTo(right, bottom);
        path->LineTo(0, bottom);
        const scrivel::BrushP brush(context.Factory().CreateSolidBrush(
            {red, static_cast<float>(index + 1) / 255.0f, 0, 1}));
        context.Surface().FillPath(*path, *brush, true);
    }

    Manager manager_;
};

}  // namespace kivui::ui
