// A dictionary written as a text dictionary.

#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace pemtext {

/// Writes the entries of the dictionary file `input` to the file `output`, sorted by their keys,
/// with what `valueOf` makes of each value. Throws Failure, which names the file, also for an image
/// without keys.
void WriteAsText(const std::string& input, const std::string& output,
                 const std::function<std::u16string(std::u16string_view value)>& valueOf);

}  // namespace pemtext
