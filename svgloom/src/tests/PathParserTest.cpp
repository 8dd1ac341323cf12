#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::RecordingPath;
using testing_support::TraceListener;

std::string Parse(std::string_view input)
{
    RecordingPath path;
    SVGStringParser::ParsePath(ExactText(input).View(), path);
    return path.log.Written();
}

struct PathCase {
    std::string_view input;
    std::string_view want;
};

void ExpectCases(std::initializer_list<PathCase> cases)
{
    for (const PathCase& row : cases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Parse(row.input), row.want);
        // Long texts are read in another way, 64 bytes at a time.
        for (std::size_t spaces = 1024; spaces < 1024 + 64; ++spaces) {
            EXPECT_EQ(Parse(std::string(spaces, ' ').append(row.input)), row.want) << spaces;
        }
    }
}

// More than is handed over to the path at once.
TEST(ParsePath, ManySegments)
{
    constexpr int kTimes = 4000;
    std::string input = "M0 0";
    for (int i = 0; i < kTimes; ++i) {
        const std::string number = std::to_string(i);
        input += "C1 2 3 4 5 " + number + "Q1 2 3 " + number + "A1 1 0 0 0 3 " + number + "Z";
    }
    RecordingPath path;
    SVGStringParser::ParsePath(input, path);
    const std::string have = path.log.Written();
    for (const std::string_view piece :
         {"C(1, 2, 3, 4, 5, 3999); Q(1, 2, 3, 3999); ", "C(1, 2, 3, 4, 5, 77); Q(1, 2, 3, 77); "}) {
        EXPECT_NE(have.find(piece), std::string::npos) << piece;
    }
    const auto count = [&have](std::string_view what) {
        int times = 0;
        for (std::size_t at = have.find(what); at != std::string::npos;
             at = have.find(what, at + 1)) {
            ++times;
        }
        return times;
    };
    EXPECT_EQ(count("Q("), kTimes);
    EXPECT_EQ(count("Z("), kTimes);
    EXPECT_EQ(count("M("), kTimes);  // each but the last close is followed by one
}

TEST(ParsePath, EachCommand)
{
    ExpectCases({
        {"M1 2", "M(1, 2)"},
        {"m1 2", "M(1, 2)"},
        {"M1 2m3 4", "M(1, 2); M(4, 6)"},
        {"M1 2L3 4", "M(1, 2); L(3, 4)"},
        {"M1 2l3 4", "M(1, 2); L(4, 6)"},
        {"M1 2H5", "M(1, 2); L(5, 2)"},
        {"M1 2h5", "M(1, 2); L(6, 2)"},
        {"M1 2V5", "M(1, 2); L(1, 5)"},
        {"M1 2v5", "M(1, 2); L(1, 7)"},
        {"M1 2C3 4 5 6 7 8", "M(1, 2); C(3, 4, 5, 6, 7, 8)"},
        // All relative points count from the current one.
        {"M1 2c3 4 5 6 7 8", "M(1, 2); C(4, 6, 6, 8, 8, 10)"},
        {"M1 2C3 4 5 6 7 8S1 1 2 2", "M(1, 2); C(3, 4, 5, 6, 7, 8); C(9, 10, 1, 1, 2, 2)"},
        {"M1 2C3 4 5 6 7 8s1 1 2 2", "M(1, 2); C(3, 4, 5, 6, 7, 8); C(9, 10, 8, 9, 9, 10)"},
        {"M1 2Q3 4 5 6", "M(1, 2); Q(3, 4, 5, 6)"},
        {"M1 2q3 4 5 6", "M(1, 2); Q(4, 6, 6, 8)"},
        {"M1 2Q3 4 5 6T7 8", "M(1, 2); Q(3, 4, 5, 6); Q(7, 8, 7, 8)"},
        {"M1 2Q3 4 5 6t7 8", "M(1, 2); Q(3, 4, 5, 6); Q(7, 8, 12, 14)"},
        {"M1 2L3 4Z", "M(1, 2); L(3, 4); Z()"},
        {"M1 2l3 4z", "M(1, 2); L(4, 6); Z()"},
        // Minus zero stays what it is where nothing is added.
        {"M-0-0", "M(-0, -0)"},
    });
}

TEST(ParsePath, ImplicitRepeats)
{
    ExpectCases({
        {"M 10 10 20 20", "M(10, 10); L(20, 20)"},
        {"m 10 10 20 20", "M(10, 10); L(30, 30)"},
        {"M1 2 3 4 5 6", "M(1, 2); L(3, 4); L(5, 6)"},
        {"M0 0L1 2 3 4", "M(0, 0); L(1, 2); L(3, 4)"},
        {"M0 0l1 2 3 4", "M(0, 0); L(1, 2); L(4, 6)"},
        {"M0 0H1 2-3.5.5", "M(0, 0); L(1, 0); L(2, 0); L(-3.5, 0); L(0.5, 0)"},
        {"M0 0c1 2 3 4 5 6 1 2 3 4 5 6", "M(0, 0); C(1, 2, 3, 4, 5, 6); C(6, 8, 8, 10, 10, 12)"},
        {"M0 0Q1 2 3 4,5 6 7 8", "M(0, 0); Q(1, 2, 3, 4); Q(5, 6, 7, 8)"},
        {"M0 0Q1 2 3 4T5 6 7 8", "M(0, 0); Q(1, 2, 3, 4); Q(5, 6, 5, 6); Q(5, 6, 7, 8)"},
        // A repeat behind a close ends the parse.
        {"M0 0Z1 1L2 2", "M(0, 0); Z()"},
        {"M0 0z-1 1", "M(0, 0); Z()"},
        {"M0 0z .5 1", "M(0, 0); Z()"},
        {"M0 0z,L1 1", "M(0, 0); Z()"},
    });
}

TEST(ParsePath, SpaceAndCommas)
{
    ExpectCases({
        {"", ""},
        {" \t\r\n", ""},
        {" \t\r\nM\t1\r2\n", "M(1, 2)"},
        {"M1,2L3,4", "M(1, 2); L(3, 4)"},
        {"M 1 , 2 , 3 , 4", "M(1, 2); L(3, 4)"},
        // One comma may stand before every number, the first one included.
        {"M,1,2", "M(1, 2)"},
        {"M0 0L , 1 2", "M(0, 0); L(1, 2)"},
        {"M0 0,,1 1", "M(0, 0)"},
        {"M0 0L,,1 1", "M(0, 0)"},
        {"M1-2.5.5-3", "M(1, -2.5); L(0.5, -3)"},
        {"M1e1.5", "M(10, 0.5)"},
        {"M1 2,", "M(1, 2)"},
        {"M0,0 L10,0 z", "M(0, 0); L(10, 0); Z()"},
    });
}

TEST(ParsePath, TheFirstCommandIsAMove)
{
    ExpectCases({
        {"L 1 1", ""},
        {"1 1", ""},
        {"Z", ""},
        {"xM1 1", ""},
        {",M1 1", ""},
        {"M", ""},
        {"M1", ""},
        {"M x", ""},
    });
}

TEST(ParsePath, StopsAtTheFirstUnreadableNumber)
{
    ExpectCases({
        {"M0 0L1 1L2 xL3 3", "M(0, 0); L(1, 1)"},
        {"M0 0L1 1L2", "M(0, 0); L(1, 1)"},
        {"M0 0C1 2 3 4 5 x", "M(0, 0)"},
        {"M0 0L1. 2", "M(0, 0)"},
        {"M0 0L1e 2", "M(0, 0)"},
        {"M0 0H", "M(0, 0)"},
        {"M0 0L1e39 2L1 1", "M(0, 0)"},
        {"M0 0T", "M(0, 0)"},
        {"M0 0ZL", "M(0, 0); Z(); M(0, 0)"},
    });
}

// "S" reflects the stored point always; only C and S store one.
TEST(ParsePath, SmoothCubicsReflectTheStoredPointAlways)
{
    ExpectCases({
        {"M1 2S3 4 5 6", "M(1, 2); C(2, 4, 3, 4, 5, 6)"},
        {"M1 2C3 4 5 6 7 8L10 10S1 1 2 2",
         "M(1, 2); C(3, 4, 5, 6, 7, 8); L(10, 10); C(15, 14, 1, 1, 2, 2)"},
        {"M1 2C3 4 5 6 7 8ZS1 1 2 2",
         "M(1, 2); C(3, 4, 5, 6, 7, 8); Z(); M(1, 1); C(-3, -2, 1, 1, 2, 2)"},
        {"M1 2C3 4 5 6 7 8Q9 9 10 10S1 1 2 2",
         "M(1, 2); C(3, 4, 5, 6, 7, 8); Q(9, 9, 10, 10); C(15, 14, 1, 1, 2, 2)"},
    });
}

TEST(ParsePath, SmoothQuadraticsReflectOnlyBehindQuadratics)
{
    ExpectCases({
        {"M1 2T3 4", "M(1, 2); Q(1, 2, 3, 4)"},
        {"M1 2T3 4T5 6", "M(1, 2); Q(1, 2, 3, 4); Q(5, 6, 5, 6)"},
        {"M1 2Q3 4 5 6L7 8T9 9", "M(1, 2); Q(3, 4, 5, 6); L(7, 8); Q(7, 8, 9, 9)"},
        {"M1 2q1 1 2 2t1 1", "M(1, 2); Q(2, 3, 3, 4); Q(4, 5, 4, 5)"},
        {"M1 2Q3 4 5 6xT7 8", "M(1, 2); Q(3, 4, 5, 6); Q(5, 6, 7, 8)"},
    });
}

TEST(ParsePath, CloseReturnsToTheStartOfTheSubpath)
{
    ExpectCases({
        {"M3 7l1 1zm1 1", "M(3, 7); L(4, 8); Z(); M(4, 8)"},
        {"M0 0 Z Z", "M(0, 0); Z()"},
        {"M0 0zZzZ", "M(0, 0); Z()"},
        {"M0 0ZM1 1Z", "M(0, 0); Z(); M(1, 1); Z()"},
    });
}

TEST(ParsePath, TheMoveBehindACloseTakesXTwice)
{
    ExpectCases({
        {"M0,0 L10,0 Z L5,5", "M(0, 0); L(10, 0); Z(); M(0, 0); L(5, 5)"},
        {"M3 7L4 8ZL5 5", "M(3, 7); L(4, 8); Z(); M(3, 3); L(5, 5)"},
        // Relative coordinates still count from the true start, and so does the next close.
        {"M3 7L4 8Zl1 1", "M(3, 7); L(4, 8); Z(); M(3, 3); L(4, 8)"},
        {"M3 7L4 8ZV1", "M(3, 7); L(4, 8); Z(); M(3, 3); L(3, 1)"},
        {"M3 7L4 8Zl1 1Zl1 1", "M(3, 7); L(4, 8); Z(); M(3, 3); L(4, 8); Z(); M(3, 3); L(4, 8)"},
    });
}

// An unknown command takes the very next character for a command, until one is known.
TEST(ParsePath, UnknownCommands)
{
    ExpectCases({
        {"M0 0xL1 1", "M(0, 0); L(1, 1)"},
        {"M0 0 x L1 1", "M(0, 0); L(1, 1)"},
        {"M0 0x1 1L2 2", "M(0, 0); L(2, 2)"},
        {"M0 0xyzL1 1", "M(0, 0); Z(); M(0, 0); L(1, 1)"},
        {"M0 0x", "M(0, 0)"},
        {"M0 0b[\\]^_`", "M(0, 0)"},
        {"M0 0\xC3\xA9L1 1", "M(0, 0); L(1, 1)"},
        {std::string_view("M0 0\0L1 1", 9), "M(0, 0); L(1, 1)"},
        // A "+" repeats nothing.
        {"M0 0+1 1L2 2", "M(0, 0); L(2, 2)"},
        {"M0 0L+1+1", "M(0, 0); L(1, 1)"},
        {"M0 0L1 1+2 2", "M(0, 0); L(1, 1)"},
        // It counts as a command behind a close: one move, no second one, and "Z" closes again.
        {"M3 7ZxL1 1", "M(3, 7); Z(); M(3, 3); L(1, 1)"},
        {"M3 7ZxZ", "M(3, 7); Z(); M(3, 3); Z()"},
        {"M3 7ZxM1 1", "M(3, 7); Z(); M(3, 3); M(1, 1)"},
    });
}

TEST(ParsePath, ArcFlags)
{
    // Flags may touch each other and the number behind them.
    EXPECT_EQ(Parse("M0 0a5 5 0 0110 0"), Parse("M0 0A5,5,0,0,1,10,0"));
    EXPECT_EQ(Parse("M0 0a5 5 0 01.5 0"), Parse("M0 0A5 5 0 0 1 0.5 0"));
    EXPECT_EQ(Parse("M0 0a5 5 0 , 0 , 1 , 10 , 0"), Parse("M0 0A5 5 0 0 1 10 0"));
    EXPECT_NE(Parse("M0 0A5 5 0 0 1 10 0"), "M(0, 0)");
    // Two arcs in a row.
    EXPECT_EQ(Parse("M0 0a5 5 0 0 1 10 0 5 5 0 0 1 10 0"),
              Parse("M0 0a5 5 0 0 1 10 0a5 5 0 0 1 10 0"));
    ExpectCases({
        {"M0 0A5 5 0 2 1 10 0L1 1", "M(0, 0)"},
        {"M0 0A5 5 0 0 2 10 0L1 1", "M(0, 0)"},
        {"M0 0A5 5 0 -1 1 10 0", "M(0, 0)"},
        {"M0 0A5 5 0 t 1 10 0", "M(0, 0)"},
        {"M0 0A5 5 0 ,,0 1 10 0", "M(0, 0)"},
        {"M0 0A5 5 0 0", "M(0, 0)"},
        {"M0 0A5 5 0 0 1", "M(0, 0)"},
        {"M0 0A5 5 0 0 1 10", "M(0, 0)"},
        {"M0 0A5 5", "M(0, 0)"},
        // "0.5" is the flag 0, then no flag.
        {"M0 0A5 5 0 0.5 1 10 0", "M(0, 0)"},
    });
}

TEST(ParsePath, ArcsKeepTheStoredControlPoints)
{
    const std::string arc = Parse("M0 0C1 2 3 4 5 6A1 1 0 0 1 5 8S1 1 2 2");
    // 2 * (5, 8) - (3, 4)
    EXPECT_NE(arc.find("C(7, 12, 1, 1, 2, 2)"), std::string::npos) << arc;
    const std::string smooth = Parse("M0 0Q1 2 3 4A1 1 0 0 1 3 6T5 5");
    // The arc is no quadratic, so the current point is the control.
    EXPECT_TRUE(smooth.ends_with("Q(3, 6, 5, 5)")) << smooth;
}

TEST(ParsePath, ArcsEndAtTheirPoint)
{
    EXPECT_TRUE(Parse("M1 1a5 5 0 0 1 10 3l0 0").ends_with("L(11, 4)"));
    EXPECT_TRUE(Parse("M1 1A5 5 0 0 1 10 3l0 0").ends_with("L(10, 3)"));
}

TEST(ParsePath, UnknownCommandsAreTraced)
{
    TraceListener listener("SVGLoom.Parse", 6);
    EXPECT_EQ(Parse("M0 0x L1 1"), "M(0, 0); L(1, 1)");
    EXPECT_EQ(listener.messages, (std::vector<std::string>{"6 parsePathString UNHANDLED: x",
                                                           "6 parsePathString UNHANDLED:  "}));
}

TEST(ParsePath, TracingFollowsTheChannel)
{
    for (int round = 0; round < 3; ++round) {
        std::vector<std::string> messages;
        {
            TraceListener listener("SVGLoom.Parse", round == 1 ? 5 : 6);
            Parse("M0 0x");
            messages = listener.messages;
        }
        Parse("M0 0x");
        EXPECT_EQ(messages.size(), round == 1 ? 0u : 1u) << round;
    }
}

TEST(ParsePath, CutAtEveryLength)
{
    constexpr std::string_view kText =
        "M1 2l3,4H5v-6C1 2 3 4 5 6s.1.2.3.4Q1 2 3 4t5 6a7 8 9 01 2 3Z";
    const std::string whole = Parse(kText);
    for (std::size_t length = 0; length < kText.size(); ++length) {
        const std::string part = Parse(kText.substr(0, length));
        // A number that is cut is another number, so only what stands before the last call is
        // equal.
        const std::size_t last = part.rfind(';');
        EXPECT_TRUE(last == std::string::npos || whole.starts_with(part.substr(0, last))) << part;
    }
}

/// What is noted, each with the text from its place on.
std::string Notes(std::string_view input)
{
    constexpr const char* kNames[] = {"stopped", "unknown", "move",    "arc",
                                      "smooth",  "quad",    "negative"};
    const ExactText text(input);
    RecordingPath path;
    PathNotes notes;
    SVGStringParser::ParsePath(text.View(), path, &notes);
    std::string all;
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        if (const char* const place = notes.PlaceOf(static_cast<PathNote>(i))) {
            const auto at = static_cast<std::size_t>(place - text.View().data());
            all += (all.empty() ? "" : "; ") + std::string(kNames[i]) + " [" +
                   std::string(text.View().substr(at)) + "]";
        }
    }
    return all;
}

TEST(ParsePath, Notes)
{
    constexpr PathCase kCases[] = {
        {"", ""},
        {" ", ""},
        {"M1 2L3 4Z", ""},
        // Reading stops.
        {" L1 2", "stopped [L1 2]"},
        {"M1 2L3", "stopped []"},
        {"M1 2L3 x", "stopped [x]"},
        {"M1 2Z3 4", "stopped [3 4]"},
        {"M1 2A1 1 0 2 0 3 4", "stopped [2 0 3 4]"},
        // Only the first place of each is kept.
        {"M1 2X L3 4Y", "stopped []; unknown [X L3 4Y]"},
        {"M1 2L3 4ZL5 6ZL7 8", "move [5 6ZL7 8]"},
        {"M2 2L3 4ZL5 6", ""},
        {"M1 2L3 4ZM5 6", ""},
        // Arcs whose rotation would show.
        {"M1 2A4 3 30 0 0 5 6", "arc [4 3 30 0 0 5 6]"},
        {"M1 2A4 3 180 0 0 5 6", ""},
        {"M1 2A4 4.01 30 0 0 5 6", ""},
        {"M1 2A-4 4 0 0 0 5 6", "negative [-4 4 0 0 0 5 6]"},
        // Quadratic curves that are bent.
        {"M1 2Q3 4 5 5", "quad [3 4 5 5]"},
        {"M1 2T3 4Q4 5 7 8", ""},
        {"M1 2Q4 5 7 8t3 4", "quad [3 4]"},
        // Smooth curves behind something else.
        {"M1 2S3 4 5 6", "smooth [3 4 5 6]"},
        {"M0 0S3 4 5 6", ""},
        {"M1 2C3 4 5 6 7 8S3 4 5 6", ""},
        {"M1 2C3 4 5 6 7 8L9 9s3 4 5 6", "smooth [3 4 5 6]"},
    };
    for (const PathCase& row : kCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Notes(row.input), row.want);
    }
}

}  // namespace
}  // namespace SVGLoom
