#include "framework/kivmetadata/src/ViewReader.h"

#include "framework/kivmetadata/tests/Dump.h"

namespace kivmetadata {

namespace {

class ViewReaderTest : public ReaderTest {
protected:
    static std::string Read(std::string_view text)
    {
        return TextOrError([&] { return Dump(*ReadView(text, "v.xml", "o", PlainTexts())); });
    }
};

struct Row {
    const char* text;
    const char* want;
};

constexpr Row kRows[] = {
    {"<view name='v' label='L'/>", "o/v \"L\"\n"},
    {"<view name='v' label='L' icon='list' camera='yes'/>", "o/v \"L\" icon=list camera\n"},
    {"<view name='v' label='L' camera='no'/>", "o/v \"L\"\n"},
    {"<view name='v' label='L'><item namespace='n' property='p'/></view>",
     "o/v \"L\"\n  [] {n}p\n"},
    {"<view name='v' label='L'><item namespace='n' property='p' shares-row='yes'/>"
     "<item namespace='m' property='q' shares-row='no'/></view>",
     "o/v \"L\"\n  [] {n}p + {m}q\n"},
    // Items by themselves form groups without a heading, in front of, between and behind others.
    {"<view name='v' label='L'><item namespace='n' property='a'/><item namespace='n' property='b'/>"
     "<group heading='G'><item namespace='n' property='c'/></group>"
     "<item namespace='n' property='d'/><group/>"
     "<group heading='H'><item namespace='n' property='e'/><item namespace='n' property='f'/>"
     "</group><item namespace='n' property='g'/></view>",
     "o/v \"L\"\n  [] {n}a {n}b\n  [G] {n}c\n  [] {n}d\n  []\n  [H] {n}e {n}f\n  [] {n}g\n"},
    // One property may be shown twice.
    {"<view name='v' label='L'><item namespace='n' property='p'/>"
     "<item namespace='n' property='p'/></view>",
     "o/v \"L\"\n  [] {n}p {n}p\n"},
    // Needed ones.
    {"<view label='L'/>", "v.xml:1: <view>: needs the attribute 'name'"},
    {"<view name='v'/>", "v.xml:1: <view>: needs the attribute 'label'"},
    {"<view name='v' label=''/>", "v.xml:1: <view>: needs the attribute 'label'"},
    {"<view name='v' label='L'>\n<item property='p'/></view>",
     "v.xml:2: <item>: needs the attribute 'namespace'"},
    {"<view name='v' label='L'>\n<item namespace='n' property=''/></view>",
     "v.xml:2: <item>: needs the attribute 'property'"},
    // Misspelt ones.
    {"<view name='v' label='L' owner='me'/>", "v.xml:1: <view>: unknown attribute 'owner'"},
    {"<view name='v' label='L' camera='on'/>", "v.xml:1: <view>: 'camera' is neither yes nor no"},
    {"<view name='v' label='L'>\n<item namespace='n' name='p'/></view>",
     "v.xml:2: <item>: unknown attribute 'name'"},
    {"<view name='v' label='L'>\n<item namespace='n' property='p' shares-row='true'/></view>",
     "v.xml:2: <item>: 'shares-row' is neither yes nor no"},
    {"<view name='v' label='L'>\n<group label='G'/></view>",
     "v.xml:2: <group>: unknown attribute 'label'"},
    // What does not belong there.
    {"<schema namespace='n' prefix='p'/>", "v.xml:1: <schema>: the root element must be <view>"},
    {"<view name='v' label='L'>\n<property name='p'/></view>",
     "v.xml:2: <property>: does not belong here"},
    {"<view name='v' label='L'><group>\n<group/></group></view>",
     "v.xml:2: <group>: does not belong here"},
    {"<view name='v' label='L'><item namespace='n' property='p'>\n<item/></item></view>",
     "v.xml:2: <item>: does not belong here"},
    {"<view name='v' label='L'>dc:title</view>", "v.xml:1: <view>: has text, which would be lost"},
    {"<view name='v' label='L'>\n<group>G</group></view>",
     "v.xml:2: <group>: has text, which would be lost"},
    {"<view name='v' label='L'>\n<item namespace='n' property='p'>P</item></view>",
     "v.xml:2: <item>: has text, which would be lost"},
    {"<view name='v' label='L'>", "v.xml:1:26: no element found"},
};

TEST_F(ViewReaderTest, Cases)
{
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Read(row.text), row.want);
    }
}

}  // namespace

}  // namespace kivmetadata
