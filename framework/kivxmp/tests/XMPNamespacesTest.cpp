#include <kivxmp/XMPNamespaces.h>

#include <gtest/gtest.h>

#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp {
namespace {

class XMPNamespaces : public ::testing::Test {
protected:
    ~XMPNamespaces() override { ForgetRegisteredNamespaces(); }
};

TEST_F(XMPNamespaces, WellKnown)
{
    EXPECT_EQ(NamespaceOfPrefix("dc"), "http://purl.org/dc/elements/1.1/");
    EXPECT_EQ(NamespaceOfPrefix("GPano"), "http://ns.google.com/photos/1.0/panorama/");
    EXPECT_EQ(NamespaceOfPrefix("xmpidq"), "http://ns.adobe.com/xmp/Identifier/qual/1.0/");
    EXPECT_EQ(NamespaceOfPrefix("DC"), "");
    EXPECT_EQ(PrefixOfNamespace("http://ns.adobe.com/xap/1.0/rights/"), "xmpRights");
    EXPECT_EQ(PrefixOfNamespace("http://ns.adobe.com/xap/1.0"), "");
}

TEST_F(XMPNamespaces, Registered)
{
    EXPECT_EQ(RegisterNamespace("ex", "http://ex/"), "ex");
    EXPECT_EQ(RegisterNamespace("ex", "http://ex/"), "ex");
    EXPECT_EQ(NamespaceOfPrefix("ex"), "http://ex/");
    EXPECT_EQ(PrefixOfNamespace("http://ex/"), "ex");
    // A second prefix is understood, the first one is printed.
    EXPECT_EQ(RegisterNamespace("other", "http://ex/"), "ex");
    EXPECT_EQ(NamespaceOfPrefix("other"), "http://ex/");
    EXPECT_EQ(RegisterNamespace("d", "http://purl.org/dc/elements/1.1/"), "dc");
    EXPECT_EQ(NamespaceOfPrefix("d"), "http://purl.org/dc/elements/1.1/");
    // Prefixes that are taken.
    EXPECT_EQ(RegisterNamespace("dc", "http://x/"), "dc_1");
    EXPECT_EQ(RegisterNamespace("dc", "http://y/"), "dc_2");
    EXPECT_EQ(NamespaceOfPrefix("dc_2"), "http://y/");
    ForgetRegisteredNamespaces();
    EXPECT_EQ(NamespaceOfPrefix("ex"), "");
    EXPECT_EQ(PrefixOfNamespace("http://ex/"), "");
}

TEST_F(XMPNamespaces, Refused)
{
    using testing::CodeThrownBy;
    for (const char* prefix : {"", "a b", "1a", "a:b", "xml", "xmlns", "\xFF"}) {
        SCOPED_TRACE(prefix);
        EXPECT_EQ(CodeThrownBy([&] { RegisterNamespace(prefix, "http://ex/"); }), kKivXmpBadValue);
    }
    EXPECT_EQ(CodeThrownBy([] { RegisterNamespace("ex", ""); }), kKivXmpBadValue);
    EXPECT_EQ(CodeThrownBy([] { RegisterNamespace("ex", "\x01"); }), kKivXmpBadValue);
}

TEST_F(XMPNamespaces, UsedByObjects)
{
    RegisterNamespace("mine", "http://mine/");
    const auto meta =
        testing::Parse(testing::InDescription("<p:a xmlns:p=\"http://mine/\">1</p:a>"));
    EXPECT_EQ(testing::Dump(*meta), "mine:a simple 1\n");
    EXPECT_NE(meta->Find("mine:a"), nullptr);
    EXPECT_NE(meta->Find("p:a"), nullptr);
    const auto created = __XMPMeta__::Create();
    created->SetText("{http://mine/}a", "1");
    EXPECT_NE(created->Serialize().find("<mine:a>1</mine:a>"), std::string::npos);
}

}  // namespace
}  // namespace kivxmp
