// What a check has to say, line by line, and how it is printed.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

enum class Severity { kError, kWarning, kNote };

struct Finding {
    std::string file;
    std::size_t line;
    Severity severity;
    std::string message;
    std::string_view id;
    std::size_t column = 0;  // from 1; 0: the line as a whole
};

class Findings {
public:
    void Add(Finding finding);

    /// As text, or as one JSON object a line, in the order in which they were added, with a last
    /// line that counts.
    void PrintAll(bool asJson) const;

    std::size_t Errors() const { return Count(Severity::kError); }
    std::size_t Warnings() const { return Count(Severity::kWarning); }

private:
    std::size_t Count(Severity severity) const;

    std::vector<Finding> findings_;
};

}  // namespace tools
