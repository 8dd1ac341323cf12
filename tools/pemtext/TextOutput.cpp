#include "tools/pemtext/TextOutput.h"

#include "dictionary/Dictionary.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/EntryList.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/TextForm.h"

namespace pemtext {

void WriteAsText(const std::string& input, const std::string& output,
                 const std::function<std::u16string(std::u16string_view value)>& valueOf)
{
    morvish::Dictionary dictionary;
    LoadCleanly(dictionary, input);
    const EntryList entries(dictionary);
    if (!entries.Bare().empty())
        throw Failure(input + ": an image without keys cannot be written as text");
    WriteOutput(output, [&](std::ostream& out) {
        for (const EntryList::Entry& entry : entries.Keyed())
            out << TextLine(entry.key, valueOf(entry.value));
    });
}

}  // namespace pemtext
