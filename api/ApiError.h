// The library's one exception type. It never leaves the C surface.

#pragma once

#include <stdexcept>
#include <string>

namespace kivmetadataapi {

class kivmetadataapi_error : public std::runtime_error {
public:
    /// `flag` is kept for whoever catches it; see DefaultErrorManager::RaiseError.
    explicit kivmetadataapi_error(const std::string& message, bool flag = false)
        : std::runtime_error(message), flag_(flag)
    {
    }

    bool Flag() const noexcept { return flag_; }

private:
    bool flag_;
};

}  // namespace kivmetadataapi
