// A text that never changes and is shared by its copies.

#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kivcore {

class ImmutableString {
public:
    ImmutableString() = default;
    explicit ImmutableString(std::string_view text)
        : text_(std::make_shared<const std::string>(text))
    {
    }

    std::string_view View() const noexcept
    {
        return text_ ? std::string_view(*text_) : std::string_view();
    }
    bool operator==(const ImmutableString& other) const noexcept { return View() == other.View(); }

private:
    std::shared_ptr<const std::string> text_;
};

}  // namespace kivcore
