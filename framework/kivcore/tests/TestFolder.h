// A folder of its own for one test, removed with all that is in it.

#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kivcore/Dir.h>

namespace kivcore::testing {

/// The path that a UTF-8 text spells. The library's own conversion of plain texts depends on the
/// system.
inline std::filesystem::path PathOfText(const std::string& text)
{
    return {std::u8string(text.begin(), text.end())};
}

class TestFolder {
public:
    TestFolder()
    {
        std::random_device random;
        do {
            folder_ = std::filesystem::path(::testing::TempDir()) /
                      ("kivcore-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directories(folder_));
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    const std::filesystem::path& Folder() const { return folder_; }
    std::filesystem::path Of(const std::string& name) const { return folder_ / PathOfText(name); }
    UString Path(const std::string& name) const
    {
        return filesupport::PathFromUTF8(Of(name).string());
    }

    void Write(const std::string& name, const std::string& content) const
    {
        std::ofstream(Of(name), std::ios::binary) << content;
    }
    std::string Read(const std::string& name) const
    {
        std::ifstream file(Of(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// All that is in it, hidden ones too, sorted.
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path folder_;
};

/// What `work` threw as an `Error`: its text; "" if it threw nothing.
template <class Error, class Work>
std::string TextOf(const Work& work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace kivcore::testing
