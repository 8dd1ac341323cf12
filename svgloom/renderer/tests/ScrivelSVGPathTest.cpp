#include "svgloom/renderer/ScrivelSVGPath.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace SVGLoom {
namespace {

// As path data, absolute; numbers are the shortest that read back.
std::string Text(const ScrivelSVGPath& path)
{
    constexpr const char* kWords[] = {"M", "L", "C", "Z"};
    constexpr int kCounts[] = {2, 2, 6, 0};
    std::string text;
    path.ForEach([&](ScrivelSVGPath::Kind kind, const float* n) {
        text += text.empty() ? "" : " ";
        text += kWords[static_cast<std::size_t>(kind)];
        for (int i = 0; i < kCounts[static_cast<std::size_t>(kind)]; ++i) {
            char buffer[32];
            text += ' ';
            text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, n[i]).ptr);
        }
    });
    return text;
}

struct Case {
    const char* name;
    void (*build)(Path&);
    const char* want;
};

constexpr Case kShapes[] = {
    {"empty", [](Path&) {}, ""},
    {"rectangle", [](Path& p) { p.AddRect(1, 2, 10, 20); }, "M 1 2 L 11 2 L 11 22 L 1 22 Z"},
    // From the middle of the top edge to the left; quads keep their control point.
    {"rounded rectangle", [](Path& p) { p.AddRoundedRect(10, 20, 40, 30, 4, 5); },
     "M 30 20 L 14 20 C 14 20 10 20 10 25 L 10 45 C 10 45 10 50 14 50 "
     "L 46 50 C 46 50 50 50 50 45 L 50 25 C 50 25 50 20 46 20 Z"},
    // The arc's factor has five digits.
    {"ellipse", [](Path& p) { p.AddEllipse(0, 0, 1, 100000); },
     "M 1 0 C 1 -55228 0.55228 -1e+05 0 -1e+05 C -0.55228 -1e+05 -1 -55228 -1 0 "
     "C -1 55228 -0.55228 1e+05 0 1e+05 C 0.55228 1e+05 1 55228 1 0 Z"},
    {"each segment",
     [](Path& p) {
         p.MoveTo(1, 2);
         p.LineTo(3, 4);
         p.CurveTo(5, 6, 7, 8, 9, 10);
         p.QuadTo(11, 12, 13, 14);
         p.ClosePath();
     },
     "M 1 2 L 3 4 C 5 6 7 8 9 10 C 9 10 11 12 13 14 Z"},
};

TEST(ScrivelSVGPath, Shapes)
{
    for (const Case& row : kShapes) {
        SCOPED_TRACE(row.name);
        ScrivelSVGPath path;
        row.build(path);
        EXPECT_EQ(Text(path), row.want);
    }
}

constexpr Case kQuads[] = {
    {"behind nothing", [](Path& p) { p.QuadTo(1, 2, 3, 4); }, "C 0 0 1 2 3 4"},
    {"behind a close, which has no coordinates",
     [](Path& p) {
         p.MoveTo(5, 6);
         p.LineTo(7, 8);
         p.ClosePath();
         p.QuadTo(1, 2, 3, 4);
     },
     "M 5 6 L 7 8 Z C 7 8 1 2 3 4"},
    {"behind a close alone",
     [](Path& p) {
         p.ClosePath();
         p.QuadTo(1, 2, 3, 4);
     },
     "Z C 0 0 1 2 3 4"},
};

TEST(ScrivelSVGPath, QuadsKeepTheirControlPoint)
{
    for (const Case& row : kQuads) {
        SCOPED_TRACE(row.name);
        ScrivelSVGPath path;
        row.build(path);
        EXPECT_EQ(Text(path), row.want);
    }
}

TEST(ScrivelSVGPath, LongPaths)
{
    ScrivelSVGPath path;
    constexpr int kCount = 100000;
    for (int i = 0; i < kCount; ++i) {
        path.LineTo(static_cast<float>(i), static_cast<float>(-i));
    }
    int seen = 0;
    path.ForEach([&](ScrivelSVGPath::Kind kind, const float* n) {
        ASSERT_EQ(kind, ScrivelSVGPath::Kind::kLine);
        ASSERT_EQ(n[0], static_cast<float>(seen));
        ASSERT_EQ(n[1], static_cast<float>(-seen));
        ++seen;
    });
    EXPECT_EQ(seen, kCount);
}

// One that was made with its segments behind itself goes on like any other.
TEST(ScrivelSVGPath, MadeOfItsSegments)
{
    const std::uint8_t close = static_cast<std::uint8_t>(PathSegments::Kind::kClose);
    const auto closed = ScrivelSVGPath::Create({&close, 1});
    EXPECT_EQ(Text(*closed), "Z");
    closed->MoveTo(1, 2);
    EXPECT_EQ(Text(*closed), "Z M 1 2");
    closed->LineTo(3, 4);
    EXPECT_EQ(Text(*closed), "Z M 1 2 L 3 4");

    const auto empty = ScrivelSVGPath::Create({&close, 0});
    EXPECT_EQ(Text(*empty), "");
    empty->AddSegments({&close, 0});
    empty->AddSegments({&close, 1});
    EXPECT_EQ(Text(*empty), "Z");
}

// As the operations one by one, whichever comes first.
TEST(ScrivelSVGPath, PackedSegments)
{
    using Kind = PathSegments::Kind;
    std::vector<std::uint8_t> block;
    const auto pack = [&block](Kind kind, std::initializer_list<float> coordinates) {
        block.push_back(static_cast<std::uint8_t>(kind));
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(coordinates.begin());
        block.insert(block.end(), bytes, bytes + coordinates.size() * sizeof(float));
    };
    pack(Kind::kQuad, {1, 2, 3, 4});
    pack(Kind::kClose, {});
    pack(Kind::kMove, {5, 6});
    pack(Kind::kLine, {7, 8});
    pack(Kind::kCurve, {1, 2, 3, 4, 5, 6});
    ScrivelSVGPath path;
    path.AddSegments({nullptr, 0});
    EXPECT_EQ(Text(path), "");
    path.MoveTo(9, 9);
    path.AddSegments({block.data(), block.size()});
    path.ClosePath();
    path.AddSegments({block.data(), block.size()});
    EXPECT_EQ(Text(path),
              "M 9 9 C 9 9 1 2 3 4 Z M 5 6 L 7 8 C 1 2 3 4 5 6 Z "
              "C 5 6 1 2 3 4 Z M 5 6 L 7 8 C 1 2 3 4 5 6");
}

}  // namespace
}  // namespace SVGLoom
