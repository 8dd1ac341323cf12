#include "framework/kivxmp/src/RdfWriter.h"

#include <algorithm>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/src/TagScanner.h"
#include "framework/kivxmp/src/XmlName.h"

#include <kivxmp/XMPError.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNamespaces.h>

namespace kivxmp {
namespace {

std::string HexDigits(std::uint32_t number)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789ABCDEF"[number % 16]);
        number /= 16;
    } while (number != 0);
    return digits;
}

constexpr std::uint32_t kMaxCharacter = 0x10FFFF;

}  // namespace

Layout Layout::Deeper() const
{
    Layout deeper = *this;
    if (isPretty) {
        deeper.indent += unit;
    }
    return deeper;
}

std::string Layout::Break() const
{
    return isPretty ? newLine + indent : std::string();
}

NamespaceContext::NamespaceContext(const Scope* scope)
{
    for (; scope != nullptr; scope = scope->parent) {
        for (const auto& [prefix, uri] : scope->bindings) {
            uriOfPrefix_.emplace(prefix, uri);  // what stands further in was there first
        }
    }
    for (const auto& [prefix, uri] : uriOfPrefix_) {
        if (!uri.empty() && IsXmlName(prefix)) {  // "xmlns:.a" declares what no name can use
            prefixOfUri_.emplace(uri, prefix);
        }
    }
}

std::string NamespaceContext::PrefixFor(std::string_view uri, std::string_view preferred)
{
    if (uri == kXmlUri) {
        return "xml";
    }
    const bool isUsable = IsXmlName(preferred);
    if (isUsable && UriOf(preferred) == uri) {
        return std::string(preferred);
    }
    const auto known = prefixOfUri_.find(uri);
    if (known != prefixOfUri_.end()) {
        return known->second;
    }
    std::string base(isUsable ? preferred : std::string_view());
    if (base.empty()) {
        base = PrefixOfNamespace(uri);
    }
    if (base.empty()) {
        base = "ns";
    }
    std::string prefix = base;
    std::size_t& lastNumber = lastNumbers_[base];
    while (uriOfPrefix_.find(prefix) != uriOfPrefix_.end()) {
        prefix = base + "_" + std::to_string(++lastNumber);
    }
    uriOfPrefix_.emplace(prefix, uri);
    prefixOfUri_.emplace(uri, prefix);
    added_.emplace_back(prefix, uri);
    return prefix;
}

std::string_view NamespaceContext::UriOf(std::string_view prefix) const
{
    const auto found = uriOfPrefix_.find(prefix);
    return found == uriOfPrefix_.end() ? std::string_view() : std::string_view(found->second);
}

RdfWriter::RdfWriter(NamespaceContext& context, const RdfTerms& terms, std::uint32_t maxCharacter)
    : context_(context), terms_(terms), maxCharacter_(maxCharacter)
{
}

std::string RdfWriter::Rdf(std::string_view local)
{
    return context_.PrefixFor(kRdfUri, "rdf") + ":" + std::string(local);
}

void RdfWriter::Write(std::string& out, const Node& node, const Layout& layout, std::size_t depth)
{
    if (const RawSource* const raw = NodeAccess::Raw(node)) {
        WriteRaw(out, *raw);
        return;
    }
    WriteNamed(out, node, NameOf(node), layout, depth, /*isValueOnly=*/false);
}

const std::string& RdfWriter::NameOf(const Node& node)
{
    const auto [found, isNew] = names_.try_emplace(NodeAccess::Name(node));
    if (isNew) {
        found->second =
            context_.PrefixFor(node.NamespaceUri(), node.Prefix()) + ":" + node.LocalName();
    }
    return found->second;
}

void RdfWriter::WriteNamed(std::string& out, const Node& node, const std::string& name,
                           const Layout& layout, std::size_t depth, bool isValueOnly)
{
    if (depth + (node.IsArray() ? 1 : 0) > kMaxNesting) {
        throw XMP_Error(kKivXmpTooDeep, "the changed packet would be nested deeper than " +
                                            std::to_string(kMaxNesting) + " elements");
    }
    out += "<" + name;
    if (!isValueOnly) {
        if (const Node* const language = NodeAccess::FindQualifier(node, terms_.xmlLang)) {
            out += " xml:lang=\"" + EscapedAttribute(language->Value()) + "\"";
        }
    }
    if (isValueOnly || !NodeAccess::HasGeneralQualifiers(node, terms_)) {
        WriteContent(out, node, name, layout, depth);
        return;
    }
    const Layout inner = layout.Deeper();
    out += " " + Rdf("parseType") + "=\"Resource\">" + inner.Break();
    WriteNamed(out, node, Rdf("value"), inner, depth + 1, /*isValueOnly=*/true);
    for (const Node& qualifier : node.Qualifiers()) {
        const NameKey* const key = NodeAccess::Key(qualifier);
        if (key != terms_.xmlLang && key != terms_.datatype) {
            out += inner.Break();
            Write(out, qualifier, inner, depth + 1);
        }
    }
    out += layout.Break() + "</" + name + ">";
}

void RdfWriter::WriteContent(std::string& out, const Node& node, const std::string& name,
                             const Layout& layout, std::size_t depth)
{
    const std::vector<Node>& parts = node.Children();
    switch (node.Form()) {
        case NodeForm::kSimple:
            if (const Node* const type = NodeAccess::FindQualifier(node, terms_.datatype)) {
                out += " " + Rdf("datatype") + "=\"" + EscapedAttribute(type->Value()) + "\"";
            }
            out +=
                node.Value().empty() ? "/>" : ">" + EscapedText(node.Value()) + "</" + name + ">";
            break;
        case NodeForm::kUri:
            out += " " + Rdf("resource") + "=\"" + EscapedAttribute(node.Value()) + "\"/>";
            break;
        case NodeForm::kStruct: {
            out += " " + Rdf("parseType") + "=\"Resource\"";
            if (parts.empty()) {
                out += "/>";
                break;
            }
            out += ">";
            const Layout inner = layout.Deeper();
            for (const Node& part : parts) {
                out += inner.Break();
                Write(out, part, inner, depth + 1);
            }
            out += layout.Break() + "</" + name + ">";
            break;
        }
        case NodeForm::kBag:
        case NodeForm::kSeq:
        case NodeForm::kAlt: {
            const std::string kind = Rdf(node.Form() == NodeForm::kBag   ? "Bag"
                                         : node.Form() == NodeForm::kSeq ? "Seq"
                                                                         : "Alt");
            const Layout outer = layout.Deeper();
            const Layout inner = outer.Deeper();
            out += ">" + outer.Break() + "<" + kind;
            if (parts.empty()) {
                out += "/>";
            } else {
                out += ">";
                for (const Node& part : parts) {
                    out += inner.Break();
                    Write(out, part, inner, depth + 2);
                }
                out += outer.Break() + "</" + kind + ">";
            }
            out += layout.Break() + "</" + name + ">";
            break;
        }
        case NodeForm::kRaw:
            break;  // written as a whole
    }
}

void RdfWriter::WriteRaw(std::string& out, const RawSource& source) const
{
    const std::string_view text = source.Text();
    if (!source.isElement) {
        throw XMP_Error(kKivXmpNotEditable, "part of a changed property is no element");
    }
    // What surrounded it may have declared prefixes that are not declared here.
    const StartTag tag = ScanStartTag(text, 0);
    std::vector<std::pair<std::string, std::string>> missing;
    for (const std::string_view prefix : PrefixesUsed(text)) {
        const std::string attribute =
            prefix.empty() ? std::string("xmlns") : "xmlns:" + std::string(prefix);
        const bool declaresItself =
            std::any_of(tag.attributes.begin(), tag.attributes.end(),
                        [&](const AttributePlace& place) { return place.name == attribute; });
        const std::string* const bound =
            source.scope != nullptr ? source.scope->Find(prefix) : nullptr;
        const std::string uri = bound != nullptr ? *bound : std::string();
        if (!declaresItself && context_.UriOf(prefix) != uri && (prefix.empty() || !uri.empty())) {
            missing.emplace_back(prefix, uri);
        }
    }
    out += text.substr(0, tag.nameEnd);
    out += Declarations(missing, " ");
    out += text.substr(tag.nameEnd);
}

std::string RdfWriter::Declarations(const std::vector<std::pair<std::string, std::string>>& pairs,
                                    std::string_view separator) const
{
    std::string text;
    for (const auto& [prefix, uri] : pairs) {
        text += separator;
        text += prefix.empty() ? "xmlns" : "xmlns:" + prefix;
        text += "=\"" + EscapedAttribute(uri) + "\"";
    }
    return text;
}

std::string RdfWriter::EscapedText(std::string_view text) const
{
    return Escaped(text, /*isAttribute=*/false);
}

std::string RdfWriter::EscapedAttribute(std::string_view text) const
{
    return Escaped(text, /*isAttribute=*/true);
}

std::string RdfWriter::Escaped(std::string_view text, bool isAttribute) const
{
    constexpr std::string_view kMarkup = "&<>\"\r\t\n";
    if (maxCharacter_ == kMaxCharacter && text.find_first_of(kMarkup) == std::string_view::npos) {
        return std::string(text);
    }
    std::string out;
    out.reserve(text.size());
    const char* current = text.data();
    const char* const end = current + text.size();
    while (current != end) {
        const char* const begin = current;
        const std::uint32_t c = NextCharacter(current, end);
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (c == '"' && isAttribute) {
            out += "&quot;";
        } else if (c == '\r' || (isAttribute && (c == '\t' || c == '\n')) || c > maxCharacter_) {
            // Written as themselves they would come back as spaces or line feeds, or not at all.
            out += "&#x" + HexDigits(c);
            out += ";";
        } else {
            out.append(begin, current);
        }
    }
    return out;
}

}  // namespace kivxmp
