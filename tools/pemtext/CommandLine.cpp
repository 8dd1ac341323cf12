#include "tools/pemtext/CommandLine.h"

#include <algorithm>

namespace pemtext {

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
        if (!row->takesValue) {
            if (equals != std::string::npos)
                throw UsageError("option " + name + " takes no value");
            given_.push_back({row->name, ""});
        } else if (equals != std::string::npos) {
            given_.push_back({row->name, word.substr(equals + 1)});
        } else if (i + 1 < words.size()) {
            given_.push_back({row->name, words[++i]});
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

std::string Arguments::Required(std::string_view option) const
{
    if (const std::optional<std::string> value = Value(option))
        return *value;
    throw UsageError("option " + std::string(option) + " is missing");
}

std::string Arguments::Choice(std::string_view option,
                              std::span<const std::string_view> choices) const
{
    const std::string value = Value(option).value_or(std::string(choices.front()));
    if (std::ranges::find(choices, value) == choices.end())
        throw UsageError("option " + std::string(option) + " does not take \"" + value + "\"");
    return value;
}

}  // namespace pemtext
