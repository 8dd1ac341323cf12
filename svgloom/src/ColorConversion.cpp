#include "svgloom/src/ColorConversion.h"

#include <kivcore/Debugger.h>
#include <kivcore/Trace.h>

namespace SVGLoom {

namespace {

struct FailureRow {
    int line;
    const char* message;
};

// The place is part of what hosts match their reports by, so it does not move with this file.
constexpr const char* kFile = "svgloom/src/SVGStringParser";
constexpr const char* kFunction = "SVGLoom::SVGStringParser::ParseColor";
constexpr FailureRow kInvalidArgumentRow = {947, "stoi() error: invalid argument"};
constexpr FailureRow kOutOfRangeRow = {951, "stoi() error: out of range"};

}  // namespace

void AssertConversion(ConversionFailure failure)
{
    const FailureRow& row =
        failure == ConversionFailure::kInvalidArgument ? kInvalidArgumentRow : kOutOfRangeRow;
    if (kivcore::debug::DoSimpleAssert(kFile, row.line, kFunction, "false", row.message) &&
        kivcore::debug::IsDebuggerAttached()) {
        kivcore::debug::StopInDebugger();
    }
}

}  // namespace SVGLoom
