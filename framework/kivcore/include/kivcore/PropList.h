// Property lists: named values of a few types, kept in small XML files.

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
/// Throws FileError, or xml::ParseError where the content is not a property list; `list` is then as
/// it was.
KIVCORE_API void LoadPropList(const UString& path, PropList& list, bool merge);

/// Writes `list` to `file`, replacing it as FileReplacement.h tells. Throws FileError.
KIVCORE_API void SavePropList(const filesupport::File& file, const PropList& list);

/// The XML text of `list`, UTF-8, and back (throws xml::ParseError).
KIVCORE_API std::string WritePropList(const PropList& list);
KIVCORE_API PropList ReadPropList(std::string_view text, std::string_view sourceName);

}  // namespace utils

}  // namespace kivcore::proplist
