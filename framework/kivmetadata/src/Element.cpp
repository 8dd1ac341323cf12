#include "framework/kivmetadata/src/Element.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kivmetadata {

namespace {

constexpr std::size_t kMaxElements = 100'000;
// A file's own entities may grow it beyond its size; the parser alone would let them give a hundred
// times as much.
constexpr std::size_t kMaxTextBytes = std::size_t{4} << 20;

class TreeBuilder : public kivcore::xml::DocHandler {
public:
    TreeBuilder(const ElementReader& reader, const kivcore::xml::DocParser& parser)
        : reader_(reader), parser_(parser)
    {
    }

    void StartElement(const std::string& name, const kivcore::xml::Attributes& attributes) override
    {
        Element element;
        element.name = name;
        element.attributes = attributes;
        element.line = parser_.Line();
        if (++count_ > kMaxElements) {
            reader_.Fail(element, "too many elements");
        }
        for (const auto& [attribute, value] : attributes) {
            Count(element, value.size());
        }
        open_.push_back(std::move(element));
    }

    void EndElement(const std::string&) override
    {
        Element element = std::move(open_.back());
        open_.pop_back();
        (open_.empty() ? root_ : open_.back().children.emplace_back()) = std::move(element);
    }

    void Text(std::string_view text) override
    {
        Count(open_.back(), text.size());
        open_.back().text += text;
    }

    Element TakeRoot() { return std::move(root_); }

private:
    void Count(const Element& element, std::size_t bytes)
    {
        if (bytes > kMaxTextBytes - textBytes_) {
            reader_.Fail(element, "too much text");
        }
        textBytes_ += bytes;
    }

    const ElementReader& reader_;
    const kivcore::xml::DocParser& parser_;
    std::vector<Element> open_;
    Element root_;
    std::size_t count_ = 0;
    std::size_t textBytes_ = 0;
};

bool Contains(std::initializer_list<std::string_view> names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::string_view Element::TrimmedText() const noexcept
{
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string::npos) {
        return {};
    }
    return std::string_view(text).substr(first, text.find_last_not_of(kSpace) - first + 1);
}

std::string_view Element::Get(std::string_view attribute) const noexcept
{
    const std::string* const value = kivcore::xml::FindAttribute(attributes, attribute);
    return value == nullptr ? std::string_view() : *value;
}

bool Element::Has(std::string_view attribute) const noexcept
{
    return kivcore::xml::FindAttribute(attributes, attribute) != nullptr;
}

Element ElementReader::Parse(std::string_view text, std::string_view rootName) const
{
    const auto parser = kivcore::xml::NewParser();
    TreeBuilder builder(*this, *parser);
    parser->Parse(text, sourceName_, builder);
    Element root = builder.TakeRoot();
    if (root.name != rootName) {
        Fail(root, "the root element must be <" + std::string(rootName) + ">");
    }
    return root;
}

void ElementReader::Fail(const Element& element, std::string_view reason) const
{
    throw kivcore::xml::ParseError(sourceName_ + ":" + std::to_string(element.line) + ": <" +
                                   element.name + ">: " + std::string(reason));
}

std::string ElementReader::Required(const Element& element, std::string_view attribute) const
{
    const std::string_view value = element.Get(attribute);
    if (value.empty()) {
        Fail(element, "needs the attribute '" + std::string(attribute) + "'");
    }
    return std::string(value);
}

bool ElementReader::YesNo(const Element& element, std::string_view attribute, bool otherwise) const
{
    if (!element.Has(attribute)) {
        return otherwise;
    }
    const std::string_view value = element.Get(attribute);
    if (value != "yes" && value != "no") {
        Fail(element, "'" + std::string(attribute) + "' is neither yes nor no");
    }
    return value == "yes";
}

double ElementReader::Number(const Element& element, std::string_view attribute) const
{
    if (!element.Has(attribute)) {
        return 0;
    }
    const std::string_view text = element.Get(attribute);
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) {
        Fail(element, "'" + std::string(attribute) + "' is not a number");
    }
    return value;
}

void ElementReader::Expect(const Element& element,
                           std::initializer_list<std::string_view> attributes,
                           std::initializer_list<std::string_view> children) const
{
    ExpectParts(element, attributes, children);
    if (!element.TrimmedText().empty()) {
        Fail(element, "has text, which would be lost");
    }
}

void ElementReader::ExpectText(const Element& element,
                               std::initializer_list<std::string_view> attributes) const
{
    ExpectParts(element, attributes, {});
}

void ElementReader::ExpectParts(const Element& element,
                                std::initializer_list<std::string_view> attributes,
                                std::initializer_list<std::string_view> children) const
{
    for (const auto& [name, value] : element.attributes) {
        if (!Contains(attributes, name)) {
            Fail(element, "unknown attribute '" + name + "'");
        }
    }
    for (const Element& child : element.children) {
        if (!Contains(children, child.name)) {
            Fail(child, "does not belong here");
        }
    }
}

}  // namespace kivmetadata
