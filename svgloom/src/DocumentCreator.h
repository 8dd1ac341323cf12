// From SVG text to a document.

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "svgloom/src/SVGDocumentImpl.h"

namespace SVGLoom {

/// Creates the document of `text`, which is copied and ends at its first NUL. Malformed XML gives
/// an empty document: that is traced on "SVGLoom.Parse" and no exception.
///
/// @param xmlError if not null, receives what is wrong with the XML, empty if nothing is
/// @throws as SVGDocumentImpl::Parse
std::unique_ptr<SVGDocumentImpl> CreateDocument(std::string_view text,
                                                std::shared_ptr<SVGRenderer> renderer,
                                                std::string* xmlError = nullptr);

}  // namespace SVGLoom
