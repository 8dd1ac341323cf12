// The library's trace sites, all on the channel "kivmetadataapi" at level 0.

#pragma once

#include <kivcore/Trace.h>

namespace kivmetadataapi {

inline constexpr char kTraceChannel[] = "kivmetadataapi";

/// Start-up failed before the framework's configuration.
kivcore::debug::TraceSite& FirstStageFailureSite() noexcept;
/// Bringing the framework up failed.
kivcore::debug::TraceSite& SecondStageFailureSite() noexcept;
/// A failure was contained by the error manager.
kivcore::debug::TraceSite& ContainedFailureSite() noexcept;

}  // namespace kivmetadataapi
