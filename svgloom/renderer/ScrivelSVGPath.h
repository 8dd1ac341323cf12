// The renderer's path: segments packed into one block, without gaps.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom {

class ScrivelSVGPath final : public Path {
public:
    enum class Kind : std::uint8_t { kMove = 0, kLine = 1, kCurve = 2, kClose = 3 };

    ScrivelSVGPath() = default;
    ~ScrivelSVGPath() override;

    // Appending throws std::bad_alloc and leaves the path as it was, shapes of several segments
    // excepted.
    void AddRect(float x, float y, float width, float height) override;
    /// Begins in the middle of the top edge and runs to the left; its corners are quads.
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override;
    void AddEllipse(float cx, float cy, float rx, float ry) override;
    void MoveTo(float x, float y) override;
    void LineTo(float x, float y) override;
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override;
    void QuadTo(float cx, float cy, float x, float y) override;
    void ClosePath() override;

    /// Calls visit(kind, coordinates): 2 for a move or line, 6 for a curve, none for a close.
    template <class Visit>
    void ForEach(Visit&& visit) const
    {
        for (std::size_t at = 0; at < size_;) {
            float coordinates[kMaxCoordinates];
            const auto kind = static_cast<Kind>(block_[at]);
            const std::size_t bytes = CoordinateBytes(kind);
            std::memcpy(coordinates, block_ + at + 1, bytes);
            visit(kind, static_cast<const float*>(coordinates));
            at += 1 + bytes;
        }
    }

private:
    static constexpr std::size_t kMaxCoordinates = 6;

    static std::size_t CoordinateBytes(Kind kind)
    {
        constexpr std::uint8_t kCounts[] = {2, 2, 6, 0};
        return kCounts[static_cast<std::size_t>(kind)] * sizeof(float);
    }
    void Append(Kind kind, const float* coordinates);
    void Grow(std::size_t need);

    std::uint8_t* block_ = nullptr;  // a kind and its coordinates in turn
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
    // The last two coordinates; 0, 0 before there are any.
    float lastX_ = 0;
    float lastY_ = 0;
};

}  // namespace SVGLoom
