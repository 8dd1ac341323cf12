#include "framework/kivmetadataui/src/JsonTexts.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

struct JsonCase {
    const char* json;
    const char* want;  // the texts, each behind "|"; "-" for no array of texts
};

constexpr JsonCase kJsonCases[] = {
    {"[]", ""},
    {" [ ] ", ""},
    {"[\"a\"]", "|a"},
    {"[\"a\", \"b c\" ,\"\"]", "|a|b c|"},
    {"[\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"]", "|\"\\/\b\f\n\r\t"},
    {"[\"\\u00e4\\u20AC\"]", "|\xC3\xA4\xE2\x82\xAC"},
    {"[\"\\ud83d\\ude00x\"]", "|\xF0\x9F\x98\x80x"},
    {"[\"\\ud83dx\"]", "|\xEF\xBF\xBDx"},
    {"[\"\xC3\xA4\"]", "|\xC3\xA4"},
    {"", "-"},
    {"\"a\"", "-"},
    {"[", "-"},
    {"[\"a\"", "-"},
    {"[\"a\",]", "-"},
    {"[,\"a\"]", "-"},
    {"[\"a\" \"b\"]", "-"},
    {"[\"a\"]x", "-"},
    {"[1]", "-"},
    {"[\"a", "-"},
    {"[\"\\", "-"},
    {"[\"\\x\"]", "-"},
    {"[\"\\u12\"]", "-"},
    {"[\"\\u12g4\"]", "-"},
    {"[\"a\nb\"]", "-"},
    {"[[\"a\"]]", "-"},
};

TEST(JsonTexts, Cases)
{
    for (const JsonCase& row : kJsonCases) {
        SCOPED_TRACE(row.json);
        std::vector<std::string> texts{"untouched"};
        std::string got;
        if (ReadJsonTexts(row.json, texts)) {
            for (const std::string& text : texts) {
                got += "|" + text;
            }
        } else {
            EXPECT_EQ(texts, std::vector<std::string>{"untouched"});
            got = "-";
        }
        EXPECT_EQ(got, row.want);
    }
}

}  // namespace
}  // namespace kivmetadataui
