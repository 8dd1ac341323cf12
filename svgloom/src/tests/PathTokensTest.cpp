// Path data is read in several ways, 16 or 64 bytes at a time or step by step: all give the same
// calls, bit by bit.

#include "svgloom/src/PathTokens.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/NumberReader.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"
#include "svgloom/src/tests/TokenWidths.h"

namespace SVGLoom {
namespace {

using testing_support::AreTokensAlike;
using testing_support::ExactText;

/// Keeps kinds and coordinates as bytes.
class BytesPath : public Path {
public:
    void AddRect(float, float, float, float) override {}
    void AddRoundedRect(float, float, float, float, float, float) override {}
    void AddEllipse(float, float, float, float) override {}
    void MoveTo(float x, float y) override { Add('M', {x, y}); }
    void LineTo(float x, float y) override { Add('L', {x, y}); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Add('C', {x1, y1, x2, y2, x, y});
    }
    void QuadTo(float cx, float cy, float x, float y) override { Add('Q', {cx, cy, x, y}); }
    void ClosePath() override { Add('Z', {}); }

    std::vector<std::uint32_t> written;

private:
    void Add(char kind, std::initializer_list<float> coordinates)
    {
        written.push_back(static_cast<std::uint32_t>(kind));
        for (const float coordinate : coordinates) {
            // Which NaN comes out of a sum of two is the compiler's choice.
            constexpr std::uint32_t kNotANumber = 0x7FC00000;
            written.push_back(coordinate != coordinate ? kNotANumber
                                                       : std::bit_cast<std::uint32_t>(coordinate));
        }
    }
};

/// With notes, all is read step by step.
void ExpectLikeSteps(std::string_view text)
{
    const ExactText exact(text);
    BytesPath quick;
    SVGStringParser::ParsePath(exact.View(), quick);
    BytesPath stepwise;
    PathNotes notes;
    SVGStringParser::ParsePath(exact.View(), stepwise, &notes);
    ASSERT_EQ(quick.written, stepwise.written) << text;
    ASSERT_TRUE(AreTokensAlike(exact.View())) << text;
}

/// Reads `numbers`, with a space before each, as a path.
void ExpectNumbersLikeSteps(const std::string& numbers)
{
    BytesPath path;
    const std::string text = "M0 0H" + numbers;
    SVGStringParser::ParsePath(text, path);
    ASSERT_TRUE(AreTokensAlike(text));
    const char* current = numbers.data();
    const char* const end = current + numbers.size();
    for (std::size_t at = 3; at < path.written.size(); at += 3) {
        const char* const before = ++current;
        float want = 0;
        ASSERT_TRUE(number_reader::ReadNumberBySteps(current, end, want));
        ASSERT_EQ(path.written[at + 1], std::bit_cast<std::uint32_t>(want))
            << std::string(before, current);
    }
    ASSERT_EQ(current, end);
}

TEST(PathTokens, EveryShortNumber)
{
    constexpr int kWholes = 1000;
    std::vector<std::string> fractions = {""};
    int places = 1;
    for (int values = 10; values <= 1000; values *= 10, ++places) {
        for (int value = 0; value < values; ++value) {
            std::string digits = std::to_string(value);
            digits.insert(0, static_cast<std::size_t>(places) - digits.size(), '0');
            fractions.push_back("." + digits);
        }
    }
    ASSERT_EQ(fractions.size(), 1111u);
    for (int whole = 0; whole < kWholes; ++whole) {
        std::string numbers;
        for (const std::string& fraction : fractions) {
            numbers += whole % 2 == 0 ? " " : " -";
            numbers += std::to_string(whole) + fraction;
        }
        ExpectNumbersLikeSteps(numbers);
    }
    std::string numbers;
    for (std::size_t i = 1; i < fractions.size(); ++i) {
        numbers += " " + fractions[i] + " -" + fractions[i] + " 00" + fractions[i];
    }
    ExpectNumbersLikeSteps(numbers);
}

TEST(PathTokens, LongerNumbers)
{
    std::mt19937 random(3);
    std::string numbers;
    for (int i = 0; i < 20000; ++i) {
        const std::string digits = std::to_string(random()) + std::to_string(random());
        numbers += random() % 2 == 0 ? " " : " -";
        numbers += digits.substr(0, random() % 7);
        numbers += "." + digits.substr(7, 1 + random() % 7);
    }
    ExpectNumbersLikeSteps(numbers);
}

TEST(PathTokens, EveryPlaceInABlock)
{
    for (const std::string_view text : {"1",
                                        "-12.345",
                                        " -.5.25,7",
                                        ",-1234.5678e1 3",
                                        "1.",
                                        "-",
                                        "L1 2",
                                        "zm1 2",
                                        "z,1",
                                        "zL3 4",
                                        "c1 2 3-4-5.5.6",
                                        "a1 2 3 010.5.5",
                                        "a1 2 3 0 1.5.5",
                                        "a1 2 3 00-1-2",
                                        "a1 1 0 1,0,5,5",
                                        "a1 1 0 1.0 5 5",
                                        "a1 1 0 011 1 1 1 0 0 1 2 2",
                                        "1,,2",
                                        "1 , , 2",
                                        "1 ,L2 3",
                                        "+5 5",
                                        "1e39",
                                        "12345678 1",
                                        "x",
                                        "\n1\t2\r\n",
                                        "\v",
                                        "\x80",
                                        "zzz",
                                        "z z l1 1",
                                        "zxL1 1"}) {
        for (std::size_t before = 4; before < 140; ++before) {
            std::string all = "M0 0";
            while (all.size() < before) {
                all += before - all.size() == 1 ? " " : " 7";
            }
            ExpectLikeSteps(all + std::string(text));
            ExpectLikeSteps(all + std::string(text) + " 8 9 10 11 12 13 14 15 16 17 18 19 20 21");
        }
    }
    // The same where a piece ends.
    for (const std::string_view text :
         {"1.5-2.5", "zzL1 2", "L1 2", "z", "c1 2 3 4 5 6", "1e1 2"}) {
        for (std::size_t before = 1900; before < 2100; ++before) {
            std::string all = "M0 0" + std::string(text);
            all.append(before - all.size(), ' ').append(text).append(text);
            ExpectLikeSteps(all);
            all = "M0 0L";
            while (all.size() < before) {
                all += before % 2 == 0 ? " 7" : ",12.5";
            }
            ExpectLikeSteps(all + std::string(text) + std::string(text));
        }
    }
}

TEST(PathTokens, MoreThanAreWrittenTogether)
{
    for (const std::string_view token : {"h", "zm", "1,", "-1", ".1", "9h"}) {
        std::string text = "M0 0";
        for (int i = 0; i < 100; ++i) {
            text += token;
            ExpectLikeSteps(text);
        }
    }
}

TEST(PathTokens, RandomTexts)
{
    constexpr int kTexts = 20000;
    // Mostly what takes few numbers, so that much is read before a text stops.
    constexpr std::string_view kCharacters =
        "0123456789012345678901234567890123456789.... -- ,hvHVlzmLqscaATe+\nx";
    std::mt19937 random(20);
    for (int i = 0; i < kTexts; ++i) {
        std::string text(random() % 300, '\0');
        for (char& c : text) {
            c = kCharacters[random() % kCharacters.size()];
        }
        ExpectLikeSteps("M0 0" + text);
    }
}

TEST(PathTokens, RandomCommands)
{
    constexpr int kTexts = 4000;
    constexpr std::string_view kCommands = "MmLlHhVvCcSsQqTtAaZz";
    std::mt19937 random(21);
    for (int i = 0; i < kTexts; ++i) {
        std::string text = "m1 2";
        for (std::size_t count = random() % 60; count > 0; --count) {
            const char command = kCommands[random() % kCommands.size()];
            text += command;
            const std::size_t most = command == 'A' || command == 'a' ? 14 : 12;
            const std::size_t numbers = command == 'z' || command == 'Z' ? 0 : most;
            for (std::size_t k = 0; k < numbers; ++k) {
                if (most == 14 && (k % 7 == 3 || k % 7 == 4)) {
                    text += random() % 2 == 0 ? " " : "";
                    text += random() % 2 == 0 ? "0" : "1";
                } else {
                    text += random() % 3 == 0 ? "-" : random() % 2 == 0 ? " " : ",";
                    const std::string digits = std::to_string(random());
                    text += digits.substr(0, 1 + random() % 3);
                    text += random() % 2 == 0 ? "." + digits.substr(0, 1 + random() % 4) : "";
                }
            }
        }
        ExpectLikeSteps(text);
    }
}

}  // namespace
}  // namespace SVGLoom
