// Parses any bytes as an XML document. Elements must come in pairs, in the end all of them closed;
// the handler throws now and then, and what it throws must come out.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>

namespace {

using namespace kivcore;

void Require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

class Checker : public xml::DocHandler {
public:
    explicit Checker(const xml::DocParser& parser) : parser_(parser) {}

    void StartElement(const std::string& name, const xml::Attributes& attributes) override
    {
        Require(!hasThrown && parser_.Line() > 0);
        for (const auto& [key, value] : attributes) {
            Require(string::IsWellFormedUTF8(key) && string::IsWellFormedUTF8(value));
            Require(*xml::FindAttribute(attributes, key) == value);
        }
        open.push_back(name);
        Require(open.size() <= 256);
        if (name == "throw") {
            hasThrown = true;
            throw std::domain_error("refused");
        }
    }
    void EndElement(const std::string& name) override
    {
        Require(!hasThrown && !open.empty() && open.back() == name);
        open.pop_back();
    }
    void Text(std::string_view text) override
    {
        Require(!hasThrown && !open.empty() && string::IsWellFormedUTF8(text));
    }

    std::vector<std::string> open;
    bool hasThrown = false;

private:
    const xml::DocParser& parser_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    xml::MSXMLParserFactory factory;
    const auto parser = factory.NewParser();
    Checker checker(*parser);
    try {
        parser->Parse(text, "input", checker);
        Require(checker.open.empty() && !checker.hasThrown);
    } catch (const xml::ParseError&) {
        Require(!checker.hasThrown);
    } catch (const std::domain_error&) {
        Require(checker.hasThrown);
    }
    // Any bytes are fit for an attribute once they are escaped.
    Checker escaped(*parser);
    parser->Parse("<a k=\"" + xml::Escape(text) + "\"/>", "escaped", escaped);
    return 0;
}
