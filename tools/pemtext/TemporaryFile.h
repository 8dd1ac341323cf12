// A file for what wants a name, in a folder of its own that goes with it.

#pragma once

#include <kivcore/UString.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace pemtext {

class TemporaryFile {
public:
    /// Throws std::exception if there is no room for it.
    explicit TemporaryFile(std::string_view content = {});
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    kivcore::UString Path() const;
    std::string Utf8Path() const;

private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
};

}  // namespace pemtext
