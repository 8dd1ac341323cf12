// Artwork and how it is drawn, as the commands take both from the command line.

#pragma once

#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/SVGDocumentImpl.h"
#include "svgloom/src/StyleSheet.h"
#include "tools/common/CommandLine.h"

#include <kivui/Scrivel.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace svgloom {

/// What a draw takes besides the artwork and its size: --id, --css and --var.
class DrawSettings {
public:
    /// Reads the style sheet's file, if there is one. Throws UsageError and Failure.
    explicit DrawSettings(const tools::Arguments& arguments);

    /// To be called before the first draw. Throws what the engine throws for a bad style sheet.
    void ParseSheet();

    const std::optional<std::string>& Id() const { return id_; }
    const SVGLoom::StyleSheet* Sheet() const { return sheet_ ? &*sheet_ : nullptr; }
    const SVGLoom::ColorMap& Colors() const { return colors_; }
    /// The style sheet's name for messages.
    const std::string& SheetName() const { return sheetName_; }

private:
    std::optional<std::string> id_;
    std::string sheetName_;
    std::optional<std::string> sheetText_;
    std::optional<SVGLoom::StyleSheet> sheet_;
    SVGLoom::ColorMap colors_;
};

/// A parsed document with a renderer of its own.
class Artwork {
public:
    /// Throws what the engine throws for bad content; malformed XML is none of it.
    explicit Artwork(std::string_view text);

    /// What is wrong with the XML; empty if nothing is.
    const std::string& XmlError() const { return xmlError_; }
    const SVGLoom::SVGDocumentImpl& Document() const { return *document_; }

    /// Throws what the engine throws for a bad style sheet.
    void Draw(const DrawSettings& settings, const SVGLoom::ColorMap& colors, float width,
              float height, kivui::scrivel::DrawingTarget& target);

private:
    std::string xmlError_;
    std::shared_ptr<SVGLoom::ScrivelSVGRenderer> renderer_;
    std::unique_ptr<SVGLoom::SVGDocumentImpl> document_;
};

/// For commands that print what the engine does with a file: parses it and calls `print`. Malformed
/// XML is told and goes on as the engine does; what the engine or `print` throws is told and
/// printed as the last line. Throws tools::Failure for a file that cannot be read.
///
/// @return the exit status
int PrintOfArtwork(const std::string& file, const std::function<void(Artwork& artwork)>& print);

}  // namespace svgloom
