#include "tools/svgloom/check/Rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

namespace svgloom {
namespace {

std::string ReadAll(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string_view NameOf(RuleSeverity severity)
{
    return severity == RuleSeverity::kError ? "error" : "warning";
}

TEST(Rules, IdsAreDifferentWords)
{
    std::set<std::string_view> ids;
    for (const RuleRow& row : RuleTable()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id;
        EXPECT_EQ(row.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos)
            << row.id;
        EXPECT_EQ(FindRule(row.id), &row);
        EXPECT_EQ(&RowOf(row.rule), &row);
        EXPECT_FALSE(row.message.empty()) << row.id;
    }
    EXPECT_EQ(FindRule("no-such-rule"), nullptr);
}

TEST(Rules, EachStandsInTheDocument)
{
    const std::string document = ReadAll(KIV_ARTWORK_CHECK_DOCUMENT);
    for (const RuleRow& row : RuleTable()) {
        const std::string line = "\n| `" + std::string(row.id) + "` | " +
                                 std::string(NameOf(row.severity)) + " | " + std::string(row.when) +
                                 " |";
        EXPECT_NE(document.find(line), std::string::npos) << line;
    }
    // And no others do.
    constexpr std::string_view kRow = "\n| `";
    std::size_t rows = 0;
    for (std::size_t at = document.find(kRow); at != std::string::npos;
         at = document.find(kRow, at + 1)) {
        const std::string_view rest = std::string_view(document).substr(at + kRow.size());
        const std::string_view id = rest.substr(0, rest.find('`'));
        if (!id.starts_with("--")) {  // an option
            ++rows;
            EXPECT_NE(FindRule(id), nullptr) << id;
        }
    }
    EXPECT_EQ(rows, RuleTable().size());
}

TEST(Rules, Messages)
{
    EXPECT_EQ(MessageOf(Rule::kLengthInvalid, "x", "%1"),
              "x=\"%1\" is no length and does not count: write a number");
    EXPECT_EQ(MessageOf(Rule::kNumberPercent, "opacity", "5%"),
              "opacity: the percentage \"5%\" does not count: write it as a number, 50% as 0.5");
}

}  // namespace
}  // namespace svgloom
