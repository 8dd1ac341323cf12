// Segments of a path packed one behind another, without gaps: a byte for the kind, then its
// coordinates as 32-bit floats.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace SVGLoom {

/// The segments that a block of bytes holds; the block is not owned.
class PathSegments {
public:
    enum class Kind : std::uint8_t { kMove = 0, kLine = 1, kCurve = 2, kClose = 3, kQuad = 4 };

    static constexpr std::size_t kMaxCoordinates = 6;
    static constexpr std::size_t kMaxBytes = 1 + kMaxCoordinates * sizeof(float);  // of a segment

    /// 2 for a move or line, 6 for a curve, 4 for a quad, none for a close.
    static constexpr std::size_t CoordinatesOf(Kind kind)
    {
        constexpr std::uint8_t kCounts[] = {2, 2, 6, 0, 4};
        return kCounts[static_cast<std::size_t>(kind)];
    }

    PathSegments(const std::uint8_t* block, std::size_t bytes) : block_(block), size_(bytes) {}

    const std::uint8_t* data() const { return block_; }
    std::size_t size() const { return size_; }  // in bytes

    /// Calls visit(kind, coordinates).
    template <class Visit>
    void ForEach(Visit&& visit) const
    {
        for (std::size_t at = 0; at < size_;) {
            float coordinates[kMaxCoordinates];
            const auto kind = static_cast<Kind>(block_[at]);
            const std::size_t bytes = CoordinatesOf(kind) * sizeof(float);
            std::memcpy(coordinates, block_ + at + 1, bytes);
            visit(kind, static_cast<const float*>(coordinates));
            at += 1 + bytes;
        }
    }

private:
    const std::uint8_t* block_;
    std::size_t size_;
};

}  // namespace SVGLoom
