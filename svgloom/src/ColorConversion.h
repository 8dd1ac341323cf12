// The one way from an exception of a number conversion to an assertion.

#pragma once

#include <stdexcept>

namespace SVGLoom {

enum class ConversionFailure { kInvalidArgument, kOutOfRange };

/// Raises the assertion, and stops in a debugger where it asks for that.
void AssertConversion(ConversionFailure failure);

/// Runs `convert`, a conversion of the standard library.
///
/// @return false if it threw std::invalid_argument or std::out_of_range, behind the assertion. Any
///         other exception passes.
template <class Convert>
bool ConvertOrAssert(const Convert& convert)
{
    try {
        convert();
        return true;
    } catch (const std::invalid_argument&) {
        AssertConversion(ConversionFailure::kInvalidArgument);
    } catch (const std::out_of_range&) {
        AssertConversion(ConversionFailure::kOutOfRange);
    }
    return false;
}

}  // namespace SVGLoom
