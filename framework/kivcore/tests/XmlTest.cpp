#include <kivcore/Xml.h>

#include <stdexcept>

#include <gmock/gmock.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::xml {
namespace {

using kivcore::testing::TextOf;
using ::testing::HasSubstr;

/// Prints what it gets in one line: "<a b=1>text</a>".
class Printer : public DocHandler {
public:
    void StartElement(const std::string& name, const Attributes& attributes) override
    {
        text += "<" + name;
        for (const auto& [key, value] : attributes) {
            text.append(" ").append(key).append("=").append(value);
        }
        text += ">";
    }
    void EndElement(const std::string& name) override { text.append("</").append(name) += ">"; }
    void Text(std::string_view piece) override { text += piece; }

    std::string text;
};

std::string Print(std::string_view document)
{
    Printer printer;
    MSXMLParserFactory().NewParser()->Parse(document, "x.xml", printer);
    return printer.text;
}

struct ParseCase {
    std::string_view document;
    std::string_view want;  // what Printer prints, or the message
};

constexpr ParseCase kParseCases[] = {
    {"<a/>", "<a></a>"},
    {"<a z='1' xml:lang=\"de\" b=''>x<b/>y</a>", "<a z=1 xml:lang=de b=>x<b></b>y</a>"},
    {"<n:a xmlns:n='u'/>", "<n:a xmlns:n=u></n:a>"},
    {"<!-- c --><?p i?><a>1<!-- c -->2<![CDATA[<&]]></a>", "<a>12<&</a>"},
    {"<a>&amp;&#65;&#x1F600;</a>", "<a>&A\xF0\x9F\x98\x80</a>"},
    {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "<a>\xC3\xA9</a>"},
    {"<a>\r\n</a>", "<a>\n</a>"},
    // Entities of the internal DTD, in texts and attributes, one in the other, and in parameters.
    {"<!DOCTYPE a [<!ENTITY c '#123456'><!ENTITY d '&c; x'>]><a k='&d;'>&c;</a>",
     "<a k=#123456 x>#123456</a>"},
    {"<!DOCTYPE a [<!ENTITY e '<b>x</b>'>]><a>&e;</a>", "<a><b>x</b></a>"},
    {"<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>&e;</a>", "<a>x</a>"},
    {"<!DOCTYPE a [<!ATTLIST a k CDATA 'v'>]><a/>", "<a k=v></a>"},
    // An external entity that is not used does no harm.
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a/>", "<a></a>"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>\n<a>&e;</a>",
     "x.xml:2:4: the external entity \"file:///etc/passwd\" is refused"},
    {"<!DOCTYPE a [<!ENTITY % e SYSTEM 'e.dtd'>%e;]><a/>",
     "x.xml:1:42: the external entity \"e.dtd\" is refused"},
    {"<!DOCTYPE a SYSTEM 'a.dtd'><a/>", "x.xml:1:27: the external entity \"a.dtd\" is refused"},
    {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&f;</a>", "x.xml:1:34: undefined entity"},
    // Without its parameter entity a document may mean anything.
    {"<!DOCTYPE a [%p;]><a>&f;</a>", "x.xml:1:14: the entity \"p\" is not defined"},
    {"<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>", "x.xml:1:36: recursive entity reference"},
    // Not well-formed.
    {"", "x.xml:1:1: no element found"},
    {"text", "x.xml:1:1: syntax error"},
    {"<a>\n  <b></a>", "x.xml:2:8: mismatched tag"},
    {"<a/><b/>", "x.xml:1:5: junk after document element"},
    {"<a k='1' k='2'/>", "x.xml:1:10: duplicate attribute"},
    {"<a>\x01</a>", "x.xml:1:4: not well-formed (invalid token)"},
    {"<a>\xC3</a>", "x.xml:1:4: not well-formed (invalid token)"},
    {"<a>&#0;</a>", "x.xml:1:4: reference to invalid character number"},
    {"<?xml version='1.0' encoding='klingon'?><a/>", "x.xml:1:31: unknown encoding"},
};

TEST(ExpatParser, Cases)
{
    for (const ParseCase& row : kParseCases) {
        SCOPED_TRACE(row.document);
        std::string got;
        try {
            got = Print(row.document);
        } catch (const ParseError& error) {
            got = error.what();
        }
        EXPECT_EQ(got, row.want);
    }
}

TEST(ExpatParser, CutAtEveryLengthIsAnError)
{
    const std::string document =
        "<!DOCTYPE a [<!ENTITY e 'x'>]><a k='&e;'><b>&e;&amp;</b><![CDATA[z]]></a>";
    EXPECT_NO_THROW(Print(document));
    for (std::size_t length = 0; length < document.size(); ++length) {
        // A block of exactly this size, so that a sanitizer sees any byte read behind it.
        const std::vector<char> cut(document.begin(),
                                    document.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_THROW(Print({cut.data(), cut.size()}), ParseError) << length;
    }
}

std::string Nested(std::size_t depth)
{
    std::string document;
    for (std::size_t i = 0; i < depth; ++i) {
        document += "<a>";
    }
    for (std::size_t i = 0; i < depth; ++i) {
        document += "</a>";
    }
    return document;
}

TEST(ExpatParser, NestingHasALimit)
{
    EXPECT_NO_THROW(Print(Nested(256)));
    EXPECT_EQ(TextOf<ParseError>([] { Print(Nested(257)); }),
              "x.xml:1:769: elements are nested deeper than 256");
    // Siblings do not count.
    EXPECT_NO_THROW(Print("<r>" + Nested(255) + Nested(255) + "</r>"));
}

std::string EntityChain(std::size_t count, std::size_t references)
{
    std::string document = "<!DOCTYPE a [<!ENTITY e0 '0123456789'>";
    for (std::size_t i = 1; i < count; ++i) {
        document += "<!ENTITY e" + std::to_string(i) + " '";
        for (std::size_t k = 0; k < references; ++k) {
            document += "&e" + std::to_string(i - 1) + ";";
        }
        document += "'>";
    }
    return document + "]><a>&e" + std::to_string(count - 1) + ";</a>";
}

TEST(ExpatParser, EntitiesThatMultiplyAreStopped)
{
    EXPECT_THAT(TextOf<ParseError>([] { Print(EntityChain(12, 10)); }), HasSubstr("amplification"));
}

TEST(ExpatParser, EntitiesThatOnlyChainDoNotExhaustTheStack)
{
    EXPECT_EQ(Print(EntityChain(50'000, 1)), "<a>0123456789</a>");
}

/// Throws at the `countdown`-th call.
class Thrower : public Printer {
public:
    explicit Thrower(int countdown) : countdown_(countdown) {}
    void StartElement(const std::string& name, const Attributes& attributes) override
    {
        Step();
        Printer::StartElement(name, attributes);
    }
    void EndElement(const std::string& name) override
    {
        Step();
        Printer::EndElement(name);
    }
    void Text(std::string_view piece) override
    {
        Step();
        Printer::Text(piece);
    }
    bool HasThrown() const { return countdown_ <= 0; }

private:
    void Step()
    {
        EXPECT_FALSE(HasThrown()) << "called again after it threw";
        if (--countdown_ == 0) {
            throw std::domain_error("no more of this");
        }
    }

    int countdown_;
};

TEST(ExpatParser, WhatAHandlerThrowsLeavesParse)
{
    const std::string_view document =
        "<!DOCTYPE a [<!ENTITY e '<i/>x'>]><a><b/>text<c>&e;</c>\n</a>";
    int thrown = 0;
    for (int countdown = 1;; ++countdown) {
        Thrower thrower(countdown);
        MSXMLParserFactory factory;
        const auto parser = factory.NewParser();
        if (TextOf<std::domain_error>([&] { parser->Parse(document, "x.xml", thrower); }).empty()) {
            break;
        }
        ++thrown;
        // The parser can be used again.
        Printer printer;
        parser->Parse("<a/>", "y.xml", printer);
        EXPECT_EQ(printer.text, "<a></a>");
    }
    EXPECT_GE(thrown, 11);
}

/// Parses another document with the same parser in the middle of the first.
class Nester : public Printer {
public:
    explicit Nester(DocParser& parser) : parser_(parser) {}
    void StartElement(const std::string& name, const Attributes& attributes) override
    {
        Printer::StartElement(name, attributes);
        lines.push_back(parser_.Line());
        if (name == "b") {
            Printer inner;
            parser_.Parse("\n\n\n<inner/>", "inner.xml", inner);
            lines.push_back(parser_.Line());
        }
    }

    std::vector<std::size_t> lines;

private:
    DocParser& parser_;
};

TEST(ExpatParser, TellsTheLineAlsoAfterAnInnerDocument)
{
    MSXMLParserFactory factory;
    const auto parser = factory.NewParser();
    Nester nester(*parser);
    parser->Parse("<a>\n<b/>\n\n<c/></a>", "x.xml", nester);
    EXPECT_THAT(nester.lines, ::testing::ElementsAre(1, 2, 2, 4));
    EXPECT_EQ(parser->Line(), 0U);
}

TEST(Xml, FindAttribute)
{
    const Attributes attributes = {{"a", "1"}, {"xml:lang", "de"}};
    ASSERT_NE(FindAttribute(attributes, "xml:lang"), nullptr);
    EXPECT_EQ(*FindAttribute(attributes, "xml:lang"), "de");
    EXPECT_EQ(FindAttribute(attributes, "lang"), nullptr);
}

struct EscapeCase {
    std::string_view text;
    std::string_view want;
};

constexpr EscapeCase kEscapeCases[] = {
    {"", ""},
    {"plain \xC3\xA9 'x'", "plain \xC3\xA9 'x'"},
    {"<a k=\"v\">&", "&lt;a k=&quot;v&quot;&gt;&amp;"},
    {"\t\r\n", "&#9;&#13;&#10;"},
    // What XML does not have at all, and what is no UTF-8.
    {"\x01\x1F", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBC", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBC"},
    {"a\xFF<", "a\xEF\xBF\xBD&lt;"},
};

TEST(Xml, Escape)
{
    for (const EscapeCase& row : kEscapeCases) {
        EXPECT_EQ(Escape(row.text), row.want);
        // The result is fit for an attribute, whatever the text was.
        EXPECT_NO_THROW(Print("<a k=\"" + Escape(row.text) + "\"/>"));
    }
}

TEST(Xml, FactoryRegistration)
{
    ResetParserFactory();
    EXPECT_FALSE(Initialized());
    EXPECT_THROW(NewParser(), std::logic_error);
    SetParserFactory(std::make_unique<MSXMLParserFactory>());
    EXPECT_TRUE(Initialized());
    Printer printer;
    NewParser()->Parse("<a/>", "x.xml", printer);
    EXPECT_EQ(printer.text, "<a></a>");
    ResetParserFactory();
    EXPECT_FALSE(Initialized());
    ResetParserFactory();
}

}  // namespace
}  // namespace kivcore::xml
