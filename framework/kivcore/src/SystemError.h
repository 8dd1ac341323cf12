// The system's error numbers as failures of ours. The texts do not depend on the locale.

#pragma once

#include <span>
#include <string>
#include <string_view>

#include <kivcore/Dir.h>

namespace kivcore::filesupport {

/// The number of the error of that name ("ENOSPC", or the number itself); 0 where there is none.
int SystemErrorByName(std::string_view name) noexcept;

/// The system's number of an errno. On Windows those are two worlds: numbers that no errno of ours
/// has are taken for the system's own.
int SystemErrorByErrno(int error) noexcept;

/// What we know of one of the system's errors.
struct SystemErrorRow {
    int number;
    std::string_view name;  ///< as the system's headers call it
    FileError::Kind kind;
    std::string_view text;
};

/// Another name by which a fault may be asked for: of an errno, where errors are no errnos.
struct SystemErrorAlias {
    int posix;
    std::string_view name;
    int number;
};

/// The tables of this system.
std::span<const SystemErrorRow> SystemErrorRows() noexcept;
std::span<const SystemErrorAlias> SystemErrorAliases() noexcept;

/// "PATH: WHAT", UTF-8.
std::string ErrorText(const UString& path, std::string_view what);

/// Throws FileError "PATH: WHAT: the system's reason".
[[noreturn]] void ThrowSystemError(const UString& path, std::string_view what, int error);

/// Ends the process as if it had been killed: nothing is flushed, nothing is cleared away.
[[noreturn]] void KillProcess() noexcept;

}  // namespace kivcore::filesupport
