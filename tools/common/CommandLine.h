// A command's arguments: options, told by a table, and files.

#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// The command line is wrong: exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The input or the output is bad: exit status 1.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A text that is one number and nothing else. One that is too large for a float is infinite.
std::optional<float> ParseFloat(std::string_view text);

struct OptionRow {
    std::string_view name;  // with its dashes
    bool takesValue;
    std::string_view meant = {};  // the option that this is another name of
};

class Arguments {
public:
    /// @param words  those behind the command's name. "--name value" and "--name=value" are the
    ///               same, "-" is a file, and behind "--" everything is one. The last one of an
    ///               option that comes again counts.
    /// Throws UsageError for an option that is not in the table, one without its value, and one
    /// with a value that takes none.
    Arguments(std::span<const OptionRow> options, std::span<const std::string> words);

    const std::vector<std::string>& Files() const { return files_; }
    bool Has(std::string_view option) const { return Value(option).has_value(); }

    /// The option's value, "" for one that takes none. An option is asked for by its main name.
    std::optional<std::string> Value(std::string_view option) const;

    /// Those of an option that may come again, in order.
    std::vector<std::string> Values(std::string_view option) const;

    /// The same as Value. Throws UsageError if the option is not there.
    std::string Required(std::string_view option) const;

    /// The same as a number. Throws UsageError for any other text as well.
    float RequiredNumber(std::string_view option) const;
    std::optional<float> Number(std::string_view option) const;

    /// The value, which must be one of `choices`, the first one where the option is not there.
    /// Throws UsageError.
    std::string Choice(std::string_view option, std::span<const std::string_view> choices) const;

private:
    struct Given {
        std::string_view option;
        std::string value;
    };

    std::vector<std::string> files_;
    std::vector<Given> given_;
};

}  // namespace tools
