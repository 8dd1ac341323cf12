#include "tools/common/CommandLine.h"

#include <algorithm>
#include <charconv>

namespace tools {

namespace {

template <class Number>
std::optional<Number> Parse(std::string_view text)
{
    Number value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    return value;
}

}  // namespace

std::optional<float> ParseFloat(std::string_view text)
{
    if (const auto value = Parse<float>(text))
        return value;
    // Out of a float's range, into which the wider number is brought.
    if (const auto value = Parse<double>(text))
        return static_cast<float>(*value);
    return std::nullopt;
}

Arguments::Arguments(std::span<const OptionRow> options, std::span<const std::string> words)
{
    bool onlyFiles = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (onlyFiles || word == "-" || !word.starts_with("-")) {
            files_.push_back(word);
            continue;
        }
        if (word == "--") {
            onlyFiles = true;
            continue;
        }
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const auto row = std::ranges::find(options, name, &OptionRow::name);
        if (row == options.end())
            throw UsageError("unknown option " + name);
        const std::string_view meant = row->meant.empty() ? row->name : row->meant;
        if (!row->takesValue) {
            if (equals != std::string::npos)
                throw UsageError("option " + name + " takes no value");
            given_.push_back({meant, ""});
        } else if (equals != std::string::npos) {
            given_.push_back({meant, word.substr(equals + 1)});
        } else if (i + 1 < words.size()) {
            given_.push_back({meant, words[++i]});
        } else {
            throw UsageError("option " + name + " needs a value");
        }
    }
}

std::optional<std::string> Arguments::Value(std::string_view option) const
{
    const auto found = std::find_if(given_.rbegin(), given_.rend(),
                                    [&](const Given& given) { return given.option == option; });
    return found != given_.rend() ? std::optional(found->value) : std::nullopt;
}

std::vector<std::string> Arguments::Values(std::string_view option) const
{
    std::vector<std::string> values;
    for (const Given& given : given_) {
        if (given.option == option)
            values.push_back(given.value);
    }
    return values;
}

std::string Arguments::Required(std::string_view option) const
{
    if (const std::optional<std::string> value = Value(option))
        return *value;
    throw UsageError("option " + std::string(option) + " is missing");
}

float Arguments::RequiredNumber(std::string_view option) const
{
    Required(option);
    return *Number(option);
}

std::optional<float> Arguments::Number(std::string_view option) const
{
    const std::optional<std::string> text = Value(option);
    if (!text)
        return std::nullopt;
    if (const std::optional<float> value = ParseFloat(*text))
        return value;
    throw UsageError("option " + std::string(option) + " does not take \"" + *text + "\"");
}

std::string Arguments::Choice(std::string_view option,
                              std::span<const std::string_view> choices) const
{
    const std::string value = Value(option).value_or(std::string(choices.front()));
    if (std::ranges::find(choices, value) == choices.end())
        throw UsageError("option " + std::string(option) + " does not take \"" + value + "\"");
    return value;
}

}  // namespace tools
