// The class names of one element: sorted, each once, in one block.

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <string_view>

namespace SVGLoom {

class ClassSet {
public:
    /// Goes over the names, which stand as long as the set.
    class Iterator {
    public:
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using reference = std::string_view;
        using pointer = const std::string_view*;
        using iterator_category = std::input_iterator_tag;

        explicit Iterator(const char* at) : at_(at) {}
        std::string_view operator*() const { return at_; }
        Iterator& operator++()
        {
            at_ += std::string_view(at_).size() + 1;
            return *this;
        }
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        const char* at_;
    };

    ClassSet() = default;
    /// `names` are sorted in place, and copied. There is no NUL in them.
    explicit ClassSet(std::span<std::string_view> names);
    ClassSet(std::initializer_list<std::string_view> names);

    bool empty() const { return block_ == nullptr; }
    Iterator begin() const { return Iterator(Names()); }
    Iterator end() const { return Iterator(block_ != nullptr ? Names() + Size() : nullptr); }

private:
    const char* Names() const
    {
        return block_ != nullptr ? block_.get() + sizeof(std::uint32_t) : nullptr;
    }
    std::uint32_t Size() const;

    // The size of what follows, then the names, each with its zero. Null if there is none: most
    // elements have no class.
    std::unique_ptr<char[]> block_;
};

}  // namespace SVGLoom
