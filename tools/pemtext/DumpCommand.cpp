#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/EntryList.h"
#include "tools/pemtext/Files.h"

#include <string>

namespace pemtext {

int RunDump(const Arguments& arguments)
{
    const Loader loader = arguments.Has("--memory") ? Loader::kMemory : Loader::kStream;
    morvish::Dictionary dictionary;
    for (const std::string& file : arguments.Files())
        LoadInto(dictionary, file, loader);

    const EntryList entries(dictionary);
    for (const EntryList::Entry& entry : entries.Keyed())
        Print("{\"key\":" + JsonByteString(entry.key) + ",\"value\":" + JsonString(entry.value) +
              "}\n");
    for (const std::u16string_view value : entries.Bare())
        Print("{\"key\":null,\"value\":" + JsonString(value) + "}\n");
    const char* const header = dictionary.HeaderText();
    Print(std::string("{\"valid\":") + (dictionary.Valid() ? "true" : "false") +
          ",\"major\":" + std::to_string(dictionary.MajorVersion()) +
          ",\"minor\":" + std::to_string(dictionary.MinorVersion()) +
          ",\"header\":" + (header != nullptr ? JsonByteString(header) : "null") +
          ",\"count\":" + std::to_string(dictionary.EntryCount()) + "}\n");
    return kDone;
}

}  // namespace pemtext
