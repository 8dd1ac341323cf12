#include <kivxmp/XMPNamespaces.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/src/XmlName.h"

#include <kivcore/NeverDestroyed.h>
#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNode.h>

namespace kivxmp {
namespace {

struct NamespaceRow {
    std::string_view prefix;
    std::string_view uri;
};

// In the order of prefixes, which the search needs.
constexpr NamespaceRow kWellKnown[] = {
    {"GPano", "http://ns.google.com/photos/1.0/panorama/"},
    {"Iptc4xmpCore", "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/"},
    {"Iptc4xmpExt", "http://iptc.org/std/Iptc4xmpExt/2008-02-29/"},
    {"MP", "http://ns.microsoft.com/photo/1.2/"},
    {"MPRI", "http://ns.microsoft.com/photo/1.2/t/RegionInfo#"},
    {"MPReg", "http://ns.microsoft.com/photo/1.2/t/Region#"},
    {"MicrosoftPhoto", "http://ns.microsoft.com/photo/1.0/"},
    {"aux", "http://ns.adobe.com/exif/1.0/aux/"},
    {"cc", "http://creativecommons.org/ns#"},
    {"crs", "http://ns.adobe.com/camera-raw-settings/1.0/"},
    {"dc", "http://purl.org/dc/elements/1.1/"},
    {"digiKam", "http://www.digikam.org/ns/1.0/"},
    {"exif", "http://ns.adobe.com/exif/1.0/"},
    {"exifEX", "http://cipa.jp/exif/1.0/"},
    {"lr", "http://ns.adobe.com/lightroom/1.0/"},
    {"mwg-coll", "http://www.metadataworkinggroup.com/schemas/collections/"},
    {"mwg-kw", "http://www.metadataworkinggroup.com/schemas/keywords/"},
    {"mwg-rs", "http://www.metadataworkinggroup.com/schemas/regions/"},
    {"pdf", "http://ns.adobe.com/pdf/1.3/"},
    {"photoshop", "http://ns.adobe.com/photoshop/1.0/"},
    {"plus", "http://ns.useplus.org/ldf/xmp/1.0/"},
    {"rdf", kRdfUri},
    {"stArea", "http://ns.adobe.com/xmp/sType/Area#"},
    {"stDim", "http://ns.adobe.com/xap/1.0/sType/Dimensions#"},
    {"stEvt", "http://ns.adobe.com/xap/1.0/sType/ResourceEvent#"},
    {"stFnt", "http://ns.adobe.com/xap/1.0/sType/Font#"},
    {"stJob", "http://ns.adobe.com/xap/1.0/sType/Job#"},
    {"stMfs", "http://ns.adobe.com/xap/1.0/sType/ManifestItem#"},
    {"stRef", "http://ns.adobe.com/xap/1.0/sType/ResourceRef#"},
    {"stVer", "http://ns.adobe.com/xap/1.0/sType/Version#"},
    {"tiff", "http://ns.adobe.com/tiff/1.0/"},
    {"x", "adobe:ns:meta/"},
    {"xml", kXmlUri},
    {"xmp", "http://ns.adobe.com/xap/1.0/"},
    {"xmpBJ", "http://ns.adobe.com/xap/1.0/bj/"},
    {"xmpDM", "http://ns.adobe.com/xmp/1.0/DynamicMedia/"},
    {"xmpG", "http://ns.adobe.com/xap/1.0/g/"},
    {"xmpMM", "http://ns.adobe.com/xap/1.0/mm/"},
    {"xmpNote", "http://ns.adobe.com/xmp/note/"},
    {"xmpRights", "http://ns.adobe.com/xap/1.0/rights/"},
    {"xmpTPg", "http://ns.adobe.com/xap/1.0/t/pg/"},
    {"xmpidq", "http://ns.adobe.com/xmp/Identifier/qual/1.0/"},
};

constexpr bool RowsAreSorted()
{
    for (std::size_t i = 1; i < std::size(kWellKnown); ++i) {
        if (!(kWellKnown[i - 1].prefix < kWellKnown[i].prefix)) {
            return false;
        }
    }
    return true;
}
static_assert(RowsAreSorted());

struct Registered {
    std::map<std::string, std::string, std::less<>> uriOfPrefix;
    std::map<std::string, std::string, std::less<>> prefixOfUri;
};

Registered& Registry() noexcept
{
    static kivcore::NeverDestroyed<Registered> registry;  // hosts may keep objects to the end
    return *registry;
}

}  // namespace

std::string NamespaceOfPrefix(std::string_view prefix)
{
    const auto* const row = std::lower_bound(
        std::begin(kWellKnown), std::end(kWellKnown), prefix,
        [](const NamespaceRow& one, std::string_view wanted) { return one.prefix < wanted; });
    if (row != std::end(kWellKnown) && row->prefix == prefix) {
        return std::string(row->uri);
    }
    const auto found = Registry().uriOfPrefix.find(prefix);
    return found == Registry().uriOfPrefix.end() ? std::string() : found->second;
}

std::string PrefixOfNamespace(std::string_view uri)
{
    const auto* const row = std::find_if(std::begin(kWellKnown), std::end(kWellKnown),
                                         [uri](const NamespaceRow& one) { return one.uri == uri; });
    if (row != std::end(kWellKnown)) {
        return std::string(row->prefix);
    }
    const auto found = Registry().prefixOfUri.find(uri);
    return found == Registry().prefixOfUri.end() ? std::string() : found->second;
}

std::string RegisterNamespace(std::string_view prefix, std::string_view uri)
{
    if (!IsXmlName(prefix) || prefix == "xml" || prefix == "xmlns") {
        throw XMP_Error(kKivXmpBadValue,
                        "\"" + std::string(prefix) + "\" cannot be a namespace prefix");
    }
    if (uri.empty() || !IsXmlText(uri)) {
        throw XMP_Error(kKivXmpBadValue, "the prefix \"" + std::string(prefix) +
                                             "\" needs a namespace URI of XML characters");
    }
    std::string free(prefix);
    for (int number = 1; true; ++number) {
        const std::string taken = NamespaceOfPrefix(free);
        if (taken.empty() || taken == uri) {
            break;
        }
        free = std::string(prefix) + "_" + std::to_string(number);
    }
    const std::string known = PrefixOfNamespace(uri);
    // A second prefix of the same URI is understood, too; the first one is what is printed.
    if (known.empty() || free == prefix) {
        Registry().uriOfPrefix.emplace(free, uri);
    }
    if (!known.empty()) {
        return known;
    }
    Registry().prefixOfUri.emplace(uri, free);
    return free;
}

void ForgetRegisteredNamespaces() noexcept
{
    Registry().uriOfPrefix.clear();
    Registry().prefixOfUri.clear();
}

}  // namespace kivxmp
