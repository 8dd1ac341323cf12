#include "svgloom/src/RapidXMLDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/XMLChecks.h"

namespace SVGLoom::xml {
namespace {

/// A writable copy of a text that ends with its zero.
class Buffer {
public:
    explicit Buffer(std::string_view text) : bytes_(std::make_unique<char[]>(text.size() + 1))
    {
        std::copy(text.begin(), text.end(), bytes_.get());
    }
    char* Text() { return bytes_.get(); }

private:
    std::unique_ptr<char[]> bytes_;
};

class AttributeWriter final : public AttributeVisitor {
public:
    void VisitAttribute(std::string_view name, std::string_view value) override
    {
        text.append(" ").append(name).append("=").append(value);
    }
    std::string text;
};

/// "name a=b(value)[children]" for a node and its siblings.
std::string Written(std::unique_ptr<XMLNode> node)
{
    std::string text;
    for (; node != nullptr; node = node->GetNextSibling()) {
        AttributeWriter attributes;
        node->VisitAttributes(attributes);
        text += (text.empty() ? "" : " ") + std::string(node->GetName()) + attributes.text;
        if (*node->GetValue() != '\0') {
            text.append("(").append(node->GetValue()).append(")");
        }
        const std::string children = Written(node->GetFirstChild());
        if (!children.empty()) {
            text.append("[").append(children).append("]");
        }
    }
    return text;
}

/// The names of a node and what is below it, read through one handle that stands there again then.
std::string WrittenByWalking(XMLNode& node)
{
    std::string text(node.Name());
    if (node.MoveToFirstChild()) {
        std::string children;
        do {
            children += (children.empty() ? "" : " ") + WrittenByWalking(node);
        } while (node.MoveToNextSibling());
        node.MoveToParent();
        text += "[" + children + "]";
    }
    return text;
}

std::string Parse(std::string_view input)
{
    Buffer buffer(input);
    try {
        const RapidXMLDocument document(buffer.Text());
        return Written(document.GetFirstNode());
    } catch (const rapidxml::parse_error& error) {
        return std::string("error: ") + error.what();
    }
}

struct XMLCase {
    std::string_view input;
    std::string_view want;
};

constexpr XMLCase kCases[] = {
    {"", ""},
    {" \t\r\n", ""},
    {"<a/>", "a"},
    {"\xEF\xBB\xBF<a/>", "a"},
    {" <a/> ", "a"},
    {"<a b='1' c=\"2\"/>", "a b=1 c=2"},
    {"<a><b/><c/></a>", "a[b c]"},
    {"<a> <b/> <c/> </a>", "a( )[b c]"},
    {"<a>text<b/>more</a>", "a(text)[b]"},
    {"<a/><b/>", "a b"},
    {"<x:a y:b='1'/>", "x:a y:b=1"},
    // Bytes go through.
    {"<\xC3\xA9 \xFF='\x80'/>", "\xC3\xA9 \xFF=\x80"},
    // What is no element is left out.
    {"<?xml version='1.0'?><!DOCTYPE svg [<!ENTITY a 'b'>]><!-- c --><a><!-- <b> --><?p <c>?></a>",
     "a"},
    {"<a><!FOO><b/></a>", "a[b]"},
    // Entities.
    {"<a b='&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#233;'/>", "a b=<>&\"'AB\xC3\xA9"},
    {"<a>&lt;&unknown;</a>", "a(<&unknown;)"},
    {"<a b='&#1114111;'/>", "a b=\xF4\x8F\xBF\xBF"},
    {"<a b='&#1114112;'/>", "error: invalid numeric character entity"},
    {"<a b='&#4294967361;'/>", "error: invalid numeric character entity"},
    {"<a b='&#x100000041;'/>", "error: invalid numeric character entity"},
    {"<a b='&#18446744073709551681;'/>", "error: invalid numeric character entity"},
    {"<a b='&#65'/>", "error: expected ;"},
    // A NUL ends a value.
    {"<a b='1&#0;2'/>", "a b=1"},
    {"<a b='1&#0;2' c='3'><b><c d='&#x0;'/></b><e f='4&#0;5'/></a><g h='6&#0;7'/>",
     "a b=1 c=3[b[c d=] e f=4] g h=6"},
    // The first text counts; the first CDATA section where that is empty.
    {"<a>one<b/>two</a>", "a(one)[b]"},
    {"<a><![CDATA[<x>&amp;]]></a>", "a(<x>&amp;)"},
    {"<a>one<![CDATA[two]]></a>", "a(one)"},
    {"<a><![CDATA[one]]>two</a>", "a(two)"},
    {"<a>\n <![CDATA[one]]>\n<![CDATA[two]]></a>", "a(one)"},
    {"<a><![CDATA[]]></a>", "a"},
    {"<a><![CDATA[x]]><b/></a>", "a(x)[b]"},
    {"<a><b/><![CDATA[x]]><c/></a>", "a(x)[b c]"},
    {"<![CDATA[x]]><a/>", "a"},
    // Malformed.
    {"x", "error: expected <"},
    {"<a/>x", "error: expected <"},
    {"<a>", "error: unexpected end of data"},
    {"<a", "error: expected >"},
    {"<", "error: expected element name"},
    {"<a></b>", "error: invalid closing tag name"},
    {"<a><b></a></b>", "error: invalid closing tag name"},
    {"<a></A>", "error: invalid closing tag name"},
    {"<a b></a>", "error: expected ="},
    {"<a b=1/>", "error: expected ' or \""},
    {"<a b='1/>", "error: expected ' or \""},
    {"<!-- ", "error: unexpected end of data"},
    {"<?xml ", "error: unexpected end of data"},
    {"<a><![CDATA[ ]]</a>", "error: unexpected end of data"},
    {"<!DOCTYPE svg [", "error: unexpected end of data"},
};

TEST(RapidXMLDocument, Cases)
{
    for (const XMLCase& row : kCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Parse(row.input), row.want);
    }
}

TEST(RapidXMLDocument, OneHandleForAWalk)
{
    for (const std::string_view want :
         {"a", "a[b]", "a[b c]", "a[b[c d[e]] f]", "a[b[c[d[e[f]]]]]"}) {
        std::string text;
        std::vector<std::string> open;
        std::string name;
        const auto closeName = [&text, &name] {
            text += name.empty() ? "" : "</" + name + ">";
            name.clear();
        };
        for (const char c : want) {
            if (c == '[') {
                open.push_back(std::exchange(name, ""));
                text += "<!-- no element -->text";
            } else if (c == ']' || c == ' ') {
                closeName();
                if (c == ']') {
                    name = open.back();
                    open.pop_back();
                }
            } else {
                name = c;
                text += "<" + name + ">";
            }
        }
        closeName();
        Buffer buffer(text);
        const RapidXMLDocument document(buffer.Text());
        RapidXMLNode root = document.FirstNode();
        EXPECT_EQ(WrittenByWalking(root), want) << text;
        EXPECT_EQ(root.Name(), "a");
        EXPECT_FALSE(root.MoveToNextSibling());
    }
    Buffer empty("");
    const RapidXMLDocument document(empty.Text());
    RapidXMLNode none = document.FirstNode();
    EXPECT_EQ(none.GetName(), nullptr);
    EXPECT_EQ(none.Name(), "");
    EXPECT_FALSE(none.MoveToFirstChild());
}

// Texts with references, and with sections, are parsed in other ways; all find the same.
TEST(RapidXMLDocument, AllWaysOfParsing)
{
    for (const std::string_view element :
         {R"(<a b="1" c='2"3' d="4'5" e="">text</a>)", R"(<a b = "1 > 2"/>)", R"(<a b="1)",
          R"(<a b=")", R"(<a b='1)", R"(<a b="1"c="2">1</a>)", R"(<a b="1" "2"/>)",
          R"(<a b="M0 0 L1 1 2 2 3 3 4 4 5 5 6 6 7 7 8 8 9 9 10 10 11 11 12 12"><c/></b>)"}) {
        const std::string plain = Parse(element);
        EXPECT_EQ(Parse("<!-- & -->" + std::string(element)), plain) << element;
        EXPECT_EQ(Parse("<!--![CDATA[-->" + std::string(element)), plain) << element;
    }
}

// Plain texts are read by functions of our own, the others by the library's.
TEST(RapidXMLDocument, PlainTextsFailAndReadAsOthers)
{
    constexpr std::string_view kText =
        "<?xml version='1'?><!DOCTYPE a [<!ENTITY b 'c'>]> <svg a='1' b = \"2\"\n>\n<g  c=''>"
        "<!-- d --><e/>x<f g=\"'\" /> y </g><!h>z<?i?><j:k l:m='>'></j:k\n></svg ><n/> ";
    const auto expectSame = [](const std::string& text) {
        EXPECT_EQ(Parse(text), Parse("<!-- & -->" + text)) << text;
    };
    for (std::size_t at = 0; at < kText.size(); ++at) {
        expectSame(std::string(kText.substr(0, at)));
        std::string changed(kText);
        changed.erase(at, 1);
        expectSame(changed);
        for (const char c : std::string_view("<>/='\" \0\n!?x\xFF", 12)) {
            changed = kText;
            changed[at] = c;
            expectSame(changed);
            changed = kText;
            changed.insert(at, 1, c);
            expectSame(changed);
        }
    }
}

TEST(RapidXMLDocument, DepthIsLimitedInAllWays)
{
    for (const std::string_view before : {"", "<!-- & -->", "<!--![CDATA[-->"}) {
        for (const int depth : {kMaxDepth, kMaxDepth + 1}) {
            std::string text(before);
            std::string close;
            for (int i = 0; i < depth - 1; ++i) {
                text += "<g><e/>";
                close += "</g>";
            }
            // Neither what stands before nor an element without content opens another level.
            text += "<e/>" + close + "<g><e/></g>";
            const std::string parsed = Parse(text);
            if (depth == kMaxDepth) {
                EXPECT_TRUE(parsed.starts_with("g[e g[e")) << before;
            } else {
                EXPECT_EQ(parsed, "error: elements are nested too deeply") << before;
            }
        }
    }
}

TEST(RapidXMLDocument, TheFirstNulEndsTheText)
{
    EXPECT_EQ(Parse(std::string_view("<a/>\0<b/>", 9)), "a");
    EXPECT_EQ(Parse(std::string_view("<a>\0</a>", 8)), "error: unexpected end of data");
}

TEST(RapidXMLDocument, CutAtEveryLength)
{
    constexpr std::string_view kText =
        "<?xml version='1'?><!DOCTYPE a [<!ENTITY b 'c'>]><a b='&amp;1' c=\"&#65;\"><!-- d --><e/>"
        "<f>x&lt;y</f><![CDATA[<z>]]></a>";
    for (std::size_t length = 0; length < kText.size(); ++length) {
        const std::string parsed = Parse(kText.substr(0, length));
        // The declaration and the doctype alone are a document without nodes.
        const bool empty = length == 0 || length == 19 || length == 49;
        EXPECT_EQ(parsed.empty(), empty) << length;
        EXPECT_EQ(parsed.starts_with("error"), !empty) << length;
    }
}

TEST(XMLNode, GetAttribute)
{
    struct Case {
        std::string_view attributes;
        const char* name;
        const char* prefix;
        const char* want;  // null: not found
    };
    constexpr Case kAttributeCases[] = {
        {"b='1'", "b", nullptr, "1"},
        {"b=''", "b", nullptr, ""},
        {"b='1' b='2'", "b", nullptr, "1"},
        {"b='1'", "B", nullptr, nullptr},
        {"bb='1'", "b", nullptr, nullptr},
        {"b='1'", "bb", nullptr, nullptr},
        {"b='1'", "", nullptr, nullptr},
        {"", "b", "x", nullptr},
        // No name: the first attribute.
        {"c='3' b='1'", nullptr, nullptr, "3"},
        {"c='3' b='1'", nullptr, "x", "3"},
        {"", nullptr, nullptr, nullptr},
        // A prefix counts where there is no plain one.
        {"xlink:href='1'", "href", "xlink", "1"},
        {"xlink:href='1' href='2'", "href", "xlink", "2"},
        {"href='2' xlink:href='1'", "href", "xlink", "2"},
        {"xlink:href='1' xlink:href='2'", "href", "xlink", "1"},
        {"xlink:href='1'", "href", nullptr, nullptr},
        {"xlink:href='1'", "xlink:href", nullptr, "1"},
        {"xlinkhref='1'", "href", "xlink", nullptr},
        {"y:href='1'", "href", "xlink", nullptr},
    };
    for (const Case& row : kAttributeCases) {
        SCOPED_TRACE(row.attributes);
        Buffer buffer("<a " + std::string(row.attributes) + "/>");
        const RapidXMLDocument document(buffer.Text());
        const auto [found, value] = document.GetFirstNode()->GetAttribute(row.name, row.prefix);
        EXPECT_EQ(found, row.want != nullptr);
        EXPECT_STREQ(value, row.want);
    }
}

TEST(RapidXMLDocument, DepthLimit)
{
    const auto nested = [](int depth, std::string_view middle) {
        std::string text;
        for (int i = 0; i < depth; ++i) {
            text += "<g>";
        }
        text += middle;
        for (int i = 0; i < depth; ++i) {
            text += "</g>";
        }
        return text;
    };
    constexpr std::string_view kTooDeep = "error: elements are nested too deeply";
    EXPECT_TRUE(Parse(nested(kMaxDepth, "")).starts_with("g[g[g["));
    EXPECT_EQ(Parse(nested(kMaxDepth + 1, "")), kTooDeep);
    EXPECT_TRUE(Parse(nested(kMaxDepth - 1, "<x/>")).starts_with("g[g[g["));
    EXPECT_EQ(Parse(nested(kMaxDepth, "<x/>")), kTooDeep);
    // Without closing tags, and far deeper than any stack.
    EXPECT_EQ(Parse(nested(kMaxDepth, "") + std::string("<g>")), "error: unexpected end of data");
    std::string deep;
    for (int i = 0; i < 3000000; ++i) {
        deep += "<g>";
    }
    EXPECT_EQ(Parse(deep), kTooDeep);
}

TEST(RapidXMLDocument, WideIsNotDeep)
{
    std::string text = "<svg>";
    for (int i = 0; i < 2000; ++i) {
        text += "<g><p a='<'/><p></p><!-- <b> --></g>";
    }
    text += "</svg>";
    EXPECT_TRUE(Parse(text).starts_with("svg[g[p a=< p] g["));
}

// The fixed order of the operations, counted in entries of the table; a destructor takes two.
template <class MemberPointer>
int Entry(MemberPointer member)
{
    std::uintptr_t value = 0;
    static_assert(sizeof member >= sizeof value);
    std::memcpy(&value, &member, sizeof value);
    return static_cast<int>((value - 1) / sizeof(void*));
}

TEST(XMLDocument, SlotOrder)
{
    EXPECT_EQ(Entry(&XMLDocument::GetFirstNode), 0);
    EXPECT_EQ(Entry(&XMLNode::GetName), 0);
    EXPECT_EQ(Entry(&XMLNode::GetValue), 1);
    EXPECT_EQ(Entry(&XMLNode::GetFirstChild), 2);
    EXPECT_EQ(Entry(&XMLNode::GetNextSibling), 3);
    EXPECT_EQ(Entry(&XMLNode::GetAttribute), 4);
    // Behind the destructor.
    EXPECT_EQ(Entry(&XMLNode::VisitAttributes), 7);
    EXPECT_EQ(Entry(&XMLNode::MoveToNextSibling), 8);
}

TEST(XMLNode, MoveToNextSibling)
{
    std::string text = "<a><b/>text<!-- --><c x='1'/></a>";
    const RapidXMLDocument document(text.data());
    const std::unique_ptr<XMLNode> root = document.GetFirstNode();
    EXPECT_FALSE(root->MoveToNextSibling());
    EXPECT_STREQ(root->GetName(), "a");
    const std::unique_ptr<XMLNode> child = root->GetFirstChild();
    EXPECT_STREQ(child->GetName(), "b");
    EXPECT_TRUE(child->MoveToNextSibling());
    EXPECT_STREQ(child->GetName(), "c");
    EXPECT_STREQ(child->GetAttribute("x", nullptr).second, "1");
    EXPECT_FALSE(child->MoveToNextSibling());
    EXPECT_STREQ(child->GetName(), "c");
}

}  // namespace
}  // namespace SVGLoom::xml
