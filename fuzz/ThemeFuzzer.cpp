// Theme documents: whatever the text, it is read or refused, and colours stay within 0 and 1.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <kivcore/Xml.h>

#include "framework/kivui/src/ThemeDocument.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!kivcore::xml::Initialized()) {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    try {
        const kivui::ui::ThemeDocument document =
            kivui::ui::ReadThemeDocument({reinterpret_cast<const char*>(data), size}, "fuzz");
        for (const kivui::ui::KeyFrames& frames : document.colors) {
            for (const float percent : {0.0f, 33.3f, 50.0f, 100.0f}) {
                const kivui::ui::ColorRGBA color = kivui::ui::ColorAt(frames, percent);
                for (const float part : {color.red, color.green, color.blue, color.alpha}) {
                    if (!(part >= 0 && part <= 1)) {
                        std::abort();
                    }
                }
            }
        }
    } catch (const kivcore::xml::ParseError&) {
        return 0;
    }
    return 0;
}
