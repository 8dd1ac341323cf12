#include "tools/pemtext/TemporaryFile.h"

#include "tools/pemtext/Common.h"

#include <fstream>
#include <random>
#include <system_error>

namespace pemtext {

TemporaryFile::TemporaryFile(std::string_view content)
{
    std::random_device random;
    do {
        folder_ = std::filesystem::temp_directory_path() / ("pemtext-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
    file_ = folder_ / "content";
    std::ofstream out(file_, std::ios_base::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    if (!out) {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        throw Failure("the folder for temporary files has no room");
    }
}

TemporaryFile::~TemporaryFile()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

kivcore::UString TemporaryFile::Path() const
{
    const std::u16string path = file_.u16string();
    return {path.data(), path.size()};
}

std::string TemporaryFile::Utf8Path() const
{
    const std::u8string path = file_.u8string();
    return {path.begin(), path.end()};
}

}  // namespace pemtext
