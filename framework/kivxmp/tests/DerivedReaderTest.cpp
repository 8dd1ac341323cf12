#include "framework/kivxmp/src/DerivedReader.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <kivxmp/XMPAccess.h>

namespace kivxmp {
namespace {

using namespace std::string_literals;

constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";
constexpr char kExif[] = "http://ns.adobe.com/exif/1.0/";

DerivedSource Tag(const std::string& name)
{
    return {DerivedFrom::kExif, name};
}

struct AddCase {
    const char* name;
    std::function<bool(DerivedSink&)> add;
    bool want;
    const char* path;
    const char* json;
};

TEST(DerivedSink, EachForm)
{
    const std::vector<std::string> words{"sea", "sky"};
    const std::vector<std::string> bad{"sea", "\x01"};
    const std::vector<LanguageText> languages{{"x-default", "Harbour"}, {"de", "Hafen"}};
    const std::vector<std::pair<std::string, std::string>> fields{{"Fired", "True"}, {"Mode", "1"}};
    const std::vector<std::pair<std::string, std::string>> badFields{{"Fired", "True"},
                                                                     {"no name", "1"}};
    const AddCase rows[] = {
        {"text", [](auto& sink) { return sink.AddText(kExif, "FNumber", "28/10", Tag("t")); }, true,
         "exif:FNumber", R"("28/10")"},
        {"bag",
         [&](auto& sink) { return sink.AddList(kDc, "subject", NodeForm::kBag, words, Tag("t")); },
         true, "dc:subject", R"(["sea","sky"])"},
        {"languages",
         [&](auto& sink) { return sink.AddLanguages(kDc, "title", languages, Tag("t")); }, true,
         "dc:title", R"({"x-default":"Harbour","de":"Hafen"})"},
        {"fields", [&](auto& sink) { return sink.AddFields(kExif, "Flash", fields, Tag("t")); },
         true, "exif:Flash", R"({"exif:Fired":"True","exif:Mode":"1"})"},
        // What cannot stand in a packet is left out whole.
        {"control character",
         [](auto& sink) { return sink.AddText(kDc, "format", "a\x01z", Tag("t")); }, false,
         "dc:format", "null"},
        {"NUL", [](auto& sink) { return sink.AddText(kDc, "format", "a\0z"s, Tag("t")); }, false,
         "dc:format", "null"},
        {"broken UTF-8", [](auto& sink) { return sink.AddText(kDc, "format", "\xE4", Tag("t")); },
         false, "dc:format", "null"},
        {"one bad item",
         [&](auto& sink) { return sink.AddList(kDc, "subject", NodeForm::kBag, bad, Tag("t")); },
         false, "dc:subject", "null"},
        {"one bad field",
         [&](auto& sink) { return sink.AddFields(kExif, "Flash", badFields, Tag("t")); }, false,
         "exif:Flash", "null"},
        {"no name", [](auto& sink) { return sink.AddText(kDc, "", "a", Tag("t")); }, false,
         "dc:format", "null"},
    };
    for (const AddCase& row : rows) {
        SCOPED_TRACE(row.name);
        DerivedSink sink;
        EXPECT_EQ(row.add(sink), row.want);
        const __XMPMeta__& properties = sink.Properties();
        EXPECT_EQ(ToJson(properties, properties.Find(row.path)), row.json);
        EXPECT_EQ(properties.PropertyCount(), row.want ? 1u : 0u);
        const Path path = properties.ParsePath(row.path);
        const DerivedSource* const source = sink.FindSource(path[0].uri, path[0].local);
        ASSERT_EQ(source != nullptr, row.want);
        EXPECT_TRUE(source == nullptr || *source == Tag("t"));
    }
}

TEST(DerivedSink, TheFirstSourceCounts)
{
    DerivedSink sink;
    EXPECT_FALSE(sink.AddText(kDc, "format", "\x01", Tag("broken")));
    EXPECT_TRUE(sink.AddText(kDc, "format", "first", Tag("first")));
    EXPECT_FALSE(sink.AddText(kDc, "format", "second", {DerivedFrom::kIim, "second"}));
    const LanguageText third[] = {{"x-default", "third"}};
    EXPECT_FALSE(sink.AddLanguages(kDc, "format", third, Tag("third")));
    EXPECT_EQ(TextOf(sink.Properties().Find("dc:format")), "first");
    ASSERT_NE(sink.FindSource(kDc, "format"), nullptr);
    EXPECT_EQ(sink.FindSource(kDc, "format")->detail, "first");
    EXPECT_EQ(sink.FindSource(kDc, "title"), nullptr);
}

}  // namespace
}  // namespace kivxmp
