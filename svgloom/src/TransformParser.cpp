// Transform lists. Each function is a row of its name and what it does with its numbers.

#include <cmath>
#include <cstddef>

#include "svgloom/src/Angles.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

constexpr int kMaxNumbers = 6;

/// Applies a function to `transform`; false, and nothing applied, if `count` numbers do not suit
/// it.
using Apply = bool (*)(const float (&numbers)[kMaxNumbers], int count, Transform& transform);

bool ApplyMatrix(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count != 6) {
        return false;
    }
    transform.Concat(n[0], n[1], n[2], n[3], n[4], n[5]);
    return true;
}

bool ApplyTranslate(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count != 1 && count != 2) {
        return false;
    }
    transform.Translate(n[0], count == 2 ? n[1] : 0);
    return true;
}

bool ApplyScale(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count != 1 && count != 2) {
        return false;
    }
    transform.Scale(n[0], count == 2 ? n[1] : n[0]);
    return true;
}

bool ApplyRotate(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count == 1) {
        transform.Rotate(n[0]);
        return true;
    }
    if (count != 3) {
        return false;
    }
    // The two translations act behind the rotation and take each other away, so the centre has no
    // effect; that is on purpose, see Transform for the orders.
    transform.Translate(n[1], n[2]);
    transform.Rotate(n[0]);
    transform.Translate(-n[1], -n[2]);
    return true;
}

bool ApplySkewX(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count != 1) {
        return false;
    }
    transform.Concat(1, 0, Tangent(n[0] * kRadiansPerDegree), 1, 0, 0);
    return true;
}

bool ApplySkewY(const float (&n)[kMaxNumbers], int count, Transform& transform)
{
    if (count != 1) {
        return false;
    }
    transform.Concat(1, Tangent(n[0] * kRadiansPerDegree), 0, 1, 0, 0);
    return true;
}

struct FunctionRow {
    std::string_view name;  // no name is the beginning of another
    Apply apply;
};

constexpr FunctionRow kFunctions[] = {
    {"matrix", ApplyMatrix}, {"translate", ApplyTranslate}, {"scale", ApplyScale},
    {"rotate", ApplyRotate}, {"skewX", ApplySkewX},         {"skewY", ApplySkewY},
};

const FunctionRow* ReadName(const char*& current, const char* end)
{
    const std::string_view rest(current, static_cast<std::size_t>(end - current));
    for (const FunctionRow& row : kFunctions) {
        if (rest.starts_with(row.name)) {
            current += row.name.size();
            return &row;
        }
    }
    return nullptr;
}

/// Reads "(", numbers and ")". No comma may stand before the first number.
bool ReadArguments(const char*& current, const char* end, float (&numbers)[kMaxNumbers], int& count)
{
    if (!SkipSpace(current, end) || *current != '(') {
        return false;
    }
    ++current;
    count = 0;
    for (;;) {
        if (count == 0) {
            SkipSpace(current, end);
        } else if (SkipSpace(current, end) && *current == ')') {
            ++current;
            return true;
        } else {
            SkipSeparator(current, end);
        }
        if (count == kMaxNumbers || !ReadNumber(current, end, numbers[count])) {
            return false;
        }
        ++count;
    }
}

}  // namespace

bool SVGStringParser::ParseTransform(const char*& current, const char* end, Transform& transform)
{
    for (;;) {
        SkipSeparator(current, end);
        if (current == end) {
            return true;
        }
        const FunctionRow* const function = ReadName(current, end);
        float numbers[kMaxNumbers] = {};
        int count = 0;
        if (function == nullptr || !ReadArguments(current, end, numbers, count) ||
            !function->apply(numbers, count, transform)) {
            return false;
        }
    }
}

}  // namespace SVGLoom
