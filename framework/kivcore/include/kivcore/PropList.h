// Property lists: named values of a few types, kept in small XML files:
//
//     <?xml version="1.0" encoding="UTF-8"?>
//     <proplist version="1">
//       <bool name="shown">true</bool>
//       <int name="count">-3</int>
//       <real name="scale">1.5</real>
//       <text name="title">Caf\u000A\uD800 \\</text>
//       <array name="recent">
//         <text>first</text>
//       </array>
//       <list name="window">
//         <int name="x">12</int>
//       </list>
//     </proplist>
//
// In texts and names a backslash stands doubled, and a unit that XML cannot carry (control
// characters, lone surrogates, U+FFFE and U+FFFF) stands as "\u" and four hexadecimal digits, so
// every text comes back as it was. Real numbers are written so that they read back exactly;
// infinities as "inf" and "-inf", what is no number as "nan".

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <kivcore/Dir.h>
#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::proplist {

class PropList;

/// One value: yes/no, whole number, number, text, list of values, or a nested property list.
class KIVCORE_API PropValue {
public:
    using Array = std::vector<PropValue>;
    using Variant =
        std::variant<bool, std::int64_t, double, UString, Array, std::map<std::string, PropValue>>;

    PropValue() : value_(false) {}
    PropValue(bool value) : value_(value) {}
    PropValue(std::int64_t value) : value_(value) {}
    PropValue(int value) : value_(std::int64_t{value}) {}
    PropValue(double value) : value_(value) {}
    PropValue(UString value) : value_(std::move(value)) {}
    PropValue(UStringView value) : value_(UString(value)) {}
    PropValue(const char16_t* value) : value_(UString(value)) {}
    /// Any other pointer, "text" above all, would become a bool.
    PropValue(const void* value) = delete;
    PropValue(Array value) : value_(std::move(value)) {}
    PropValue(const PropList& value);

    const Variant& Get() const noexcept { return value_; }
    bool operator==(const PropValue& other) const { return value_ == other.value_; }

private:
    Variant value_;
};

/// Values by name (UTF-8), sorted by name.
class KIVCORE_API PropList {
public:
    /// Ill-formed parts of `name` become U+FFFD.
    void Set(const std::string& name, PropValue value);
    void Remove(const std::string& name);
    void Clear() noexcept { values_.clear(); }
    bool IsEmpty() const noexcept { return values_.empty(); }
    /// Null where there is none.
    const PropValue* Find(std::string_view name) const;

    /// The value of that name if it has this type (a number also where a whole number stands), else
    /// `otherwise`.
    bool GetBool(std::string_view name, bool otherwise) const;
    std::int64_t GetInt(std::string_view name, std::int64_t otherwise) const;
    double GetNumber(std::string_view name, double otherwise) const;
    UString GetText(std::string_view name, UStringView otherwise) const;
    PropList GetList(std::string_view name) const;

    const std::map<std::string, PropValue, std::less<>>& Values() const noexcept { return values_; }
    bool operator==(const PropList&) const = default;

private:
    std::map<std::string, PropValue, std::less<>> values_;
};

namespace utils {

/// Reads the file at `path` into `list`. With `merge`, values of other names stay, else they go.
/// Throws FileError (kTooLarge above 16 MiB), or xml::ParseError where the content is not a
/// property list; `list` is then as it was. Needs no parser factory.
KIVCORE_API void LoadPropList(const UString& path, PropList& list, bool merge);

/// Writes `list` to `file`, replacing it as FileReplacement.h tells; makes missing folders. Throws
/// FileError (kTooLarge above 16 MiB), and what WritePropList throws.
KIVCORE_API void SavePropList(const filesupport::File& file, const PropList& list);

/// The XML text of `list`, UTF-8. Throws std::length_error where values are nested deeper than 255
/// levels.
KIVCORE_API std::string WritePropList(const PropList& list);
/// The list that `text` holds. Throws xml::ParseError where it is none or above 16 MiB;
/// `sourceName` stands in the message.
KIVCORE_API PropList ReadPropList(std::string_view text, std::string_view sourceName);

}  // namespace utils

}  // namespace kivcore::proplist
