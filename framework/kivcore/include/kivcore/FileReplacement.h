// Replaces a file that holds a user's work, so that at every moment either the old or the new
// content stands under its name, whole.
//
// The new content is written to a file of its own beside the old one (exclusive creation, locked,
// same permissions and access lists), flushed, read back and checked, and renamed over the old one;
// then the folder is flushed. Memory stays below 1 MiB whatever the size. A symbolic link is
// followed and its target replaced. What a killed writer left behind is recognised by its name and
// its missing lock, and removed by the next replacement in that folder.
//
// On Windows the system's own call replaces, in two steps: for a moment between them there is no
// file of that name, and whoever is killed there leaves the old content beside it as a backup. It
// is renamed back by the next reader or replacement, or removed once the new content could be read
// whole under its own name.

#pragma once

#include <functional>
#include <optional>

#include <kivcore/Export.h>
#include <kivcore/FileStream.h>
#include <kivcore/UString.h>

namespace kivcore::filesupport {

struct ReplaceOptions {
    /// The state in which the file was read; if it is not in this state any more, nothing is
    /// written and FileError kChanged is thrown. Without it the file may be missing, and is made.
    std::optional<FileIdentity> expected;
    /// Takes the place of the comparison of the flushed copy with what was written: it has to read
    /// the copy whole and hold every byte of it against what it should be, so that nobody reads it
    /// twice. Throws to refuse it; the old file then stays.
    std::function<void(InputFile& written)> compare;
};

/// Replaces (or makes) the file at `path` by what `write` puts out, and returns the new file's
/// identity. Throws FileError, and whatever `write` and `compare` throw; the old file is then as it
/// was and nothing is left beside it. There are two exceptions. On a POSIX file system without hard
/// links the new content stands where the system refuses to flush the folder behind the rename.
/// Where Windows has put the old file aside and lets nobody rename it back, the message tells its
/// name, and RecoverReplacedFile() brings it back. A file
/// without any write permission bit (or with the read-only attribute) is refused, also for an
/// administrator, and so is one that we have no permission to write.
KIVCORE_API FileIdentity ReplaceWholeFile(const UString& path,
                                          const std::function<void(OutputFile& out)>& write,
                                          const ReplaceOptions& options);

/// Throws FileError kRefused if ReplaceWholeFile would refuse the file at `path` for its own
/// permissions, kNotFound where there is none. Says nothing about the folder and the room on the
/// disk.
KIVCORE_API void CheckReplaceable(const UString& path);

/// Clears what a killed writer left for `path`: called by readers of a photo before they open it,
/// silent when there is nothing. Does not look through the folder, so its cost does not grow with
/// it. Never throws.
KIVCORE_API void RecoverReplacedFile(const UString& path) noexcept;

}  // namespace kivcore::filesupport
