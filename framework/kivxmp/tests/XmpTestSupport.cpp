#include "framework/kivxmp/tests/XmpTestSupport.h"

#include <algorithm>
#include <memory>

namespace kivxmp::testing {
namespace {

constexpr std::string_view kRdfStart =
    "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\""
    " xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\""
    " xmlns:ex=\"http://ex/\" xmlns:q=\"http://q/\">";

}  // namespace

std::string Shown(std::string_view value)
{
    std::string shown;
    for (const char c : value) {
        shown += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : std::string(1, c);
    }
    return shown;
}

std::string Dump(const __XMPMeta__& meta)
{
    std::string lines;
    meta.Walk([&lines](const __XMPMeta__::Visit& visit) {
        lines += visit.path + " " + FormName(visit.node.Form());
        const bool hasValue = visit.node.IsText() || visit.node.Form() == NodeForm::kRaw;
        lines += hasValue ? " " + Shown(visit.node.Value()) + "\n" : "\n";
        return true;
    });
    return lines;
}

std::string DumpOf(std::string_view packet)
{
    try {
        return Dump(*Parse(packet));
    } catch (const XMP_Error& error) {
        return "error " + std::to_string(error.Code());
    }
}

std::string InRdf(std::string_view content)
{
    return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">" + std::string(kRdfStart) +
           std::string(content) + "</rdf:RDF></x:xmpmeta>";
}

std::string InDescription(std::string_view content, std::string_view attributes)
{
    const std::string space = attributes.empty() ? "" : " ";
    return InRdf("<rdf:Description rdf:about=\"\"" + space + std::string(attributes) + ">" +
                 std::string(content) + "</rdf:Description>");
}

std::string InWrapper(std::string_view xmp, std::string_view padding)
{
    return "<?xpacket begin=\"" + std::string(kMark) + "\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n" +
           std::string(xmp) + std::string(padding) + "<?xpacket end=\"w\"?>";
}

std::unique_ptr<__XMPMeta__> Parse(std::string_view bytes)
{
    const auto block = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    return __XMPMeta__::Parse({block.get(), bytes.size()});
}

}  // namespace kivxmp::testing
