// Where path data is not drawn as the SVG standard has it: for tools that tell artists.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace SVGLoom {

enum class PathNote : std::uint8_t {
    kStopped,          // what follows is not drawn; the place is where reading stopped
    kUnknownCommand,   // skipped
    kMoveBehindClose,  // a subpath that begins without a move begins elsewhere
    kRotatedArc,       // drawn without its rotation
    kSmoothStart,      // "S" behind another command takes up an earlier control point
    kQuadratic,        // drawn as a cubic of another shape
    kNegativeArc,      // drawn with its radii as they are
};

/// The first place of each. Behind a command letter or at its first argument, where none stands.
class PathNotes {
public:
    void Add(PathNote note, const char* place)
    {
        const char*& first = places_[static_cast<std::size_t>(note)];
        first = first == nullptr ? place : first;
    }
    /// Of quadratic curves, the one that is furthest from its place is kept.
    void AddQuadratic(const char* place, float distance)
    {
        if (distance > quadraticDistance_) {
            quadraticDistance_ = distance;
            places_[static_cast<std::size_t>(PathNote::kQuadratic)] = place;
        }
    }
    /// About how far it is from where the standard draws it, in user units.
    float QuadraticDistance() const { return quadraticDistance_; }

    /// Null if it did not happen.
    const char* PlaceOf(PathNote note) const { return places_[static_cast<std::size_t>(note)]; }

private:
    std::array<const char*, 7> places_{};
    float quadraticDistance_ = 0;
};

}  // namespace SVGLoom
