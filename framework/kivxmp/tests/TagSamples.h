// Tags as a decoder gives them, and properties printed in one line, for the tests of the mapping.

#pragma once

#include "framework/kivxmp/src/TagMapping.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kivxmp::photo {

using Value = TagValue;

inline Value Text(std::string_view bytes)
{
    return {"", std::string(bytes), {}};
}

inline Value Ratios(std::vector<Ratio> ratios)
{
    return {"", "", std::move(ratios)};
}

inline Value Whole(const std::vector<int>& numbers)
{
    Value value;
    for (const int number : numbers) {
        value.numbers.push_back({number, 1});
    }
    return value;
}

inline Value Named(std::string_view name, Value value)
{
    value.name = name;
    return value;
}

/// "dc:subject bag = sea | sky".
inline std::string Print(const MappedProperty& property)
{
    std::string line = std::string(property.prefix) + ":" + std::string(property.name);
    switch (property.form) {
        case MappedForm::kText:
            break;
        case MappedForm::kLanguage:
            line += "[@x-default]";
            break;
        case MappedForm::kBag:
            line += " bag";
            break;
        case MappedForm::kSeq:
            line += " seq";
            break;
        case MappedForm::kFields:
            line += " {";
            for (const auto& [name, text] : property.fields) {
                line += (line.ends_with("{") ? "" : " ") + name + "=" + text;
            }
            return line + "}";
    }
    line += " = ";
    for (std::size_t i = 0; i < property.texts.size(); ++i) {
        line += (i == 0 ? "" : " | ") + property.texts[i];
    }
    return line;
}

/// Exif and IIM tags in one list.
inline std::vector<MappedProperty> Map(const std::vector<Value>& values)
{
    TagList exif;
    TagList iim;
    for (const Value& value : values) {
        (value.name.starts_with("Iptc.") ? iim : exif).values.push_back(value);
    }
    return MapTags(exif, iim);
}

/// What the tags say of one property, and by which tag; "" for nothing.
inline std::string MapOne(const std::vector<Value>& values, std::string_view property)
{
    for (const MappedProperty& mapped : Map(values)) {
        if (std::string(mapped.prefix) + ":" + std::string(mapped.name) == property) {
            return Print(mapped) + " (" + std::string(mapped.tag) + ")";
        }
    }
    return "";
}

}  // namespace kivxmp::photo
