#include "tools/pemtext/Commands.h"

#include <limits>

namespace pemtext {

namespace {

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

constexpr OptionRow kDumpOptions[] = {{"--memory", false}};
constexpr OptionRow kLookupOptions[] = {
    {"--fallback", true}, {"--utf8", false}, {"--raw", false}, {"--keys", true}};
constexpr OptionRow kLocalizeOptions[] = {{"--keys", true}};
constexpr OptionRow kValueOptions[] = {{"--markers-only", false}};
constexpr OptionRow kCompileOptions[] = {
    {"-o", true}, {"--byte-order", true}, {"--store-flag", true}, {"--header", true}};
constexpr OptionRow kOutputOptions[] = {{"-o", true}};
constexpr OptionRow kCheckOptions[] = {
    {"--reference", true}, {"--strict", false}, {"--format", true}};

constexpr Command kCommands[] = {
    {"dump", "[--memory] FILE...",
     "Loads the files one after the other into one dictionary and prints each entry, sorted by\n"
     "key, and a summary. Entries of an image without keys follow by number.\n"
     "  --memory            load from memory instead of through a stream\n",
     kDumpOptions, 1, kAnyNumber, RunDump},
    {"lookup", "FILE [--fallback FILE2] [--utf8] [--raw] --keys KEYS",
     "Looks up the keys of the file KEYS, which holds one JSON string a line.\n"
     "  --keys KEYS         the keys, each \"$$$/Path=default\"\n"
     "  --fallback FILE2    a dictionary to ask where FILE lacks the key\n"
     "  --utf8              the defaults are UTF-8\n"
     "  --raw               the raw look-up: no default, null where nothing is found\n",
     kLookupOptions, 1, 1, RunLookup},
    {"localize", "[FILE] --keys KEYS",
     "The same as the library's localizer answers; without FILE it has no dictionary.\n"
     "  --keys KEYS         the keys, in UTF-8\n",
     kLocalizeOptions, 0, 1, RunLocalize},
    {"value", "[--markers-only]",
     "Reads JSON strings from standard input, one a line, and prints each as a dictionary's\n"
     "value comes out.\n"
     "  --markers-only      resolve #{markers}, leave escapes\n",
     kValueOptions, 0, 0, RunValue},
    {"compile", "FILE -o OUT [--byte-order little|big] [--store-flag 0|1] [--header TEXT]",
     "Writes a binary image of what FILE holds.\n"
     "  -o OUT              the image\n"
     "  --byte-order ORDER  little (if not given) or big\n"
     "  --store-flag FLAG   0 or 1; if not given, that of an image stays\n"
     "  --header TEXT       if not given, that of an image stays, else \"en_US\"\n",
     kCompileOptions, 1, 1, RunCompile},
    {"export", "FILE -o OUT",
     "Writes the engine's text export. It is for looking at: it has no line ends and cannot be\n"
     "read back.\n"
     "  -o OUT              the export\n",
     kOutputOptions, 1, 1, RunExport},
    {"text", "FILE -o OUT",
     "Writes a text dictionary that reads back to the same entries, sorted by key.\n"
     "  -o OUT              the text\n",
     kOutputOptions, 1, 1, RunText},
    {"check", "[--reference BASE] [--strict] [--format text|json] FILE...",
     "Tells what a translator should look at: lines that are dropped or cut, keys that are\n"
     "defined twice or by accident, unknown markers and escapes. Exit status 1 for errors.\n"
     "  --reference BASE    compare keys, placeholders and end punctuation with BASE\n"
     "  --strict            exit status 1 for warnings, too\n"
     "  --format FORMAT     text (if not given) or json, one object a line\n",
     kCheckOptions, 1, kAnyNumber, RunCheck},
};

}  // namespace

std::span<const Command> Commands()
{
    return kCommands;
}

}  // namespace pemtext
