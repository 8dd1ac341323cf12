// A small XML document as a tree, for files that are read whole: definitions and translations.

#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <kivcore/Xml.h>

namespace kivmetadata {

/// One element. Its messages are "file:line: <name>: reason".
struct Element {
    std::string name;
    kivcore::xml::Attributes attributes;
    std::string text;  ///< all character data, joined
    std::vector<Element> children;
    std::size_t line = 0;

    /// The text without white space around it, which is the file's layout.
    std::string_view TrimmedText() const noexcept;
    /// The attribute's value, empty where there is none.
    std::string_view Get(std::string_view attribute) const noexcept;
    bool Has(std::string_view attribute) const noexcept;
};

/// Reads and checks elements of one file.
class ElementReader {
public:
    /// `sourceName` stands in messages.
    explicit ElementReader(std::string sourceName) : sourceName_(std::move(sourceName)) {}

    /// Parses a document whose root must be `rootName`. Throws kivcore::xml::ParseError, also above
    /// 100,000 elements and 4 MiB of texts and attributes.
    Element Parse(std::string_view text, std::string_view rootName) const;

    /// Throws kivcore::xml::ParseError about `element`.
    [[noreturn]] void Fail(const Element& element, std::string_view reason) const;

    /// The attribute's value, which must be there and not empty.
    std::string Required(const Element& element, std::string_view attribute) const;
    /// "yes" or "no"; `otherwise` where there is none.
    bool YesNo(const Element& element, std::string_view attribute, bool otherwise) const;
    /// A number; 0 where there is none.
    double Number(const Element& element, std::string_view attribute) const;
    /// Fails on an attribute or a child that is not of these names, and on text: what is misspelt
    /// would be lost silently.
    void Expect(const Element& element, std::initializer_list<std::string_view> attributes,
                std::initializer_list<std::string_view> children) const;
    /// The same for an element of text.
    void ExpectText(const Element& element,
                    std::initializer_list<std::string_view> attributes) const;

private:
    void ExpectParts(const Element& element, std::initializer_list<std::string_view> attributes,
                     std::initializer_list<std::string_view> children) const;

    std::string sourceName_;
};

}  // namespace kivmetadata
