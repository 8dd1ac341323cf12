#include "framework/kivcore/src/SystemError.h"

#include <kivcore/StringConversion.h>

namespace kivcore::filesupport {

std::string ErrorText(const UString& path, std::string_view what)
{
    return string::UTF16to8(path).append(": ").append(what);
}

void ThrowSystemError(const UString& path, std::string_view what, int error)
{
    const SystemErrorRow* const row = FindSystemError(error);
    std::string text = ErrorText(path, what).append(": ");
    if (row) {
        text += row->text;
    } else {
        text += "system error " + std::to_string(error);
    }
    throw FileError(row ? row->kind : FileError::Kind::kOther, text);
}

}  // namespace kivcore::filesupport
