#include "svgloom/src/NumberWindow.h"

#include "svgloom/src/NumberReader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>

namespace SVGLoom {
namespace {

/// Reads all numbers of a text both ways, from an exact-size block, and compares bits and places.
void ExpectLikeReader(std::string_view text)
{
    const auto block = std::make_unique<char[]>(text.size());
    std::memcpy(block.get(), text.data(), text.size());
    const char* current = block.get();
    const char* const end = current + text.size();
    NumberWindow window(current, end);
    NumberWindow::Place at = NumberWindow::First();
    for (;;) {
        float expected = 0;
        SkipSeparator(current, end);
        const bool reads = ReadNumber(current, end, expected);
        float number[1] = {};
        const NumberWindow::Outcome outcome = window.Read(at, number);
        at = outcome.next;
        ASSERT_EQ(window.PointerTo(at) - block.get(), current - block.get()) << text;
        ASSERT_EQ(reads, outcome.isRead) << text;
        if (!reads) {
            return;
        }
        ASSERT_EQ(std::bit_cast<std::uint32_t>(number[0]), std::bit_cast<std::uint32_t>(expected))
            << text;
    }
}

TEST(NumberWindow, ReadsAsTheNumberReader)
{
    for (const char* const text :
         {"",
          " ",
          ",",
          "-",
          ".",
          "-.",
          "5.",
          "5.x",
          "+5",
          "5e2",
          "5e",
          "1.5e-3 2",
          "1em",
          "-0",
          "0.1 0.12 0.123 0.1234 0.12345",
          "1 12 123 1234 12345 1234567 12345678 123456789",
          "1.5.5-5-.5",
          "1 , 2",
          "1,,2",
          "1\n2\t3\r4",
          "16777217.5 99999999999999999999999",
          "0.00000000000000000000000000000000000000000000000000000000000000000000001 2",
          "1e39 2",
          "--1",
          "- 1",
          "1-",
          "9.999999 999.999 9999.9999"}) {
        ExpectLikeReader(text);
    }
}

TEST(NumberWindow, EveryPlaceInAWindow)
{
    for (std::size_t before = 0; before < 140; ++before) {
        for (const char* const text : {"1", "-12.345", " -.5.25,7", ",-1234.5678e1 3", "1.", "-"}) {
            std::string all;
            while (all.size() < before) {
                all += before - all.size() == 1 ? " " : "7 ";
            }
            ExpectLikeReader(all + text);
            ExpectLikeReader(all + text +
                             " 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26");
        }
    }
}

TEST(NumberWindow, RandomTexts)
{
    constexpr int kTexts = 20000;
    // Mostly digits, so that many numbers are read before a text stops.
    constexpr std::string_view kCharacters =
        "01234567890123456789012345678901234567.... -- ,,e+\nx";
    std::mt19937 random(20);
    for (int i = 0; i < kTexts; ++i) {
        std::string text(random() % 200, '\0');
        for (char& c : text) {
            c = kCharacters[random() % kCharacters.size()];
        }
        ExpectLikeReader(text);
    }
    for (int i = 0; i < kTexts; ++i) {
        std::string text;
        for (int count = 0; count < 12; ++count) {
            text += random() % 2 == 0 ? "-" : " ";
            const std::string digits = std::to_string(random());
            text += digits.substr(0, random() % 5) + "." + digits.substr(0, 1 + random() % 5);
        }
        ExpectLikeReader(text);
    }
}

TEST(NumberWindow, Flags)
{
    struct Row {
        const char* text;
        int flags;  // how many can be read
        std::ptrdiff_t stop;
    };
    for (const Row& row : {Row{"01", 2, 2}, Row{"0 1,1", 3, 5}, Row{" , 12", 1, 4},
                           Row{"1 , , 1", 1, 4}, Row{"1\n0", 2, 3}, Row{"", 0, 0}}) {
        const std::string_view text = row.text;
        NumberWindow window(text.data(), text.data() + text.size());
        NumberWindow::Place at = NumberWindow::First();
        bool flag = false;
        int count = 0;
        while (window.ReadFlag(at, flag)) {
            ++count;
        }
        EXPECT_EQ(count, row.flags) << text;
        EXPECT_EQ(window.PointerTo(at) - text.data(), row.stop) << text;
    }
    const std::string many(200, '1');
    NumberWindow window(many.data(), many.data() + many.size());
    NumberWindow::Place at = NumberWindow::First();
    bool flag = false;
    for (std::size_t i = 0; i < many.size(); ++i) {
        ASSERT_TRUE(window.ReadFlag(at, flag) && flag) << i;
    }
    EXPECT_FALSE(window.ReadFlag(at, flag));
}

TEST(NumberWindow, LooksAtBytes)
{
    using namespace std::string_literals;
    const std::string text = std::string(100, ' ') + "M\0z"s;
    NumberWindow window(text.data(), text.data() + text.size());
    NumberWindow::Place at = NumberWindow::First();
    char c = 'x';
    ASSERT_TRUE(window.LookBehindSpace(at, c));
    EXPECT_EQ(c, 'M');
    EXPECT_EQ(window.PointerTo(at) - text.data(), 100);
    at = NumberWindow::Behind(at);
    ASSERT_TRUE(window.Look(at, c));  // a zero is a byte like others
    EXPECT_EQ(c, '\0');
    at = NumberWindow::Behind(at);
    ASSERT_TRUE(window.Look(at, c));
    EXPECT_EQ(c, 'z');
    at = NumberWindow::Behind(at);
    EXPECT_FALSE(window.Look(at, c));
}

}  // namespace
}  // namespace SVGLoom
