// Parsing XML documents. The parser is made by a replaceable factory; ours is over Expat: entities
// of the internal DTD are expanded (within Expat's amplification limits), external ones are refused
// where they are used, an external document type among them.

#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kivcore/Export.h>

namespace kivcore::xml {

/// The text is not well-formed, or a handler refused it. what() is "name:line:column: reason",
/// UTF-8.
class KIVCORE_API ParseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ParseError(const ParseError&) = default;
    ParseError& operator=(const ParseError&) = default;
    ~ParseError() override;
};

/// Attributes in document order, names as written ("xml:lang"), values UTF-8.
using Attributes = std::vector<std::pair<std::string, std::string>>;

/// Value of the attribute `name`, null where there is none.
KIVCORE_API const std::string* FindAttribute(const Attributes& attributes, std::string_view name);

/// Receives what a document holds. A handler may throw; the exception leaves Parse.
class KIVCORE_API DocHandler {
public:
    virtual ~DocHandler();
    virtual void StartElement(const std::string& name, const Attributes& attributes) = 0;
    virtual void EndElement(const std::string& name) = 0;
    /// May come in several pieces.
    virtual void Text(std::string_view text) = 0;
};

class KIVCORE_API DocParser {
public:
    virtual ~DocParser();
    /// Parses a whole document. `sourceName` stands in messages. Throws ParseError, also above 256
    /// levels of nesting.
    virtual void Parse(std::string_view text, std::string_view sourceName, DocHandler& handler) = 0;
    /// While Parse runs: the line being read, from 1. 0 otherwise.
    virtual std::size_t Line() const = 0;
};

class KIVCORE_API DocParserFactory {
public:
    virtual ~DocParserFactory();
    virtual std::unique_ptr<DocParser> NewParser() = 0;
};

/// The framework's own factory, over Expat.
class KIVCORE_API MSXMLParserFactory : public DocParserFactory {
public:
    MSXMLParserFactory();
    ~MSXMLParserFactory() override;
    std::unique_ptr<DocParser> NewParser() override;
};

/// True while a factory is set.
KIVCORE_API bool Initialized() noexcept;
/// The framework takes the factory over.
KIVCORE_API void SetParserFactory(std::unique_ptr<DocParserFactory> factory);
/// Destroys the factory; silent where there is none.
KIVCORE_API void ResetParserFactory() noexcept;
/// A parser from the factory; throws std::logic_error where none is set.
KIVCORE_API std::unique_ptr<DocParser> NewParser();

/// `text` with &, <, >, ", tabs and line ends written as references, fit for texts and attributes.
/// What XML cannot carry (other control characters, U+FFFE, U+FFFF, ill-formed parts) becomes
/// U+FFFD.
KIVCORE_API std::string Escape(std::string_view text);

}  // namespace kivcore::xml
