/* Why the last call failed, for hosts that want to say it. One text for each thread. The first
 * function is plain C. */

#pragma once

#include <kivcore/Export.h>

#ifdef __cplusplus
#include <string_view>

extern "C" {
#endif

/* Text of the last contained failure of the calling thread, UTF-8; empty after a success or a
 * cancelled dialog. Never null; valid until the thread's next call into the framework. Longer texts
 * are cut, at a character's end. */
KIVCORE_API const char* KivLastFailureText(void);

#ifdef __cplusplus
}

namespace kivcore {

/// Replaces the text; an empty one clears it. A long text is cut at a character's end.
KIVCORE_API void SetLastFailureText(std::string_view text) noexcept;

/// Inside a catch block: takes the text of the exception at hand, or "unknown exception".
KIVCORE_API void SetLastFailureFromCurrentException() noexcept;

}  // namespace kivcore

#endif
