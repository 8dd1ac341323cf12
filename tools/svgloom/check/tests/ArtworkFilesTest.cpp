// The check over artwork of this repository: the dialog's icons are clean, and every difference
// that the page for artists shows is found.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tools/svgloom/check/tests/CheckSupport.h"

namespace svgloom {
namespace {

using testing_support::Places;

std::string ReadAll(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ArtworkFiles, IconsAreClean)
{
    int icons = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KIV_ARTWORK_DIR)) {
        if (entry.path().extension() == ".svg") {
            ++icons;
            EXPECT_EQ(Places(ReadAll(entry.path())), "") << entry.path();
        }
    }
    EXPECT_GT(icons, 0);
}

struct Example {
    std::string_view title;
    std::string text;
};

/// The pieces of SVG under the document's differences, as whole files.
std::vector<Example> Examples(std::string_view document)
{
    constexpr std::string_view kTitle = "\n#### ";
    constexpr std::string_view kOpen = "\n```svg\n";
    std::vector<Example> examples;
    std::size_t at = document.find("\n## Differences");
    const std::size_t last = document.find("\n## ", at + 1);
    while ((at = document.find(kTitle, at)) < last) {
        at += kTitle.size();
        const std::string_view title = document.substr(at, document.find('\n', at) - at);
        const std::size_t start = document.find(kOpen, at) + kOpen.size();
        std::string text(document.substr(start, document.find("\n```", start) - start));
        if (text.find("<svg") == std::string::npos) {
            text = "<svg viewBox=\"0 0 24 24\">" + text + "</svg>";
        }
        examples.push_back({title, text});
    }
    return examples;
}

TEST(ArtworkFiles, EachDifferenceIsFound)
{
    // It shows in the output's shape only.
    constexpr std::string_view kNotInTheFile = "The picture keeps to the upper left";
    const std::string document = ReadAll(KIV_ARTWORK_DOCUMENT);
    const std::vector<Example> examples = Examples(document);
    EXPECT_GT(examples.size(), 1U);
    for (const Example& each : examples) {
        EXPECT_EQ(Places(each.text).empty(), each.title == kNotInTheFile) << each.title;
    }
}

}  // namespace
}  // namespace svgloom
