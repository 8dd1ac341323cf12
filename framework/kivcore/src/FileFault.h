// The steps of file work, and the test switch that makes one of them fail.

#pragma once

#include <string_view>

#include <kivcore/FileStream.h>

namespace kivcore::filesupport {

/// The error that the coming system call of `step` has to answer with; 0 to carry it out.
/// kKillProcess stands for the end of the process: in front of the call, and on Windows behind it,
/// because there one call is what takes several steps elsewhere.
int TakeFault(FileStep step) noexcept;

/// What a message says where the step failed: "cannot be read".
std::string_view StepText(FileStep step) noexcept;

}  // namespace kivcore::filesupport
