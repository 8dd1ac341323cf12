// What the tests of XMP objects share: packets in short, trees as lines of text.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <kivxmp/XMPMeta.h>

namespace kivxmp::testing {

inline constexpr std::string_view kMark = "\xEF\xBB\xBF";

/// One line for each node: "path form value", qualifiers and parts behind their node. Line ends in
/// values are written "\n".
std::string Dump(const __XMPMeta__& meta);

/// A value as Dump writes it.
std::string Shown(std::string_view value);

/// The lines of Dump for a packet, or "error CODE" where it is refused. Its bytes are read from a
/// block of exactly their size.
std::string DumpOf(std::string_view packet);

/// `content` in the elements around properties: x:xmpmeta, rdf:RDF and rdf:Description. The
/// prefixes rdf, dc, xmp, ex ("http://ex/") and q ("http://q/") are declared.
std::string InDescription(std::string_view content, std::string_view attributes = {});

/// `content` in rdf:RDF, with the same prefixes.
std::string InRdf(std::string_view content);

/// `xmp` in an xpacket wrapper with `padding` behind it.
std::string InWrapper(std::string_view xmp, std::string_view padding = "\n");

/// Parses from a block of exactly the size of `bytes`.
std::unique_ptr<__XMPMeta__> Parse(std::string_view bytes);

/// Code of the XMP_Error that `function` throws; kKivXmpOk if it throws none.
template <class Function>
KivXmpCode CodeThrownBy(const Function& function)
{
    try {
        function();
    } catch (const XMP_Error& error) {
        return error.Code();
    }
    return kKivXmpOk;
}

}  // namespace kivxmp::testing
