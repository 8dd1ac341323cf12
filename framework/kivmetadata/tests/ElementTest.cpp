#include "framework/kivmetadata/src/Element.h"

#include "framework/kivmetadata/tests/Dump.h"

namespace kivmetadata {

namespace {

class ElementTest : public ReaderTest {
protected:
    ElementReader reader_{"f.xml"};

    std::string Parse(std::string_view text) const
    {
        return TextOrError([&] { return Tree(reader_.Parse(text, "a")); });
    }

    /// Name, line, attributes, text, children.
    static std::string Tree(const Element& element)
    {
        std::string text = element.name + ':' + std::to_string(element.line);
        for (const auto& [name, value] : element.attributes) {
            text += ' ' + name + '=' + value;
        }
        text += element.text.empty() ? "" : " '" + element.text + "'";
        for (const Element& child : element.children) {
            text += " (" + Tree(child) + ")";
        }
        return text;
    }

    static std::string Nested(std::size_t levels)
    {
        std::string text;
        for (std::size_t i = 0; i < levels; ++i) {
            text += "<a>";
        }
        for (std::size_t i = 0; i < levels; ++i) {
            text += "</a>";
        }
        return text;
    }
};

struct ParseRow {
    const char* text;
    const char* want;
};

constexpr ParseRow kParseRows[] = {
    {"<a/>", "a:1"},
    {"<a x='1' y=''/>", "a:1 x=1 y="},
    {"<?xml version='1.0'?>\n\n<a>\n<b/>\n</a>", "a:3 '\n\n' (b:4)"},
    {"<a>one<!-- no --><b>t</b>two<![CDATA[<3]]></a>", "a:1 'onetwo<3' (b:1 't')"},
    {"<a\n x='1'\n/>", "a:1 x=1"},  // the line on which the element begins
    {"\xEF\xBB\xBF<a>\xC3\xA4</a>", "a:1 '\xC3\xA4'"},
    // Entities of the document's own, also within attributes.
    {"<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;1'>&e;&#65;</a>", "a:1 b=x1 'xA'"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'other.xml'>]><a>&e;</a>",
     "f.xml:1:49: the external entity \"other.xml\" is refused"},
    {"<b/>", "f.xml:1: <b>: the root element must be <a>"},
    {"\n<A/>", "f.xml:2: <A>: the root element must be <a>"},
    {"", "f.xml:1:1: no element found"},
    {"<a>", "f.xml:1:4: no element found"},
    {"<a></b>", "f.xml:1:6: mismatched tag"},
    {"<a x='1' x='2'/>", "f.xml:1:10: duplicate attribute"},
    {"<a/><a/>", "f.xml:1:5: junk after document element"},
    {"<a>\xFF</a>", "f.xml:1:4: not well-formed (invalid token)"},
};

TEST_F(ElementTest, Parses)
{
    for (const ParseRow& row : kParseRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Parse(row.text), row.want);
    }
}

TEST_F(ElementTest, ParsesWhatIsCutAnywhere)
{
    const std::string text = "<a x='&lt;'><b>text</b><!-- c --><c/></a>";
    EXPECT_EQ(Parse(text), "a:1 x=< (b:1 'text') (c:1)");
    for (std::size_t length = 0; length < text.size(); ++length) {
        const std::string cut = text.substr(0, length);
        EXPECT_EQ(Parse(cut).rfind("f.xml:1:", 0), 0u) << cut;
    }
}

TEST_F(ElementTest, NestsUpToTheParsersLimit)
{
    EXPECT_EQ(Parse(Nested(256)).rfind("a:1 (a:1", 0), 0u);
    EXPECT_EQ(Parse(Nested(257)), "f.xml:1:769: elements are nested deeper than 256");
}

TEST_F(ElementTest, CountsElements)
{
    const auto withChildren = [](std::size_t count) {
        std::string text = "<a>\n";
        for (std::size_t i = 0; i < count; ++i) {
            text += "<b/>";
        }
        return text + "</a>";
    };
    EXPECT_EQ(reader_.Parse(withChildren(99'999), "a").children.size(), 99'999u);
    EXPECT_EQ(Parse(withChildren(100'000)), "f.xml:2: <b>: too many elements");
}

// The parser's own limit lets a text of some bytes grow a hundredfold.
TEST_F(ElementTest, BoundsWhatEntitiesGiveTogether)
{
    const auto document = [](std::size_t references, bool asAttributes) {
        std::string text = "<!DOCTYPE a [<!ENTITY e '" + std::string(64 << 10, 'x') + "'>]><a>";
        for (std::size_t i = 0; i < references; ++i) {
            text += asAttributes ? "<b c='&e;'/>" : "&e;";
        }
        return text + "</a>";
    };
    EXPECT_EQ(reader_.Parse(document(60, false), "a").text.size(), 60u << 16);
    EXPECT_EQ(Parse(document(65, false)), "f.xml:1: <a>: too much text");
    EXPECT_EQ(reader_.Parse(document(60, true), "a").children.size(), 60u);
    EXPECT_EQ(Parse(document(65, true)), "f.xml:1: <b>: too much text");
}

TEST_F(ElementTest, NeedsAParserFactory)
{
    kivcore::xml::ResetParserFactory();
    EXPECT_THROW(reader_.Parse("<a/>", "a"), std::logic_error);
}

TEST_F(ElementTest, TellsEmptyFromMissing)
{
    const Element element = reader_.Parse("<a x='1' y=''/>", "a");
    EXPECT_EQ(element.Get("x"), "1");
    EXPECT_EQ(element.Get("y"), "");
    EXPECT_EQ(element.Get("z"), "");
    EXPECT_TRUE(element.Has("y"));
    EXPECT_FALSE(element.Has("z"));
}

struct ValueRow {
    const char* attributes;
    const char* want;
};

TEST_F(ElementTest, Required)
{
    constexpr ValueRow kRows[] = {
        {"x='1'", "1"},
        {"x=' '", " "},
        {"x=''", "f.xml:1: <a>: needs the attribute 'x'"},
        {"X='1'", "f.xml:1: <a>: needs the attribute 'x'"},
    };
    for (const ValueRow& row : kRows) {
        SCOPED_TRACE(row.attributes);
        const Element element = reader_.Parse(std::string("<a ") + row.attributes + "/>", "a");
        EXPECT_EQ(TextOrError([&] { return reader_.Required(element, "x"); }), row.want);
    }
}

TEST_F(ElementTest, YesNo)
{
    constexpr ValueRow kRows[] = {
        {"x='yes'", "yes yes"},
        {"x='no'", "no no"},
        {"", "no yes"},
        {"x=''", "f.xml:1: <a>: 'x' is neither yes nor no"},
        {"x='true'", "f.xml:1: <a>: 'x' is neither yes nor no"},
        {"x='Yes'", "f.xml:1: <a>: 'x' is neither yes nor no"},
        {"x='yes '", "f.xml:1: <a>: 'x' is neither yes nor no"},
    };
    for (const ValueRow& row : kRows) {
        SCOPED_TRACE(row.attributes);
        const Element element = reader_.Parse(std::string("<a ") + row.attributes + "/>", "a");
        EXPECT_EQ(TextOrError([&] {
                      const bool orNo = reader_.YesNo(element, "x", /*otherwise=*/false);
                      const bool orYes = reader_.YesNo(element, "x", /*otherwise=*/true);
                      return std::string(orNo ? "yes" : "no") + (orYes ? " yes" : " no");
                  }),
                  row.want);
    }
}

TEST_F(ElementTest, Number)
{
    struct NumberRow {
        const char* text;
        double want;
    };
    constexpr NumberRow kGood[] = {{"0", 0},      {"-1", -1},         {"2.5", 2.5}, {".5", 0.5},
                                   {"1e3", 1000}, {"-0.125", -0.125}, {"007", 7},   {"1e-400", 0}};
    for (const NumberRow& row : kGood) {
        SCOPED_TRACE(row.text);
        const Element element = reader_.Parse(std::string("<a x='") + row.text + "'/>", "a");
        if (std::string_view(row.text) == "1e-400") {
            EXPECT_THROW(reader_.Number(element, "x"), kivcore::xml::ParseError);  // out of range
            continue;
        }
        EXPECT_EQ(reader_.Number(element, "x"), row.want);
    }
    EXPECT_EQ(reader_.Number(reader_.Parse("<a/>", "a"), "x"), 0);
    for (const char* const text :
         {"", " 1", "1 ", "+1", "1,5", "one", "0x10", "1e400", "inf", "nan", "--1", "1.2.3"}) {
        SCOPED_TRACE(text);
        const Element element = reader_.Parse(std::string("<a x='") + text + "'/>", "a");
        EXPECT_EQ(TextOrError([&] { return std::to_string(reader_.Number(element, "x")); }),
                  "f.xml:1: <a>: 'x' is not a number");
    }
}

TEST_F(ElementTest, ExpectRefusesWhatWouldBeLost)
{
    constexpr ParseRow kRows[] = {
        {"<a/>", ""},
        {"<a x='1' y='2'><b/><c/><b/></a>", ""},
        {"<a>\n  <b/>\t\r\n</a>", ""},
        {"<a z='1'/>", "f.xml:1: <a>: unknown attribute 'z'"},
        {"<a X='1'/>", "f.xml:1: <a>: unknown attribute 'X'"},
        {"<a>\n<d/></a>", "f.xml:2: <d>: does not belong here"},
        {"<a>\n<b/>text</a>", "f.xml:1: <a>: has text, which would be lost"},
    };
    for (const ParseRow& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(TextOrError([&] {
                      reader_.Expect(reader_.Parse(row.text, "a"), {"x", "y"}, {"b", "c"});
                      return std::string();
                  }),
                  row.want);
    }
}

}  // namespace

}  // namespace kivmetadata
