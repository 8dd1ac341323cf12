#include "framework/kivxmp/src/SavePlan.h"

#include <algorithm>

namespace kivxmp::photo {

void SortPlan(SavePlan& plan)
{
    std::sort(plan.begin(), plan.end(), [](const Patch& left, const Patch& right) {
        return left.replaced.offset < right.replaced.offset;
    });
}

std::optional<std::uint64_t> MovedStart(const SavePlan& plan, std::uint64_t position)
{
    std::uint64_t moved = position;
    for (const Patch& patch : plan) {
        if (position < patch.replaced.offset) {
            break;
        }
        if (position < patch.replaced.End()) {
            return std::nullopt;
        }
        moved = moved - patch.replaced.bytes + patch.fresh.size();
    }
    return moved;
}

std::optional<std::uint64_t> MovedEnd(const SavePlan& plan, std::uint64_t position)
{
    std::uint64_t moved = position;
    for (const Patch& patch : plan) {
        if (position <= patch.replaced.offset) {
            break;
        }
        if (position < patch.replaced.End()) {
            return std::nullopt;
        }
        moved = moved - patch.replaced.bytes + patch.fresh.size();
    }
    return moved;
}

void ApplyPlan(const SavePlan& plan, std::uint64_t originalBytes,
               const std::function<void(ByteRange range)>& copy,
               const std::function<void(std::string_view bytes)>& write)
{
    std::uint64_t position = 0;
    for (const Patch& patch : plan) {
        if (patch.replaced.offset > position) {
            copy({position, patch.replaced.offset - position});
        }
        write(patch.fresh);
        position = patch.replaced.End();
    }
    if (position < originalBytes) {
        copy({position, originalBytes - position});
    }
}

}  // namespace kivxmp::photo
