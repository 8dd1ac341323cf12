#include "framework/kivmetadata/src/SchemaReader.h"

#include "framework/kivmetadata/tests/Dump.h"

namespace kivmetadata {

namespace {

class SchemaReaderTest : public ReaderTest {
protected:
    static std::string Read(std::string_view text)
    {
        return TextOrError([&] { return Dump(*ReadSchema(text, "s.xml", PlainTexts())); });
    }

    /// A schema with these properties, which begin on its second line.
    static std::string ReadProperties(const std::string& properties)
    {
        const std::string head = "p http://p/ \"\"\n";
        const std::string text =
            Read("<schema namespace='http://p/' prefix='p'>\n" + properties + "</schema>");
        return text.starts_with(head) ? text.substr(head.size()) : text;
    }
};

struct Row {
    const char* text;
    const char* want;
};

TEST_F(SchemaReaderTest, Schemas)
{
    constexpr Row kRows[] = {
        {"<schema namespace='http://p/' prefix='p'/>", "p http://p/ \"\"\n"},
        {"<schema namespace='http://p/' prefix='p-1.x_' label='L'/>", "p-1.x_ http://p/ \"L\"\n"},
        {"<schema namespace='http://p/' prefix='\xC3\xA9'/>", "\xC3\xA9 http://p/ \"\"\n"},
        {"<schema prefix='p'/>", "s.xml:1: <schema>: needs the attribute 'namespace'"},
        {"<schema namespace='' prefix='p'/>", "s.xml:1: <schema>: needs the attribute 'namespace'"},
        {"<schema namespace='http://p/'/>", "s.xml:1: <schema>: needs the attribute 'prefix'"},
        {"<schema namespace='http://p/' prefix='p' lable='L'/>",
         "s.xml:1: <schema>: unknown attribute 'lable'"},
        {"<view name='v'/>", "s.xml:1: <view>: the root element must be <schema>"},
        {"<schema namespace='http://p/' prefix='p'>\n<item/></schema>",
         "s.xml:2: <item>: does not belong here"},
        {"<schema namespace='http://p/' prefix='p'>text</schema>",
         "s.xml:1: <schema>: has text, which would be lost"},
        {"<schema", "s.xml:1:1: unclosed token"},
        // A prefix becomes a part of names in packets.
        {"<schema namespace='http://p/' prefix='p:'/>",
         "s.xml:1: <schema>: 'p:' is no XML name without colon"},
        {"<schema namespace='http://p/' prefix='my prefix'/>",
         "s.xml:1: <schema>: 'my prefix' is no XML name without colon"},
        {"<schema namespace='http://p/' prefix='1p'/>",
         "s.xml:1: <schema>: '1p' is no XML name without colon"},
        {"<schema namespace='http://p/' prefix='xmlns'/>",
         "s.xml:1: <schema>: the prefix 'xmlns' is reserved"},
        {"<schema namespace='http://p/' prefix='xml'/>",
         "s.xml:1: <schema>: the prefix 'xml' is reserved"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Read(row.text), row.want);
    }
}

TEST_F(SchemaReaderTest, Types)
{
    constexpr Row kRows[] = {
        {"<property name='N' label='L'/>", "  N text \"L\"\n"},
        {"<property name='N' label='L' type='text'/>", "  N text \"L\"\n"},
        {"<property name='N' label='L' type='long-text'/>", "  N long-text \"L\"\n"},
        {"<property name='N' label='L' type='language-alternative'/>",
         "  N language-alternative \"L\"\n"},
        {"<property name='N' label='L' type='bag'/>", "  N bag \"L\"\n"},
        {"<property name='N' label='L' type='sequence'/>", "  N sequence \"L\"\n"},
        {"<property name='N' label='L' type='choice'><choice value='v' label='C'/></property>",
         "  N choice \"L\"\n    v=\"C\"\n"},
        {"<property name='N' label='L' type='date'/>", "  N date \"L\"\n"},
        {"<property name='N' label='L' type='integer'/>", "  N integer \"L\"\n"},
        {"<property name='N' label='L' type='number'/>", "  N number \"L\"\n"},
        {"<property name='N' label='L' type='rational'/>", "  N rational \"L\"\n"},
        {"<property name='N' label='L' type='boolean'/>", "  N boolean \"L\"\n"},
        {"<property name='N' label='L' type='rating'/>", "  N rating \"L\"\n"},
        {"<property name='N' label='L' type='uri'/>", "  N uri \"L\"\n"},
        {"<property name='N' label='L' type='structure' members-namespace='m'/>",
         "  N structure \"L\" of m\n"},
        {"<property name='N' label='L' type='structure-list' members-namespace='m'/>",
         "  N structure-list \"L\" of m\n"},
        {"<property name='N' label='L' type='Text'/>", "s.xml:2: <property>: unknown type 'Text'"},
        {"<property name='N' label='L' type=''/>", "s.xml:2: <property>: unknown type ''"},
        {"<property name='N' label='L' type='string'/>",
         "s.xml:2: <property>: unknown type 'string'"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ReadProperties(row.text), row.want);
    }
}

TEST_F(SchemaReaderTest, Attributes)
{
    constexpr Row kRows[] = {
        {"<property name='N' label='L' description='D' placeholder='P' read-only='yes'/>",
         "  N text \"L\" hint=\"D\" placeholder=\"P\" read-only\n"},
        {"<property name='N' label='L' read-only='no'/>", "  N text \"L\"\n"},
        {"<property name='N' label='L' type='integer' unit='U' minimum='-1' maximum='8'/>",
         "  N integer \"L\" unit=\"U\" -1..8\n"},
        {"<property name='N' label='L' type='number' minimum='0.5' maximum='1.5'/>",
         "  N number \"L\" 0.5..1.5\n"},
        {"<property name='N' label='L' type='rational' minimum='0' maximum='2'/>",
         "  N rational \"L\" 0..2\n"},
        {"<property name='N' label='L' type='choice' closed='yes'>\n"
         "<choice value='1' label='One'/><choice value='2' label='Two'/></property>",
         "  N choice \"L\" closed\n    1=\"One\"\n    2=\"Two\"\n"},
        {"<property name='A' label='L'/><property name='B' label='L'/>",
         "  A text \"L\"\n  B text \"L\"\n"},
        // Needed ones.
        {"<property label='L'/>", "s.xml:2: <property>: needs the attribute 'name'"},
        {"<property name='N'/>", "s.xml:2: <property>: needs the attribute 'label'"},
        {"<property name='N' label=''/>", "s.xml:2: <property>: needs the attribute 'label'"},
        {"<property name='N' label='L' type='structure'/>",
         "s.xml:2: <property>: needs the attribute 'members-namespace'"},
        {"<property name='N' label='L' type='choice'/>",
         "s.xml:2: <property>: a choice needs at least one <choice>"},
        {"<property name='N' label='L' type='choice'>\n<choice label='C'/></property>",
         "s.xml:3: <choice>: needs the attribute 'value'"},
        {"<property name='N' label='L' type='choice'>\n<choice value='v'/></property>",
         "s.xml:3: <choice>: needs the attribute 'label'"},
        // Misspelt ones, and those of another type, would be lost silently.
        {"<property name='N' label='L' readonly='yes'/>",
         "s.xml:2: <property>: unknown attribute 'readonly'"},
        {"<property name='N' label='L' Type='bag'/>",
         "s.xml:2: <property>: unknown attribute 'Type'"},
        {"<property name='N' label='L' read-only='true'/>",
         "s.xml:2: <property>: 'read-only' is neither yes nor no"},
        {"<property name='N' label='L' type='choice' closed='1'>"
         "<choice value='v' label='C'/></property>",
         "s.xml:2: <property>: 'closed' is neither yes nor no"},
        {"<property name='N' label='L' type='choice'>\n"
         "<choice value='v' label='C' default='yes'/></property>",
         "s.xml:3: <choice>: unknown attribute 'default'"},
        {"<property name='N' label='L' closed='yes'/>",
         "s.xml:2: <property>: 'closed' does not belong to a property of this type"},
        {"<property name='N' label='L' unit='mm'/>",
         "s.xml:2: <property>: 'unit' does not belong to a property of this type"},
        {"<property name='N' label='L' unit-id='mm'/>",
         "s.xml:2: <property>: 'unit-id' does not belong to a property of this type"},
        {"<property name='N' label='L' type='rating' minimum='1' maximum='3'/>",
         "s.xml:2: <property>: 'minimum' does not belong to a property of this type"},
        {"<property name='N' label='L' type='date' maximum='3'/>",
         "s.xml:2: <property>: 'maximum' does not belong to a property of this type"},
        {"<property name='N' label='L' members-namespace='m'/>",
         "s.xml:2: <property>: 'members-namespace' does not belong to a property of this type"},
        // Limits come in pairs: 0 and 0 stand for none.
        {"<property name='N' label='L' type='integer' minimum='1'/>",
         "s.xml:2: <property>: needs both 'minimum' and 'maximum', or neither"},
        {"<property name='N' label='L' type='integer' maximum='1'/>",
         "s.xml:2: <property>: needs both 'minimum' and 'maximum', or neither"},
        {"<property name='N' label='L' type='integer' minimum='2' maximum='1'/>",
         "s.xml:2: <property>: 'minimum' is not below 'maximum'"},
        {"<property name='N' label='L' type='integer' minimum='0' maximum='0'/>",
         "s.xml:2: <property>: 'minimum' is not below 'maximum'"},
        {"<property name='N' label='L' type='integer' minimum='1' maximum='many'/>",
         "s.xml:2: <property>: 'maximum' is not a number"},
        // A name becomes a name in packets.
        {"<property name='a b' label='L'/>",
         "s.xml:2: <property>: 'a b' is no XML name without colon"},
        {"<property name='p:N' label='L'/>",
         "s.xml:2: <property>: 'p:N' is no XML name without colon"},
        // The second one could never be reached.
        {"<property name='N' label='L'/>\n<property name='N' label='M'/>",
         "s.xml:3: <property>: 'N' is there already"},
        {"<property name='N' label='L' type='choice'>\n<choice value='v' label='C'/>\n"
         "<choice value='v' label='D'/></property>",
         "s.xml:4: <choice>: 'v' is there already"},
        // Children.
        {"<property name='N' label='L'>\n<choice value='v' label='C'/></property>",
         "s.xml:3: <choice>: does not belong to a property of this type"},
        {"<property name='N' label='L'>\n<property name='M' label='L'/></property>",
         "s.xml:3: <property>: does not belong to a property of this type"},
        {"<property name='N' label='L' type='structure' members-namespace='m'>\n"
         "<choice value='v' label='C'/></property>",
         "s.xml:3: <choice>: does not belong to a property of this type"},
        {"<property name='N' label='L'>\n<member/></property>",
         "s.xml:3: <member>: does not belong here"},
        {"<property name='N' label='L'>text</property>",
         "s.xml:2: <property>: has text, which would be lost"},
        {"<property name='N' label='L' type='choice'>\n<choice value='v' label='C'>C</choice>"
         "</property>",
         "s.xml:3: <choice>: has text, which would be lost"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ReadProperties(row.text), row.want);
    }
}

TEST_F(SchemaReaderTest, Structures)
{
    EXPECT_EQ(ReadProperties("<property name='S' label='L' type='structure-list' "
                             "members-namespace='http://m/'>\n"
                             "<property name='A' label='a' type='date' read-only='yes'/>\n"
                             "<property name='B' label='b' type='structure' "
                             "members-namespace='http://n/'><property name='A' label='c'/>"
                             "</property></property>"),
              "  S structure-list \"L\" of http://m/\n"
              "    A date \"a\" read-only\n"
              "    B structure \"b\" of http://n/\n"
              "      A text \"c\"\n");
    EXPECT_EQ(ReadProperties("<property name='S' label='L' type='structure' "
                             "members-namespace='m'>\n<property name='A' label='a'/>\n"
                             "<property name='A' label='b'/></property>"),
              "s.xml:4: <property>: 'A' is there already");
}

TEST_F(SchemaReaderTest, StructuresNestToALimit)
{
    const auto nested = [](int levels) {
        std::string text;
        for (int i = 0; i < levels; ++i) {
            text += "<property name='S' label='L' type='structure' members-namespace='m'>\n";
        }
        text += "<property name='T' label='L'/>";
        for (int i = 0; i < levels; ++i) {
            text += "</property>";
        }
        return text;
    };
    EXPECT_NE(ReadProperties(nested(8)).find("T text"), std::string::npos);
    EXPECT_EQ(ReadProperties(nested(9)),
              "s.xml:11: <property>: structures are nested deeper than 8");
}

TEST_F(SchemaReaderTest, TextsAreAskedForByAttribute)
{
    class Asked : public TextSource {
    public:
        kivcore::UString Text(const Element& element, const std::string& name) const override
        {
            return kivcore::string::UTF8to16(element.name + '.' + name);
        }
    };
    EXPECT_EQ(Dump(*ReadSchema("<schema namespace='n' prefix='p'>"
                               "<property name='N' type='number' label='l'/>"
                               "<property name='C' type='choice' label='l'>"
                               "<choice value='v' label='l'/></property></schema>",
                               "s.xml", Asked())),
              "p n \"schema.label\"\n"
              "  N number \"property.label\" hint=\"property.description\" "
              "placeholder=\"property.placeholder\" unit=\"property.unit\"\n"
              "  C choice \"property.label\" hint=\"property.description\" "
              "placeholder=\"property.placeholder\" unit=\"property.unit\"\n"
              "    v=\"choice.label\"\n");
}

}  // namespace

}  // namespace kivmetadata
