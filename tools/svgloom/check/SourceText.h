// The text of a file, the copy that the engine's XML reader works on, and ways back from the copy
// to places of the file: the reader translates references in place, so values are shorter there.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace svgloom {

class SourceText {
public:
    /// `text` has to stand as long as this object.
    explicit SourceText(std::string_view text);
    SourceText(const SourceText&) = delete;
    SourceText& operator=(const SourceText&) = delete;

    std::string_view Original() const { return original_; }
    /// Ends in zero; may be changed in place.
    char* Copy() { return copy_.data(); }

    /// Whether `place` looks into the copy.
    bool Holds(const char* place) const;
    /// The offset of a place in the copy. Right for all but the inner of values with references.
    std::size_t OffsetOf(const char* place) const
    {
        return static_cast<std::size_t>(place - copy_.data());
    }

private:
    std::string_view original_;
    std::string copy_;
};

/// Tells where in the file the characters of a text stand.
class Locator {
public:
    virtual ~Locator() = default;
    /// The offset in the file. `place` looks into the text, or is its end.
    virtual std::size_t OffsetOf(const char* place) const = 0;
};

/// The same place for all.
class FixedPlace final : public Locator {
public:
    explicit FixedPlace(std::size_t offset) : offset_(offset) {}
    std::size_t OffsetOf(const char*) const override { return offset_; }

private:
    std::size_t offset_;
};

/// A value as the engine sees it, with the places of its characters in the file. Cheap for places
/// that are asked for in their order.
class SourceValue final : public Locator {
public:
    /// `text` looks into the copy of `source`, which has to stand as long as this object. One that
    /// does not stands at `otherwise`.
    SourceValue(const SourceText& source, std::string_view text, std::size_t otherwise);

    std::string_view Text() const { return text_; }
    std::size_t OffsetOf(const char* place) const override
    {
        return OffsetAt(static_cast<std::size_t>(place - text_.data()));
    }
    /// The offset in the file of the character at `index`, at most the length of the text.
    std::size_t OffsetAt(std::size_t index) const;

private:
    std::string_view text_;
    std::string_view original_;  // from the value's start to the end of the file
    std::size_t start_;
    bool hasReferences_ = false;
    // How far the last search came.
    mutable std::size_t index_ = 0;
    mutable std::size_t offset_ = 0;
};

/// Lines and columns of a text, from 1. Columns count characters; a byte-order mark is none. Line
/// ends are LF, CR LF and CR.
class LinePlaces {
public:
    struct Place {
        std::size_t line = 1;
        std::size_t column = 1;
    };

    explicit LinePlaces(std::string_view text);

    /// Offsets have to come in ascending order.
    Place Advance(std::size_t offset);

private:
    std::string_view text_;
    std::size_t offset_ = 0;
    Place place_;
};

}  // namespace svgloom
