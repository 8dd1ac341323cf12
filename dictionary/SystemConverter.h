// The converter hooks that are in force unless a program replaces them: UTF-8 for selector 1, else
// the system's ANSI code page. They are strict: what cannot be converted gives "huh?".

#pragma once

#include "dictionary/StringConverters.h"

namespace morvish_private {

/// None of the members is null. They throw nothing but std::bad_alloc.
morvish::ConverterHooks SystemConverterHooks();

}  // namespace morvish_private
