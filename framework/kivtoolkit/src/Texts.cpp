#include "framework/kivtoolkit/src/Texts.h"

#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>

namespace kivtoolkit {

wxString ToWx(kivcore::UStringView text)
{
    return wxString::FromUTF8(kivcore::string::UTF16to8(text));
}

kivcore::UString FromWx(const wxString& text)
{
    const wxScopedCharBuffer utf8 = text.utf8_str();
    return kivcore::string::UTF8to16(std::string_view(utf8.data(), utf8.length()));
}

kivcore::UString Text(std::string_view key)
{
    return kivcore::config::Localize(key);
}

kivcore::UString Text(std::string_view key, kivcore::UStringView value)
{
    kivcore::UString text = Text(key);
    const std::size_t at = text.find(u"^0");
    if (at != kivcore::UString::npos) {
        text.replace(at, 2, value);
    }
    return text;
}

std::string Utf8Text(std::string_view key)
{
    return kivcore::string::UTF16to8(Text(key));
}

std::string Utf8Text(std::string_view key, kivcore::UStringView value)
{
    return kivcore::string::UTF16to8(Text(key, value));
}

}  // namespace kivtoolkit
