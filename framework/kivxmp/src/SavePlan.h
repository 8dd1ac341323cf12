// What a save changes in a file: ranges of bytes and what stands there afterwards.

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ByteSource.h"

namespace kivxmp::photo {

/// A range of the original (empty: a place between two bytes) and what stands there afterwards.
struct Patch {
    ByteRange replaced;
    std::string fresh;
};

/// Patches in file order that do not overlap. Everything between them is copied.
using SavePlan = std::vector<Patch>;

void SortPlan(SavePlan& plan);

/// Where the byte at `position` stands after the save; nothing if it is replaced itself. What
/// begins where something is inserted moves behind it.
std::optional<std::uint64_t> MovedStart(const SavePlan& plan, std::uint64_t position);
/// The same for the end of a range: it stays in front of what is inserted there.
std::optional<std::uint64_t> MovedEnd(const SavePlan& plan, std::uint64_t position);

/// Puts out the original with `plan` applied: `copy` is given the ranges to copy, `write` the fresh
/// bytes, in order.
void ApplyPlan(const SavePlan& plan, std::uint64_t originalBytes,
               const std::function<void(ByteRange range)>& copy,
               const std::function<void(std::string_view bytes)>& write);

}  // namespace kivxmp::photo
