// A list whose copies share one block until one of them is changed. Styles are inherited by copying
// them, so a long list of stops or dashes must not be multiplied by its heirs.

#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace SVGLoom {

/// Not for two threads at once, copies that share a block included.
template <class T>
class SharedVector {
public:
    SharedVector() = default;
    /// An empty list holds no block.
    explicit SharedVector(std::vector<T> values)
    {
        if (!values.empty()) {
            values_ = std::make_shared<std::vector<T>>(std::move(values));
        }
    }

    std::size_t size() const { return values_ != nullptr ? values_->size() : 0; }
    bool empty() const { return size() == 0; }
    const T* data() const { return values_ != nullptr ? values_->data() : nullptr; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + size(); }
    /// Requires `index` < size().
    const T& operator[](std::size_t index) const { return (*values_)[index]; }
    /// Requires an entry.
    const T& Last() const { return values_->back(); }

    /// Copies the block first where others share it.
    void Append(const T& value)
    {
        if (values_ == nullptr) {
            values_ = std::make_shared<std::vector<T>>();
        } else if (values_.use_count() > 1) {
            const T kept = value;  // it may stand in the block that is left
            values_ = std::make_shared<std::vector<T>>(*values_);
            values_->push_back(kept);
            return;
        }
        values_->push_back(value);
    }
    void Clear() { values_.reset(); }

    /// True if both lists are one block; equal lists need not be.
    bool SharesBlockWith(const SharedVector& other) const { return values_ == other.values_; }

    friend bool operator==(const SharedVector& a, const SharedVector& b)
    {
        return a.values_ == b.values_ || (a.size() == b.size() && a.values_ != nullptr &&
                                          b.values_ != nullptr && *a.values_ == *b.values_);
    }

private:
    std::shared_ptr<std::vector<T>> values_;  // null only for an empty list
};

}  // namespace SVGLoom
