#include "framework/kivcore/src/SystemError.h"

#include <charconv>

#include <kivcore/StringConversion.h>

namespace kivcore::filesupport {

int SystemErrorByName(std::string_view name) noexcept
{
    for (const SystemErrorRow& row : SystemErrorRows()) {
        if (row.name == name) {
            return row.number;
        }
    }
    for (const SystemErrorAlias& alias : SystemErrorAliases()) {
        if (alias.name == name) {
            return alias.number;
        }
    }
    int number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number > 0 ? number : 0;
}

int SystemErrorByErrno(int error) noexcept
{
    for (const SystemErrorAlias& alias : SystemErrorAliases()) {
        if (alias.posix == error) {
            return alias.number;
        }
    }
    return error;
}

std::string ErrorText(const UString& path, std::string_view what)
{
    return string::UTF16to8(path).append(": ").append(what);
}

void ThrowSystemError(const UString& path, std::string_view what, int error)
{
    for (const SystemErrorRow& row : SystemErrorRows()) {
        if (row.number == error) {
            throw FileError(row.kind, ErrorText(path, what).append(": ").append(row.text));
        }
    }
    throw FileError(FileError::Kind::kOther,
                    ErrorText(path, what).append(": system error ").append(std::to_string(error)));
}

}  // namespace kivcore::filesupport
