// The string literals of source code, as far as dictionaries are concerned.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pemtext {

struct Literal {
    std::string text;  // escapes resolved, adjacent ones joined, UTF-8
    std::size_t line;  // where it begins
};

/// Those of C, C++ and what is like them. Comments and characters are passed over.
std::vector<Literal> LiteralsOfCode(std::string_view source);

/// What stands in quotes or between tags in XML.
std::vector<Literal> LiteralsOfXml(std::string_view source);

}  // namespace pemtext
