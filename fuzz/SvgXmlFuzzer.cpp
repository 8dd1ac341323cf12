// Reads the input as XML and walks over all of it. No element may lie below the limit, and
// attributes must be the same one by one as by name.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/RapidXMLDocument.h"
#include "svgloom/src/XMLChecks.h"

namespace {

using SVGLoom::xml::XMLNode;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class AttributeChecker final : public SVGLoom::xml::AttributeVisitor {
public:
    explicit AttributeChecker(const XMLNode& node) : node_(node) {}

    void VisitAttribute(std::string_view name, std::string_view value) override
    {
        if (count++ == 0) {
            const auto [isThere, first] = node_.GetAttribute(nullptr, nullptr);
            Require(isThere && value == first);
        }
        if (count > 20)
            return;
        const auto [found, byName] = node_.GetAttribute(std::string(name).c_str(), nullptr);
        Require(found && byName != nullptr);
    }
    std::size_t count = 0;

private:
    const XMLNode& node_;
};

void Check(std::unique_ptr<XMLNode> node, int level)
{
    for (; node != nullptr; node = node->GetNextSibling()) {
        Require(level <= SVGLoom::xml::kMaxDepth);
        Require(node->GetName() != nullptr && *node->GetName() != '\0');
        Require(node->GetValue() != nullptr);
        AttributeChecker attributes(*node);
        node->VisitAttributes(attributes);
        Check(node->GetFirstChild(), level + 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const SVGLoom::xml::RapidXMLDocument document(text.data());
        Check(document.GetFirstNode(), 1);
    } catch (const SVGLoom::xml::rapidxml::parse_error&) {
        return 0;
    }
    return 0;
}
