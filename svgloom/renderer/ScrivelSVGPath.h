// The renderer's path: segments packed into one block, without gaps. A path that is made of its
// segments has that block behind itself.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom {

class ScrivelSVGPath final : public Path {
public:
    enum class Kind : std::uint8_t { kMove = 0, kLine = 1, kCurve = 2, kClose = 3 };

    ScrivelSVGPath() = default;
    ~ScrivelSVGPath() override;

    /// A path with these segments; an empty pointer if memory runs out.
    static std::unique_ptr<ScrivelSVGPath> Create(const PathSegments& segments);

    // A path may be the beginning of a larger block, so it is never given back by its size.
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept
    {
        return ::operator new(size, tag);
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* path) noexcept { ::operator delete(path); }

    // Appending throws std::bad_alloc and leaves the path as it was.
    void AddRect(float x, float y, float width, float height) override;
    /// Begins in the middle of the top edge and runs to the left; its corners are quads.
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override;
    void AddEllipse(float cx, float cy, float rx, float ry) override;
    void MoveTo(float x, float y) override;
    void LineTo(float x, float y) override;
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override;
    void QuadTo(float cx, float cy, float x, float y) override;
    void ClosePath() override;
    /// Exactly what is needed is allocated where the path is empty.
    void AddSegments(const PathSegments& segments) override;

    /// Calls visit(kind, coordinates): 2 for a move or line, 6 for a curve, none for a close.
    template <class Visit>
    void ForEach(Visit&& visit) const
    {
        // The control points are not raised by two thirds, which makes quads rounder than the SVG
        // standard's; artwork was drawn for this. A close does not move the current point, which
        // is 0, 0 before there is any. ScrivelSVGPath.QuadsKeepTheirControlPoint holds both.
        float lastX = 0;
        float lastY = 0;
        PathSegments(block_, size_).ForEach([&](PathSegments::Kind kind, const float* n) {
            if (kind == PathSegments::Kind::kQuad) {
                const float curve[] = {lastX, lastY, n[0], n[1], n[2], n[3]};
                visit(Kind::kCurve, static_cast<const float*>(curve));
            } else {
                visit(static_cast<Kind>(kind), n);
            }
            if (const std::size_t count = PathSegments::CoordinatesOf(kind); count != 0) {
                lastX = n[count - 2];
                lastY = n[count - 1];
            }
        });
    }

private:
    template <std::size_t count>
    void Append(PathSegments::Kind kind, const float (&coordinates)[count]);
    std::uint8_t* MakeRoom(std::size_t bytes);
    std::uint8_t* BehindItself() { return reinterpret_cast<std::uint8_t*>(this + 1); }
    bool OwnsBlock() { return block_ != BehindItself(); }

    std::uint8_t* block_ = nullptr;  // as PathSegments
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace SVGLoom
