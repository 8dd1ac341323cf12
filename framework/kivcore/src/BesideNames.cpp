#include "framework/kivcore/src/BesideNames.h"

#include <algorithm>
#include <cstdint>

#include "framework/kivcore/src/Path.h"

namespace kivcore::filesupport {

namespace {

constexpr UStringView kHexDigits = u"0123456789abcdef";
constexpr std::size_t kHashDigits = 16;

UString HashText(UStringView name)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char16_t unit : name) {
        hash = (hash ^ unit) * 0x100000001b3U;
    }
    UString text;
    for (std::size_t digit = kHashDigits; digit-- > 0;) {
        text += kHexDigits[(hash >> (4 * digit)) & 0xF];
    }
    return text;
}

}  // namespace

UString BesidePath(const UString& target, std::size_t number)
{
    UString path(FolderPart(target));
    if (!path.empty() && !IsSeparator(path.back())) {
        path += kSeparator;
    }
    path += kBesidePrefix;
    path += HashText(NamePart(target));
    path += u'-';
    if (number >= 10) {
        path += static_cast<char16_t>(u'0' + number / 10);
    }
    path += static_cast<char16_t>(u'0' + number % 10);
    return path;
}

std::size_t BesideNameLength(UStringView name)
{
    constexpr std::size_t kNumberAt = kBesidePrefix.size() + kHashDigits + 1;
    if (!name.starts_with(kBesidePrefix) || name.size() <= kNumberAt ||
        name[kNumberAt - 1] != u'-' ||
        name.substr(kBesidePrefix.size(), kHashDigits).find_first_not_of(kHexDigits) !=
            UStringView::npos) {
        return 0;
    }
    const UStringView digits = kHexDigits.substr(0, 10);
    const std::size_t end = std::min(name.find_first_not_of(digits, kNumberAt), name.size());
    return end > kNumberAt && end - kNumberAt <= 2 ? end : 0;
}

bool IsBesideNameOf(UStringView besideName, UStringView target)
{
    return BesideNameLength(besideName) > 0 &&
           besideName.substr(kBesidePrefix.size(), kHashDigits) == HashText(NamePart(target));
}

}  // namespace kivcore::filesupport
