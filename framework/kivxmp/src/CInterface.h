// What the functions of the C interface have in common.

#pragma once

#include <string_view>

#include <kivxmp/kivxmp.h>

namespace kivxmp {

/// Inside a catch block: the code of the exception at hand; its text becomes the last failure's.
KivXmpCode CodeOfCurrentException() noexcept;

/// Throws XMP_Error (kKivXmpBadArgument), `name` in its text.
void ThrowIfNull(const void* pointer, const char* name);

/// A copy with a NUL behind it, for KivXmpFree.
char* CopyForCaller(std::string_view text);

/// Forgets the text of the calling thread's last failure.
void ClearLastFailure() noexcept;

/// Runs the body of a C function; nothing leaves it but a code.
template <class Function>
KivXmpCode RunGuarded(const Function& function) noexcept
{
    ClearLastFailure();
    try {
        function();
        return kKivXmpOk;
    } catch (...) {
        return CodeOfCurrentException();
    }
}

}  // namespace kivxmp
