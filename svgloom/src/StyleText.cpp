#include "svgloom/src/StyleText.h"

#include <algorithm>
#include <cstddef>

#include "svgloom/src/Declarations.h"

namespace SVGLoom {

std::string CleanStyleText(std::string_view text)
{
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            continue;  // the line feed gives the one space
        }
        clean += c == '\r' || c == '\n' ? ' ' : c;
    }
    clean = std::string(TrimStyleText(clean));
    for (std::size_t brace = clean.find("} "); brace != std::string::npos;
         brace = clean.find("} ", brace + 2)) {
        clean[brace + 1] = '\n';
    }
    return clean;
}

void RemoveComments(std::string& text)
{
    std::size_t open = text.find("/*");
    if (open == std::string::npos) {
        return;
    }
    std::size_t written = open;
    while (open != std::string::npos) {
        const std::size_t close = text.find("*/", open + 2);
        if (close == std::string::npos) {
            break;
        }
        const std::size_t start = close + 2;
        open = text.find("/*", start);
        const std::size_t end = std::min(open, text.size());
        std::copy(text.begin() + static_cast<std::ptrdiff_t>(start),
                  text.begin() + static_cast<std::ptrdiff_t>(end),
                  text.begin() + static_cast<std::ptrdiff_t>(written));
        written += end - start;
    }
    text.resize(written);
}

}  // namespace SVGLoom
