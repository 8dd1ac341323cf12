// Segments on their way to a path, which gets many of them at once: one call for most paths, so
// that the path allocates what it needs and does not grow.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/ArcToCurve.h"
#include "svgloom/src/Point.h"

namespace SVGLoom {

class PathBuffer {
public:
    enum class Mode {
        kPacked,
        kEachAtOnce,  // so that calls and traces stand in the order of the text
    };

    /// `path` has to stand as long as this object.
    PathBuffer(Path& path, Mode mode)
        : path_(path),
          mode_(mode),
          fullFrom_(mode == Mode::kPacked ? usual_ + kUsualBytes - kSpareBytes : usual_)
    {
    }
    PathBuffer(const PathBuffer&) = delete;
    PathBuffer& operator=(const PathBuffer&) = delete;

    bool IsEachAtOnce() const { return mode_ == Mode::kEachAtOnce; }

    void MoveTo(float x, float y) { Append(PathSegments::Kind::kMove, x, y); }
    void LineTo(const Point& to) { Append(PathSegments::Kind::kLine, to.x, to.y); }
    void CurveTo(const Point& first, const Point& second, const Point& to)
    {
        Append(PathSegments::Kind::kCurve, first.x, first.y, second.x, second.y, to.x, to.y);
    }
    void QuadTo(const Point& control, const Point& to)
    {
        Append(PathSegments::Kind::kQuad, control.x, control.y, to.x, to.y);
    }
    void ArcTo(const Point& from, const Arc& arc)
    {
        if (IsEachAtOnce()) {
            ArcToCurve(from, arc, *this);
            return;
        }
        at_ += arcs_.Add(from, arc, static_cast<std::size_t>(at_ - block_));
        if (arcs_.IsFull()) {
            at_ = arcs_.Write(block_, at_);
        }
        if (at_ > fullFrom_) [[unlikely]] {
            MakeRoom();
        }
    }
    void ClosePath() { Append(PathSegments::Kind::kClose); }

    /// A segment whose coordinates stand in two vectors of 16 bytes: so many bytes of the first,
    /// and the first half of the second.
    template <class Vector>
    [[gnu::always_inline]] void AppendVectors(PathSegments::Kind kind, const Vector& first,
                                              std::size_t firstBytes, const Vector& second)
    {
        constexpr std::size_t kHalf = 8;
        static_assert(sizeof(Vector) == 2 * kHalf);
        std::uint8_t* const at = at_;
        *at = static_cast<std::uint8_t>(kind);
        std::memcpy(at + 1, &first, sizeof first);
        std::memcpy(at + 1 + firstBytes, &second, kHalf);
        Go(at + 1 + firstBytes + kHalf);
    }

    /// Hands over what is left.
    void Flush()
    {
        if (!arcs_.IsEmpty()) {
            at_ = arcs_.Write(block_, at_);
        }
        if (at_ != block_) {
            const auto size = static_cast<std::size_t>(at_ - block_);
            at_ = block_;
            path_.AddSegments({block_, size});
        }
    }

private:
    static constexpr std::size_t kUsualBytes = 5120;
    static constexpr std::size_t kLargeBytes = std::size_t{64} * 1024;
    /// Of any segment or arc, and of what arcs may take beyond what was foreseen.
    static constexpr std::size_t kSpareBytes =
        ArcQueue::kMostPieces * PathSegments::kMaxBytes + ArcQueue::kSpareBytes;

    /// One coordinate by the other: as an array, they would be written twice, and wait for that.
    template <class... Coordinates>
    void Append(PathSegments::Kind kind, Coordinates... coordinates)
    {
        // Bytes that are written might be those of `at_` itself, so it is read once.
        std::uint8_t* at = at_;
        *at++ = static_cast<std::uint8_t>(kind);
        ((std::memcpy(at, &coordinates, sizeof(float)), at += sizeof(float)), ...);
        Go(at);
    }
    void Go(std::uint8_t* at)
    {
        at_ = at;
        if (at > fullFrom_) [[unlikely]] {
            MakeRoom();
        }
    }
    void MakeRoom()
    {
        if (mode_ == Mode::kPacked && large_ == nullptr) {
            large_.reset(new std::uint8_t[kLargeBytes]);
            const auto size = static_cast<std::size_t>(at_ - block_);
            std::memcpy(large_.get(), block_, size);
            block_ = large_.get();
            at_ = block_ + size;
            fullFrom_ = block_ + kLargeBytes - kSpareBytes;
        } else {
            Flush();
        }
    }

    Path& path_;
    const Mode mode_;
    std::uint8_t usual_[kUsualBytes];
    std::unique_ptr<std::uint8_t[]> large_;
    ArcQueue arcs_;
    std::uint8_t* block_ = usual_;  // or large_
    std::uint8_t* at_ = usual_;
    std::uint8_t* fullFrom_;  // behind this there may be no room for another segment
};

}  // namespace SVGLoom
