#include "svgloom/renderer/ScrivelSVGPath.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace SVGLoom {

namespace {

/// The segments of a shape on their way to a path.
class Shape {
public:
    void MoveTo(float x, float y) { Add(PathSegments::Kind::kMove, {x, y}); }
    void LineTo(float x, float y) { Add(PathSegments::Kind::kLine, {x, y}); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y)
    {
        Add(PathSegments::Kind::kCurve, {x1, y1, x2, y2, x, y});
    }
    void QuadTo(float cx, float cy, float x, float y)
    {
        Add(PathSegments::Kind::kQuad, {cx, cy, x, y});
    }
    PathSegments Closed()
    {
        bytes_[size_++] = static_cast<std::uint8_t>(PathSegments::Kind::kClose);
        return {bytes_, size_};
    }

private:
    static constexpr std::size_t kMostSegments = 10;  // of a rounded rectangle

    template <std::size_t count>
    void Add(PathSegments::Kind kind, const float (&coordinates)[count])
    {
        bytes_[size_] = static_cast<std::uint8_t>(kind);
        std::memcpy(bytes_ + size_ + 1, coordinates, sizeof coordinates);
        size_ += 1 + sizeof coordinates;
    }

    std::uint8_t bytes_[kMostSegments * PathSegments::kMaxBytes];
    std::size_t size_ = 0;
};

}  // namespace

ScrivelSVGPath::~ScrivelSVGPath()
{
    if (OwnsBlock()) {
        std::free(block_);
    }
}

std::unique_ptr<ScrivelSVGPath> ScrivelSVGPath::Create(const PathSegments& segments)
{
    void* const place = ::operator new(sizeof(ScrivelSVGPath) + segments.size(), std::nothrow);
    if (place == nullptr) {
        return nullptr;
    }
    std::unique_ptr<ScrivelSVGPath> path(new (place) ScrivelSVGPath());
    path->block_ = path->BehindItself();
    path->size_ = segments.size();
    path->capacity_ = segments.size();
    std::copy_n(segments.data(), segments.size(), path->block_);
    return path;
}

void ScrivelSVGPath::AddRect(float x, float y, float width, float height)
{
    Shape shape;
    shape.MoveTo(x, y);
    shape.LineTo(x + width, y);
    shape.LineTo(x + width, y + height);
    shape.LineTo(x, y + height);
    AddSegments(shape.Closed());
}

// The top edge is drawn from its middle to the left, and its right half by the close: dashes and
// the direction depend on this order. ScrivelSVGPath.Shapes holds it.
void ScrivelSVGPath::AddRoundedRect(float x, float y, float width, float height, float rx, float ry)
{
    const float right = x + width;
    const float bottom = y + height;
    Shape shape;
    shape.MoveTo(x + width * 0.5f, y);
    shape.LineTo(x + rx, y);
    shape.QuadTo(x, y, x, y + ry);
    shape.LineTo(x, bottom - ry);
    shape.QuadTo(x, bottom, x + rx, bottom);
    shape.LineTo(right - rx, bottom);
    shape.QuadTo(right, bottom, right, bottom - ry);
    shape.LineTo(right, y + ry);
    shape.QuadTo(right, y, right - rx, y);
    AddSegments(shape.Closed());
}

void ScrivelSVGPath::AddEllipse(float cx, float cy, float rx, float ry)
{
    // Five digits on purpose, not the exact 0.5522847: call logs show the products.
    // ScrivelSVGPath.Shapes holds this.
    constexpr float kArc = 0.55228f;
    const float kx = kArc * rx;
    const float ky = kArc * ry;
    Shape shape;
    shape.MoveTo(cx + rx, cy);
    shape.CurveTo(cx + rx, cy - ky, cx + kx, cy - ry, cx, cy - ry);
    shape.CurveTo(cx - kx, cy - ry, cx - rx, cy - ky, cx - rx, cy);
    shape.CurveTo(cx - rx, cy + ky, cx - kx, cy + ry, cx, cy + ry);
    shape.CurveTo(cx + kx, cy + ry, cx + rx, cy + ky, cx + rx, cy);
    AddSegments(shape.Closed());
}

template <std::size_t count>
void ScrivelSVGPath::Append(PathSegments::Kind kind, const float (&coordinates)[count])
{
    std::uint8_t* const room = MakeRoom(1 + sizeof coordinates);
    *room = static_cast<std::uint8_t>(kind);
    std::memcpy(room + 1, coordinates, sizeof coordinates);
    size_ += 1 + sizeof coordinates;
}

void ScrivelSVGPath::MoveTo(float x, float y)
{
    Append(PathSegments::Kind::kMove, {x, y});
}

void ScrivelSVGPath::LineTo(float x, float y)
{
    Append(PathSegments::Kind::kLine, {x, y});
}

void ScrivelSVGPath::CurveTo(float x1, float y1, float x2, float y2, float x, float y)
{
    Append(PathSegments::Kind::kCurve, {x1, y1, x2, y2, x, y});
}

void ScrivelSVGPath::QuadTo(float cx, float cy, float x, float y)
{
    Append(PathSegments::Kind::kQuad, {cx, cy, x, y});
}

void ScrivelSVGPath::ClosePath()
{
    *MakeRoom(1) = static_cast<std::uint8_t>(PathSegments::Kind::kClose);
    ++size_;
}

void ScrivelSVGPath::AddSegments(const PathSegments& segments)
{
    if (segments.size() != 0) {
        std::memcpy(MakeRoom(segments.size()), segments.data(), segments.size());
        size_ += segments.size();
    }
}

// Documents hold their paths for long, so little is left over: an eighth, and small blocks fit.
std::uint8_t* ScrivelSVGPath::MakeRoom(std::size_t bytes)
{
    if (capacity_ - size_ < bytes) {
        constexpr std::size_t kHeader = 8;  // of an allocator's block, a multiple of 16 in size
        std::size_t capacity = std::max(size_ + bytes, capacity_ + capacity_ / 8);
        capacity = (capacity + kHeader + 15) / 16 * 16 - kHeader;
        void* const block = OwnsBlock() ? std::realloc(block_, capacity) : std::malloc(capacity);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        if (!OwnsBlock()) {
            std::memcpy(block, block_, size_);
        }
        block_ = static_cast<std::uint8_t*>(block);
        capacity_ = capacity;
    }
    return block_ + size_;
}

}  // namespace SVGLoom
