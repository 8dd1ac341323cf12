// Written by resources/themes/MakeThemes.py; change that, not this.

#include <cstdint>

#include "framework/kivui/src/ThemeDocument.h"

namespace kivui::ui {

namespace {

constexpr float kFramePercents[] = {0, 50, 50, 100};

struct Row {
    std::size_t index;
    std::uint32_t rgba[4];
};

constexpr Row kRows[] = {
    {0, {0x131619ff, 0x3e4044ff, 0xc4c7cbff, 0xf4f7fbff}},    // ground
    {1, {0x191c1fff, 0x44474aff, 0xbbbec3ff, 0xebeef2ff}},    // raised-ground
    {2, {0x0b0e12ff, 0x35373bff, 0xdadde1ff, 0xffffffff}},    // field-ground
    {3, {0x2e3134ff, 0x5c5f62ff, 0xa3a6aaff, 0xd4d7dcff}},    // hairline
    {4, {0xe5e8edff, 0xf6fafeff, 0x0b0e12ff, 0x1d2023ff}},    // text
    {5, {0xa8abb0ff, 0xd7dadfff, 0x2e3134ff, 0x575a5dff}},    // secondary-text
    {6, {0x5c5f62ff, 0x898c90ff, 0x818488ff, 0x9ea1a5ff}},    // disabled-text
    {7, {0x519ef7ff, 0x95bdffff, 0x02487fff, 0x006ab8ff}},    // accent
    {8, {0x0b0e12ff, 0x16181bff, 0xffffffff, 0xffffffff}},    // accent-text
    {9, {0x1c314dff, 0x485a79ff, 0x9aaccfff, 0xd2e0ffff}},    // accent-tint
    {10, {0xfe8077ff, 0xffcfc9ff, 0x6d0010ff, 0xb12a2fff}},   // error
    {11, {0xf2a746ff, 0xffd6acff, 0x462a00ff, 0x804f00ff}},   // warning
    {12, {0xffffff12, 0xffffff14, 0x0000000f, 0x0000000d}},   // hover-tint
    {13, {0xffffff1f, 0xffffff21, 0x0000001a, 0x00000017}},   // pressed-tint
    {14, {0x7f8185ff, 0xb3b6baff, 0x4b4e51ff, 0x7a7c80ff}},   // field-frame
    {15, {0x519ef7ff, 0x95bdffff, 0x02487fff, 0x006ab8ff}},   // focus
    {16, {0x6cabffff, 0xaecaffff, 0x003f70ff, 0x0360a7ff}},   // accent-hover
    {17, {0x4393ecff, 0x80b2feff, 0x00528fff, 0x005797ff}},   // accent-pressed
    {18, {0x004d88ff, 0x0465afff, 0x95bdffff, 0xc5d8feff}},   // selection
    {19, {0xf6fafeff, 0xffffffff, 0x0b0e12ff, 0x16181bff}},   // selection-text
    {20, {0xaeb1b5ff, 0xdadde1ff, 0x2e3134ff, 0x525559ff}},   // icon
    {21, {0x999b9fff, 0xc9ccd0ff, 0x44474aff, 0x6b6d71ff}},   // placeholder
    {22, {0xefb10eff, 0xffc963ff, 0x7a5900ff, 0xa67a00ff}},   // star
    {23, {0x7f8185ff, 0xb3b6baff, 0x4b4e51ff, 0x7a7c80ff}},   // star-empty
    {24, {0x26282bff, 0x4e5054ff, 0xbec1c5ff, 0xe2e5eaff}},   // chip-ground
    {25, {0x191c1fff, 0x424548ff, 0xbbbec3ff, 0xe8ebf0ff}},   // disabled-ground
    {26, {0x2e3134ff, 0x5c5f62ff, 0x9ea1a5ff, 0xcfd2d6ff}},   // disabled-frame
    {27, {0xa8abb0ff, 0xd4d7dcff, 0x2e3134ff, 0x575a5dff}},   // field-frame-hover
    {28, {0x519ef7ff, 0x95bdffff, 0x02487fff, 0x006ab8ff}},   // changed-dot
    {29, {0x80b2feff, 0xd6e3ffff, 0x002b50ff, 0x005797ff}},   // link
    {236, {0xffffff00, 0xffffff00, 0xffffff00, 0xffffff00}},  // clear-overlay
};

constexpr double kFontSizes[] = {12, 13, 18};

float PartOf(std::uint32_t rgba, int shift)
{
    return static_cast<float>((rgba >> shift) & 0xff) / 255.0f;
}

ThemeDocument MakeDocument()
{
    ThemeDocument document;
    for (const Row& row : kRows) {
        if (row.index >= document.colors.size()) {
            document.colors.resize(row.index + 1);
        }
        for (std::size_t i = 0; i < std::size(kFramePercents); ++i) {
            const std::uint32_t rgba = row.rgba[i];
            document.colors[row.index].push_back(
                {kFramePercents[i],
                 {PartOf(rgba, 24), PartOf(rgba, 16), PartOf(rgba, 8), PartOf(rgba, 0)}});
        }
    }
    document.fontSizes.assign(std::begin(kFontSizes), std::end(kFontSizes));
    return document;
}

}  // namespace

std::shared_ptr<const ThemeDocument> BuiltInTheme()
{
    return std::make_shared<const ThemeDocument>(MakeDocument());
}

}  // namespace kivui::ui
