#include "host/Options.h"

#include <charconv>
#include <functional>
#include <string_view>

namespace kivhost {

namespace {

template <class T>
T ParseNumber(const std::string& name, const std::string& text)
{
    T value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        throw UsageError(name + ": '" + text + "' is not a number it takes");
    }
    return value;
}

// The first "=" that does not belong to a namespace in braces.
std::size_t FindAssignment(std::string_view text)
{
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '{') {
            ++depth;
        } else if (text[i] == '}') {
            --depth;
        } else if (text[i] == '=' && depth <= 0) {
            return i;
        }
    }
    return std::string_view::npos;
}

void AddSet(Options& options, const std::string& text)
{
    const std::size_t assignment = FindAssignment(text);
    if (assignment == std::string_view::npos || assignment == 0) {
        throw UsageError("--set: '" + text + "' is not PATH=VALUE");
    }
    options.sets.emplace_back(text.substr(0, assignment), text.substr(assignment + 1));
}

AutoPress ParseAuto(const std::string& text)
{
    if (text == "ok") {
        return AutoPress::kOk;
    }
    if (text == "cancel") {
        return AutoPress::kCancel;
    }
    throw UsageError("--auto: '" + text + "' is neither ok nor cancel");
}

int ParsePlace(const std::string& text)
{
    if (text == "photo") {
        return kKivXmpPlaceEmbedded;
    }
    if (text == "sidecar") {
        return kKivXmpPlaceSidecar;
    }
    throw UsageError("--place: '" + text + "' is neither photo nor sidecar");
}

int ParseSidecarName(const std::string& text)
{
    if (text == "full") {
        return kKivXmpSidecarFull;
    }
    if (text == "short") {
        return kKivXmpSidecarShort;
    }
    throw UsageError("--sidecar-name: '" + text + "' is neither full nor short");
}

// One option. Without an argument's name it takes none.
struct Row {
    const char* name;
    const char* argument;
    const char* help;
    void (*apply)(Options& options, const std::string& value);
};

constexpr Row kRows[] = {
    {"--language", "xx_YY", "language of the dialog (default en_US)",
     [](Options& options, const std::string& value) { options.language = value; }},
    {"--brightness", "N", "brightness of the dialog in percent, 0 dark to 100 light (default 50)",
     [](Options& options, const std::string& value) {
         options.brightnessPercent = ParseNumber<std::uint32_t>("--brightness", value);
     }},
    {"--scale", "F", "scale of the dialog (default 1)",
     [](Options& options, const std::string& value) {
         options.scale = ParseNumber<float>("--scale", value);
     }},
    {"--text", "T", "title of the dialog (default: the file's name)",
     [](Options& options, const std::string& value) {
         options.text = value;
         options.hasText = true;
     }},
    {"--flags", "N", "1: read-only; 2: without camera view and list of all properties; 3: both",
     [](Options& options, const std::string& value) {
         options.flags = ParseNumber<std::uint8_t>("--flags", value);
     }},
    {"--view", "NAME", "view to open first, by name or label",
     [](Options& options, const std::string& value) { options.view = value; }},
    {"--place", "photo|sidecar",
     "where the packet is kept (default: in the photo where its format is written, else in a\n"
     "sidecar)",
     [](Options& options, const std::string& value) { options.open.place = ParsePlace(value); }},
    {"--sidecar-name", "full|short",
     "the sidecar of NAME.EXT: NAME.EXT.xmp or NAME.xmp (default: the one that is there; of\n"
     "both, or for a new one, the full name)",
     [](Options& options, const std::string& value) {
         options.open.sidecar = ParseSidecarName(value);
     }},
    {"--custom-definitions", nullptr, "have the list of custom items built at start-up",
     [](Options& options, const std::string&) { options.loadsCustomDefinitions = true; }},
    {"--set", "PATH=VALUE",
     "type VALUE into the field of the property, as in dc:title[@de]=Meer; may be repeated",
     AddSet},
    {"--auto", "ok|cancel", "press that button once all values are typed",
     [](Options& options, const std::string& value) { options.autoPress = ParseAuto(value); }},
    {"--screenshot", "OUT.png", "write a picture of the dialog before the button is pressed",
     [](Options& options, const std::string& value) { options.screenshot = value; }},
    {"--dump", nullptr,
     "print the metadata as JSON lines (path, form, value, source; of several files, the file\n"
     "in front); the source is \"packet\"; of what the packet lacks and other places tell,\n"
     "\"sidecar\", \"embedded\", \"exif\" or \"iim\", with a file or tag as detail; opens no\n"
     "window",
     [](Options& options, const std::string&) { options.dumps = true; }},
    {"--insert", "IN.xmp",
     "put that packet ('-': standard input) into each photo or its sidecar, in place of the\n"
     "whole old one; then --dump, if that is given, too; opens no window",
     [](Options& options, const std::string& value) {
         options.inserts = true;
         options.insertFrom = value;
     }},
    {"--extract", "OUT.xmp", "write the packet to a file ('-': standard output); opens no window",
     [](Options& options, const std::string& value) {
         options.mode = Mode::kExtract;
         options.extractTo = value;
     }},
    {"--list-definitions", nullptr, "print the custom items as JSON lines; opens no window",
     [](Options& options, const std::string&) {
         options.mode = Mode::kListDefinitions;
         options.loadsCustomDefinitions = true;
     }},
    {"--help", nullptr, "print this text",
     [](Options& options, const std::string&) { options.mode = Mode::kHelp; }},
    {"--version", nullptr, "print the version",
     [](Options& options, const std::string&) { options.mode = Mode::kVersion; }},
};

const Row* FindRow(std::string_view name)
{
    for (const Row& row : kRows) {
        if (name == row.name) {
            return &row;
        }
    }
    return nullptr;
}

void CheckTogether(const Options& options)
{
    const bool takesMany = options.mode == Mode::kDump || options.mode == Mode::kInsert;
    if (options.mode != Mode::kListDefinitions && options.files.empty()) {
        throw UsageError("no file given");
    }
    if (!takesMany && options.files.size() > 1) {
        throw UsageError("more than one file given: '" + options.files[1] + "'");
    }
    if (!takesMany && (options.inserts || options.dumps)) {
        throw UsageError("--extract and --list-definitions stand alone");
    }
    const bool hasPress = options.autoPress != AutoPress::kNone;
    if (options.mode != Mode::kDialog &&
        (hasPress || !options.sets.empty() || !options.screenshot.empty())) {
        throw UsageError(
            "--set, --auto and --screenshot are for the dialog, which is not to be opened");
    }
    if (!hasPress && !options.screenshot.empty()) {
        throw UsageError("--screenshot needs --auto");
    }
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyFiles || argument.size() < 2 || argument[0] != '-') {
            options.files.push_back(argument);
            continue;
        }
        if (argument == "--") {
            onlyFiles = true;
            continue;
        }
        // "--name=value" and "--name value" are the same.
        const std::size_t assignment = argument.find('=');
        const Row* const row = FindRow(std::string_view(argument).substr(0, assignment));
        if (row == nullptr) {
            throw UsageError("unknown option '" + argument + "'");
        }
        std::string value;
        if (row->argument == nullptr) {
            if (assignment != std::string::npos) {
                throw UsageError(std::string(row->name) + " takes no value");
            }
        } else if (assignment != std::string::npos) {
            value = argument.substr(assignment + 1);
        } else if (++i < arguments.size()) {
            value = arguments[i];
        } else {
            throw UsageError(std::string(row->name) + " needs " + row->argument);
        }
        row->apply(options, value);
    }
    if (options.mode == Mode::kDialog && (options.inserts || options.dumps)) {
        options.mode = options.inserts ? Mode::kInsert : Mode::kDump;
    }
    if (options.mode != Mode::kHelp && options.mode != Mode::kVersion) {
        CheckTogether(options);
    }
    return options;
}

std::string HelpText()
{
    constexpr std::size_t kHelpColumn = 26;
    std::string text =
        "usage: kivhost [options] FILE\n"
        "       kivhost --dump FILE...\n"
        "       kivhost --insert IN.xmp [--dump] FILE...\n"
        "Shows a photo's metadata in the dialog, and saves what was changed; or does without the\n"
        "dialog what the options say. Files are photos and sidecars (.xmp).\n"
        "\n";
    for (const Row& row : kRows) {
        std::string head = std::string("  ") + row.name;
        if (row.argument != nullptr) {
            head += std::string(" ") + row.argument;
        }
        if (head.size() + 2 > kHelpColumn) {
            text += head + "\n" + std::string(kHelpColumn, ' ');
        } else {
            text += head + std::string(kHelpColumn - head.size(), ' ');
        }
        for (const char c : std::string_view(row.help)) {
            text += c;
            if (c == '\n') {
                text += std::string(kHelpColumn, ' ');
            }
        }
        text += '\n';
    }
    text +=
        "\n"
        "Prints \"confirmed\" or \"cancelled\", then each change: path, old and new value as "
        "JSON,\n"
        "separated by tabs. Exit status: 0 confirmed, 2 cancelled, 1 failed.\n"
        "\n"
        "Of several files, one that fails does not stop the others: standard error tells the\n"
        "reason, at the end how many were written, unchanged and refused, and how far a long run\n"
        "is. A packet that is there already writes nothing. Ctrl-C stops between two files. Exit\n"
        "status: 0 all done, 1 some failed.\n";
    return text;
}

}  // namespace kivhost
