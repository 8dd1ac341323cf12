// Reads the input as path data. Every call on the path takes at least a byte of the input, or is
// one of the four that an arc takes at most, and half a text gives the beginning of what the whole
// gives. With notes, which are for tools, it is read step by step, and gives the same; so do all
// ways to look at many bytes together.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TokenWidths.h"

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Keeps the calls with their coordinates, bit by bit.
class Recorder : public SVGLoom::Path {
public:
    void AddRect(float, float, float, float) override { std::abort(); }
    void AddRoundedRect(float, float, float, float, float, float) override { std::abort(); }
    void AddEllipse(float, float, float, float) override { std::abort(); }
    void MoveTo(float x, float y) override { Add({'M', {x, y}}); }
    void LineTo(float x, float y) override { Add({'L', {x, y}}); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Add({'C', {x1, y1, x2, y2, x, y}});
    }
    void QuadTo(float cx, float cy, float x, float y) override { Add({'Q', {cx, cy, x, y}}); }
    void ClosePath() override { Add({'Z', {}}); }

    struct Call {
        char kind;
        float values[6];
    };
    std::vector<Call> calls;

private:
    void Add(const Call& call) { calls.push_back(call); }
};

bool IsEqual(const Recorder::Call& a, const Recorder::Call& b)
{
    // Which NaN comes out of a sum of two is the compiler's choice.
    const auto isSame = [](float x, float y) {
        return std::memcmp(&x, &y, sizeof x) == 0 || (x != x && y != y);
    };
    return a.kind == b.kind && std::equal(a.values, std::end(a.values), b.values, isSame);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Recorder whole;
    SVGLoom::SVGStringParser::ParsePath(text, whole);
    Require(whole.calls.size() <= size);
    Require(whole.calls.empty() || whole.calls[0].kind == 'M');

    Recorder stepwise;
    SVGLoom::PathNotes notes;
    SVGLoom::SVGStringParser::ParsePath(text, stepwise, &notes);
    Require(std::equal(whole.calls.begin(), whole.calls.end(), stepwise.calls.begin(),
                       stepwise.calls.end(), IsEqual));
    Require(SVGLoom::testing_support::AreTokensAlike(text));

    // What a half text ends with may be a number cut short, so its last command is not compared.
    const std::vector<char> halfText(text.begin(), text.begin() + size / 2);
    Recorder half;
    SVGLoom::SVGStringParser::ParsePath({halfText.data(), halfText.size()}, half);
    constexpr std::size_t kCallsOfOneCommand = 5;
    for (std::size_t i = 0; i + kCallsOfOneCommand < half.calls.size(); ++i) {
        Require(i < whole.calls.size() && IsEqual(half.calls[i], whole.calls[i]));
    }
    return 0;
}
