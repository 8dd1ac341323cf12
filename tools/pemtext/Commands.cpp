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

constexpr OptionRow kStatsOptions[] = {{"--format", true}};
constexpr OptionRow kMergeOptions[] = {{"-o", true}, {"--keep-obsolete", false}};
constexpr OptionRow kPseudoOptions[] = {
    {"-o", true}, {"--accented", false}, {"--bidi", false}, {"--longer", true}};
constexpr OptionRow kToPoOptions[] = {{"-o", true}, {"--language", true}};

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
    {"stats", "[--format text|json] BASE FILE...",
     "Tells how much of BASE each file covers: texts that are missing, marked as untranslated,\n"
     "extra, and equal to those of BASE.\n"
     "  --format FORMAT     text (if not given) or json, one object a line\n",
     kStatsOptions, 2, kAnyNumber, RunStats},
    {"extract", "SOURCE... [-o OUT]",
     "Writes the reference dictionary of source code or XML: the defaults of all literals of the\n"
     "form \"$$$/Key=default\", sorted by key.\n"
     "  -o OUT              the dictionary; if not given, standard output\n",
     kOutputOptions, 1, kAnyNumber, RunExtract},
    {"merge", "REFERENCE TRANSLATION -o OUT [--keep-obsolete]",
     "Brings a translation up to a new reference, in the reference's order. New texts are taken\n"
     "from the reference and marked with \"#{comment} untranslated\", until that is removed; "
     "texts\n"
     "that it lacks are dropped.\n"
     "  -o OUT              the new translation\n"
     "  --keep-obsolete     put texts that the reference lacks at the end\n",
     kMergeOptions, 2, 2, RunMerge},
    {"pseudo", "FILE -o OUT [--accented] [--bidi] [--longer N%]",
     "Makes a test language that shows what is cut off or not translated.\n"
     "  -o OUT              the dictionary\n"
     "  --accented          accents on all letters\n"
     "  --bidi              words from right to left\n"
     "  --longer N%         longer by so much, between brackets\n",
     kPseudoOptions, 1, 1, RunPseudo},
    {"to-po", "BASE [TRANSLATION] -o OUT [--language LANGUAGE]",
     "Writes a gettext PO file: keys as msgctxt, texts of BASE as msgid, of TRANSLATION as "
     "msgstr.\n"
     "  -o OUT              the PO file\n"
     "  --language LANGUAGE for its header, such as de or pt_BR\n",
     kToPoOptions, 1, 2, RunToPo},
    {"from-po", "FILE -o OUT",
     "Writes the dictionary of a gettext PO file. Messages that are not translated, fuzzy or\n"
     "obsolete are left out.\n"
     "  -o OUT              the dictionary\n",
     kOutputOptions, 1, 1, RunFromPo},
};

}  // namespace

std::span<const Command> Commands()
{
    return kCommands;
}

}  // namespace pemtext
