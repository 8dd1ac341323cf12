// A theme document, read: tables of key frames by colour index, and font sizes.
//
//   <colorthemes version="5">
//     <fontsize index="0" name="label" size="12"/>
//     <color index="0" name="ground" keys="0 &grey07; | 50 &grey27; | 50 &grey79; | 100 &grey97;"/>
//   </colorthemes>
//
// A key frame is a brightness in percent and a colour, #RRGGBB or #RRGGBBAA, as a rule an entity of
// the document's own DTD. Brightness never goes back within a row; two frames at one brightness are
// a hard step, of which the later one holds at that brightness.

#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include <kivui/Theme.h>

namespace kivui::ui {

/// Limits of a document; what is above them makes it broken.
inline constexpr std::size_t kMaxThemeColors = 4096;
inline constexpr std::size_t kMaxThemeFontSizes = 64;
inline constexpr std::size_t kMaxKeyFrames = 64;  // of one colour
inline constexpr double kMaxThemeFontSize = 96;

struct KeyFrame {
    float percent = 0;
    ColorRGBA color;
    bool operator==(const KeyFrame&) const = default;
};

/// One colour's frames in order of brightness; empty where there is no such colour.
using KeyFrames = std::vector<KeyFrame>;

struct ThemeDocument {
    std::vector<KeyFrames> colors;  // by index
    std::vector<double> fontSizes;  // by index, design units; 0 where there is none
};

/// The colour at `percent`, 0 to 100: interpolated between the frames about it, before the first
/// and behind the last frame theirs. Transparent black without frames.
ColorRGBA ColorAt(std::span<const KeyFrame> frames, float percent);

/// Reads a document. `sourceName` stands in messages. Throws kivcore::xml::ParseError, whose text
/// names the line and the reason.
ThemeDocument ReadThemeDocument(std::string_view text, std::string_view sourceName);

/// The colours and sizes that hold where no document does: those of the dialog only. Made anew by
/// each call, so that nothing stays behind in a process that loads and unloads us.
std::shared_ptr<const ThemeDocument> BuiltInTheme();

/// The document that the skins in force read; the built-in one before SkinManager::Initialize.
std::shared_ptr<const ThemeDocument> CurrentThemeDocument();

}  // namespace kivui::ui
