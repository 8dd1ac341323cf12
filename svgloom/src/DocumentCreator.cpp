#include "svgloom/src/DocumentCreator.h"

#include <kivcore/Trace.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/RapidXMLDocument.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite errorSite("SVGLoom.Parse", 6);

/// Texts of icons mostly come from further away than the processor's nearest memory. It finds the
/// rest of a long text by itself.
void PrefetchStart(std::string_view text)
{
    constexpr std::size_t kLine = 64;
    constexpr std::size_t kStart = 4096;
    for (std::size_t at = 0; at < std::min(text.size(), kStart); at += kLine) {
        __builtin_prefetch(text.data() + at);
    }
}

}  // namespace

std::unique_ptr<SVGDocumentImpl> CreateDocument(std::string_view text,
                                                std::shared_ptr<SVGRenderer> renderer,
                                                std::string* xmlError)
{
    PrefetchStart(text);
    if (xmlError != nullptr) {
        xmlError->clear();
    }
    auto document = std::make_unique<SVGDocumentImpl>(std::move(renderer));
    // The copy of an icon needs no allocation.
    constexpr std::size_t kUsualSize = 16384;
    char usual[kUsualSize];
    std::unique_ptr<char[]> large;
    if (text.size() >= kUsualSize) {
        large.reset(new char[text.size() + 1]);
    }
    char* const buffer = large != nullptr ? large.get() : usual;
    std::copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = '\0';

    try {
        const xml::RapidXMLDocument tree(buffer, text.size());
        xml::RapidXMLNode root = tree.FirstNode();
        document->Parse(&root);
    } catch (const xml::rapidxml::parse_error& error) {
        errorSite.Report(error.what());
        if (xmlError != nullptr) {
            *xmlError = error.what();
        }
    }
    return document;
}

}  // namespace SVGLoom
