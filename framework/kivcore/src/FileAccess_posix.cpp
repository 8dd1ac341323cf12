#include "framework/kivcore/src/FileAccess_posix.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace kivcore::filesupport {

namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

// Signatures of the old content: on the new one they would be wrong.
constexpr std::string_view kContentSignatures[] = {"security.evm", "security.ima"};

/// The names or the value of an attribute, by a call that tells the size when asked for 0 bytes.
template <class Call>
std::vector<char> ReadAll(const Call& call)
{
    std::vector<char> data;
    // Between the two calls it can grow; then it is asked for again.
    for (int attempt = 0; attempt < 4; ++attempt) {
        const ssize_t size = call(nullptr, 0);
        if (size <= 0) {
            return {};
        }
        data.resize(static_cast<std::size_t>(size));
        const ssize_t read = call(data.data(), data.size());
        if (read >= 0) {
            data.resize(static_cast<std::size_t>(read));
            return data;
        }
    }
    return {};
}

void CopyAttributes(const char* original, int descriptor)
{
    // The folder may have given the new file an access list that the original does not have.
    fremovexattr(descriptor, kAccessList);
    const std::vector<char> names = ReadAll(
        [original](char* buffer, std::size_t bytes) { return listxattr(original, buffer, bytes); });
    for (auto name = names.begin(); name != names.end();) {
        const auto nameEnd = std::find(name, names.end(), '\0');
        const std::string text(name, nameEnd);
        name = nameEnd == names.end() ? nameEnd : nameEnd + 1;
        if (std::find(std::begin(kContentSignatures), std::end(kContentSignatures), text) !=
            std::end(kContentSignatures)) {
            continue;
        }
        const std::vector<char> value = ReadAll([original, &text](char* buffer, std::size_t bytes) {
            return getxattr(original, text.c_str(), buffer, bytes);
        });
        fsetxattr(descriptor, text.c_str(), value.data(), value.size(), 0);
    }
}

}  // namespace

void CopyAccess(const std::string& original, int descriptor)
{
    struct stat wanted {};
    struct stat made {};
    if (stat(original.c_str(), &wanted) == -1 || fstat(descriptor, &made) == -1) {
        return;
    }
    if ((wanted.st_uid != made.st_uid || wanted.st_gid != made.st_gid) &&
        fchown(descriptor, wanted.st_uid, wanted.st_gid) == -1 &&
        fchown(descriptor, static_cast<uid_t>(-1), wanted.st_gid) == -1) {
        const mode_t group = wanted.st_mode & S_IRWXG;
        const mode_t everybody = (wanted.st_mode & S_IRWXO) << 3;
        wanted.st_mode = (wanted.st_mode & ~static_cast<mode_t>(S_IRWXG)) | (group & everybody);
    }
    CopyAttributes(original.c_str(), descriptor);
    // Last, because owner and access list change the bits.
    fchmod(descriptor, wanted.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO));
}

}  // namespace kivcore::filesupport
