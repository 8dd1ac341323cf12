// Texts between the model and the toolkit, and the words of this module's own.

#pragma once

#include <string>
#include <string_view>

#include <wx/string.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

wxString ToWx(kivcore::UStringView text);
kivcore::UString FromWx(const wxString& text);

/// The text for `key`, a "$$$/Path/Name=default text", in the application's language.
kivcore::UString Text(std::string_view key);
/// The same with "^0" replaced by `value`.
kivcore::UString Text(std::string_view key, kivcore::UStringView value);
/// The same as UTF-8, for exceptions.
std::string Utf8Text(std::string_view key);
std::string Utf8Text(std::string_view key, kivcore::UStringView value);

}  // namespace kivtoolkit
