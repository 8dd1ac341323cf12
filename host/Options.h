// kivhost's command line.

#pragma once

#include <kivxmp/kivxmp_file.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kivhost {

enum class Mode {
    kDialog,
    kDump,             ///< --dump: the trees, no window
    kInsert,           ///< --insert: a packet into photos, no window
    kExtract,          ///< --extract: the packet, no window
    kListDefinitions,  ///< --list-definitions: the custom items, no window
    kHelp,
    kVersion,
};

enum class AutoPress { kNone, kOk, kCancel };

struct Options {
    Mode mode = Mode::kDialog;
    std::vector<std::string> files;  ///< UTF-8; one but for kDump and kInsert
    KivXmpOpenOptions open = {kKivXmpPlaceAuto, kKivXmpSidecarAuto};
    bool dumps = false;  ///< in kInsert afterwards
    bool inserts = false;
    std::string insertFrom;
    std::string extractTo;
    std::string language = "en_US";
    std::uint32_t brightnessPercent = 50;
    float scale = 1;
    std::string text;  ///< the dialog's title
    bool hasText = false;
    std::uint8_t flags = 0;
    bool loadsCustomDefinitions = false;
    std::vector<std::pair<std::string, std::string>> sets;  ///< path and value, in order
    AutoPress autoPress = AutoPress::kNone;
    std::string screenshot;  ///< PNG file; taken before the button is pressed
    std::string view;        ///< view to open first
};

/// The command line is wrong; what() says how.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments behind the program's name, UTF-8. Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

/// What --help prints.
std::string HelpText();

}  // namespace kivhost
