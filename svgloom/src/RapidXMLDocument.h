// The XML interfaces over the RapidXML parser that Boost.PropertyTree carries.

#pragma once

#include <memory>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/XMLDocument.h"

namespace SVGLoom::xml {

/// The nodes of a small document lie in the object itself, which is some kilobytes large.
class RapidXMLDocument : public XMLDocument {
public:
    /// Parses `text`, which ends in zero, in place: the buffer is changed, and has to stand as long
    /// as this object. A byte-order mark is skipped; comments, declarations, processing
    /// instructions and doctypes are left out.
    ///
    /// @throws boost::property_tree::detail::rapidxml::parse_error (RapidXML.h) for malformed XML,
    ///         and for elements nested deeper than kMaxDepth (XMLChecks.h)
    explicit RapidXMLDocument(char* text);

    std::unique_ptr<XMLNode> GetFirstNode() const override;

private:
    rapidxml::xml_document<char> document_;
};

}  // namespace SVGLoom::xml
