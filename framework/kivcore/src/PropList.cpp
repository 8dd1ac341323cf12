#include <kivcore/PropList.h>

#include <kivcore/StringConversion.h>

namespace kivcore::proplist {

namespace {

/// The value as a `T`; null where it is missing or of another type.
template <class T>
const T* GetIf(const PropValue* value)
{
    return value ? std::get_if<T>(&value->Get()) : nullptr;
}

}  // namespace

PropValue::PropValue(const PropList& value)
    : value_(std::map<std::string, PropValue>(value.Values().begin(), value.Values().end()))
{
}

void PropList::Set(const std::string& name, PropValue value)
{
    // A file holds well-formed names only, so that two names that differ stay different in it.
    values_.insert_or_assign(
        string::IsWellFormedUTF8(name) ? name : string::UTF16to8(string::UTF8to16(name)),
        std::move(value));
}

void PropList::Remove(const std::string& name)
{
    values_.erase(name);
}

const PropValue* PropList::Find(std::string_view name) const
{
    const auto found = values_.find(name);
    return found == values_.end() ? nullptr : &found->second;
}

bool PropList::GetBool(std::string_view name, bool otherwise) const
{
    const bool* value = GetIf<bool>(Find(name));
    return value ? *value : otherwise;
}

std::int64_t PropList::GetInt(std::string_view name, std::int64_t otherwise) const
{
    const std::int64_t* value = GetIf<std::int64_t>(Find(name));
    return value ? *value : otherwise;
}

double PropList::GetNumber(std::string_view name, double otherwise) const
{
    if (const std::int64_t* whole = GetIf<std::int64_t>(Find(name))) {
        return static_cast<double>(*whole);
    }
    const double* value = GetIf<double>(Find(name));
    return value ? *value : otherwise;
}

UString PropList::GetText(std::string_view name, UStringView otherwise) const
{
    const UString* value = GetIf<UString>(Find(name));
    return value ? *value : UString(otherwise);
}

PropList PropList::GetList(std::string_view name) const
{
    PropList list;
    if (const auto* values = GetIf<std::map<std::string, PropValue>>(Find(name))) {
        list.values_.insert(values->begin(), values->end());
    }
    return list;
}

}  // namespace kivcore::proplist
