#include "svgloom/src/DocumentCreator.h"

#include <kivcore/Trace.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/RapidXMLDocument.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite errorSite("SVGLoom.Parse", 6);

}  // namespace

std::unique_ptr<SVGDocumentImpl> CreateDocument(std::string_view text,
                                                std::shared_ptr<SVGRenderer> renderer,
                                                std::string* xmlError)
{
    if (xmlError != nullptr) {
        xmlError->clear();
    }
    auto document = std::make_unique<SVGDocumentImpl>(std::move(renderer));
    const std::unique_ptr<char[]> buffer(new char[text.size() + 1]);
    std::copy(text.begin(), text.end(), buffer.get());
    buffer[text.size()] = '\0';

    std::optional<xml::RapidXMLDocument> tree;
    try {
        tree.emplace(buffer.get());
    } catch (const xml::rapidxml::parse_error& error) {
        errorSite.Report(error.what());
        if (xmlError != nullptr) {
            *xmlError = error.what();
        }
        return document;
    }
    const std::unique_ptr<xml::XMLNode> root = tree->GetFirstNode();
    document->Parse(root.get());
    return document;
}

}  // namespace SVGLoom
