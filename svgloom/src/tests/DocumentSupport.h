// Documents for tests, and what a draw of one asks the renderer to do.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/DocumentCreator.h"
#include "svgloom/src/RapidXMLDocument.h"
#include "svgloom/src/tests/RecordingRenderer.h"

namespace SVGLoom::testing_support {

/// A document over a recording renderer. Drawn at the size of the viewBox, so that the outer state
/// says nothing.
class TestDocument {
public:
    explicit TestDocument(std::string_view svg)
        : renderer(std::make_shared<RecordingRenderer>()),
          document(CreateDocument(ExactText(svg).View(), renderer))
    {
        renderer->lines.clear();
    }

    /// The lines of a draw without the outermost push and pop, joined by " | ".
    std::string Draw(const ColorMap& colors = {})
    {
        renderer->lines.clear();
        const Rect& box = document->ViewBox();
        document->Render(colors, box.width, box.height);
        return Inner();
    }
    std::string Draw(std::string_view id, const ColorMap& colors = {})
    {
        renderer->lines.clear();
        const Rect& box = document->ViewBox();
        document->Render(id, colors, box.width, box.height);
        return Inner();
    }

    std::shared_ptr<RecordingRenderer> renderer;
    std::unique_ptr<SVGDocumentImpl> document;

private:
    std::string Inner() const
    {
        std::string text;
        for (std::size_t i = 1; i + 1 < renderer->lines.size(); ++i) {
            text += (text.empty() ? "" : " | ") + renderer->lines[i];
        }
        return text;
    }
};

/// Requires that there is one.
inline const SVGDocumentImpl::Element& ChildAt(const SVGDocumentImpl::Group& group,
                                               std::size_t index)
{
    auto child = group.children.begin();
    for (; index > 0; --index) {
        ++child;
    }
    return **child;
}

/// The lines inside the root group and the "svg" group, or what was thrown.
inline std::string DrawContent(std::string_view content, const ColorMap& colors = {})
{
    try {
        TestDocument test("<svg viewBox='0 0 30 40'>" + std::string(content) + "</svg>");
        std::string text = test.Draw(colors);
        // Two groups stand around everything.
        constexpr std::string_view kOpen = "push | push";
        constexpr std::string_view kClose = "pop | pop";
        if (!text.starts_with(kOpen) || !text.ends_with(kClose)) {
            return "no groups: " + text;
        }
        text = text.substr(kOpen.size(), text.size() - kOpen.size() - kClose.size());
        if (text.starts_with(" | ")) {
            text.erase(0, 3);
        }
        if (text.ends_with(" | ")) {
            text.erase(text.size() - 3);
        }
        return text;
    } catch (const std::exception& error) {
        return std::string("error: ") + error.what();
    }
}

}  // namespace SVGLoom::testing_support
