// Folders and files by name. A Dir or File is a name only; nothing is open.

#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// A file or folder could not be read, made or written. what() is UTF-8 and names the file, the
/// step and the system's reason.
class KIVCORE_API FileError : public std::runtime_error {
public:
    enum class Kind {
        kNotFound,
        kRefused,  ///< permissions, read-only
        kNoSpace,
        kChanged,  ///< the file is not the one that was read
        kTooLarge,
        kOther
    };
    FileError(Kind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
    FileError(const FileError&) = default;
    FileError& operator=(const FileError&) = default;
    ~FileError() override;
    Kind GetKind() const noexcept { return kind_; }

private:
    Kind kind_;
};

class KIVCORE_API Dir {
public:
    /// No folder.
    Dir() = default;
    explicit Dir(UString path);

    bool IsEmpty() const noexcept { return path_.empty(); }
    /// Full path without a separator at its end (a root keeps its own).
    const UString& FullPath() const noexcept { return path_; }
    /// The folder `name` in this one; `name` is one component and is not checked.
    Dir operator/(UStringView name) const;
    bool Exists() const;
    /// Makes the folder and those above it where they are missing. Throws FileError.
    void Create() const;
    /// Names of the files (or folders) in it, sorted by unit; none if it cannot be read. Why one
    /// that is there cannot be read is traced on "kivcore".
    std::vector<UString> FileNames() const;
    std::vector<UString> FolderNames() const;

    /// Where the application's data lies: KIV_APP_DIR if set; else the folder of the running
    /// program if it holds "Required"; else the data folder installed beside the framework.
    static Dir AppDir();
    /// Where preferences lie: KIV_PREF_DIR if set; else the user's configuration folder, by company
    /// and client name. Characters that file systems forbid become "_". Throws std::logic_error
    /// where no client name is set.
    static Dir PrefDir();

    /// The folder that an environment variable names; empty where it is not set.
    static Dir FromEnvironment(const char* variable);

    /// `name` made fit to be one component of a path: what a file system forbids becomes "_", also
    /// "." and ".." and the empty name.
    static UString SafeName(UStringView name);

private:
    UString path_;
};

class KIVCORE_API File {
public:
    File() = default;
    explicit File(const UString& path);
    File(const Dir& folder, UStringView name);

    /// Full path.
    const UString& FullPath() const noexcept { return path_; }
    UString Name() const;
    Dir Folder() const;
    /// True for a file (not a folder) that is there.
    bool Exists() const;
    /// Makes missing folders, and an empty file where none is. With `truncate` an existing file is
    /// emptied. Throws FileError.
    void Create(bool truncate) const;
    /// The whole content. Throws FileError, kTooLarge above `limitBytes`.
    std::string ReadAll(std::size_t limitBytes) const;
    /// Removes the file; silent where there is none. Throws FileError.
    void Remove() const;

private:
    UString path_;
};

/// A path as the command line and the environment spell it (UTF-8; elsewhere than on Windows any
/// bytes, which survive the way to UTF-16 and back), and back.
KIVCORE_API UString PathFromUTF8(const std::string& path);
KIVCORE_API std::string PathToUTF8(const UString& path);

}  // namespace kivcore::filesupport
