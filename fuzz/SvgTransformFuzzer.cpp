// Reads the input as a transform list, as a list of numbers and of lengths, and as single values.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"

namespace {

using SVGLoom::SVGStringParser;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class Counter : public SVGLoom::Transform {
public:
    void SetMatrix(float, float, float, float, float, float) override { std::abort(); }
    void Rotate(float) override { ++calls; }
    void Translate(float, float) override { ++calls; }
    void Scale(float, float) override { ++calls; }
    void Concat(float, float, float, float, float, float) override { ++calls; }

    std::size_t calls = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const char* const end = text.data() + size;

    Counter transform;
    const char* current = text.data();
    const bool parsed = SVGStringParser::ParseTransform(current, end, transform);
    Require(current >= text.data() && current <= end);
    Require(!parsed || current == end);
    Require(transform.calls <= size);

    // What was consumed up to a failure in front of a function is a list itself.
    std::vector<float> numbers;
    const bool isList = SVGStringParser::ParseNumberList(text, numbers);
    Require(isList || numbers.empty());
    Require(numbers.size() <= size);
    for (const float number : numbers) {
        Require(std::isfinite(number));
    }
    // Every list of numbers is one of lengths with the same values.
    std::vector<float> lengths;
    if (isList) {
        Require(SVGStringParser::ParseLengthList(text, 100, lengths));
        Require(lengths == numbers);
    } else if (!SVGStringParser::ParseLengthList(text, 100, lengths)) {
        Require(lengths.empty());
    }
    float number = 0;
    if (SVGStringParser::ParseNumber(text, number)) {
        Require(isList && numbers.size() == 1 && numbers[0] == number);
        float length = 0;
        Require(SVGStringParser::ParseLength(text, 100, length) && length == number);
    }
    std::size_t letters = 0;
    for (const std::string_view word : SVGStringParser::SplitWords(text)) {
        Require(!word.empty());
        letters += word.size();
    }
    Require(letters <= size);
    return 0;
}
