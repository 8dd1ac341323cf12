#include "tools/svgloom/Commands.h"

namespace svgloom {

namespace {

using tools::OptionRow;

constexpr OptionRow kCallsOptions[] = {{"--width", true},
                                       {"-w", true, "--width"},
                                       {"--height", true},
                                       {"-h", true, "--height"},
                                       {"--id", true},
                                       {"-i", true, "--id"},
                                       {"--export-id", true, "--id"},
                                       {"--css", true},
                                       {"--stylesheet", true, "--css"},
                                       {"--var", true}};
constexpr OptionRow kLinesOptions[] = {{"--lines", true}};
constexpr OptionRow kColorOptions[] = {{"--current-color", false}, {"--lines", true}};

constexpr tools::Command kCommands[] = {
    {"calls", "FILE --width W --height H [--id ID] [--css CSSFILE] [--var NAME=R,G,B,A]...",
     "Prints what the drawing layer is asked to do for the artwork, one JSON object a line.\n"
     "  -w, --width W       the size that the artwork is fitted into, in pixels\n"
     "  -h, --height H\n"
     "  -i, --id, --export-id ID\n"
     "                      draw this element and what is below it\n"
     "  --css, --stylesheet CSSFILE\n"
     "                      a style sheet for this draw, as the user interface attaches it\n"
     "  --var NAME=R,G,B,A  the colour of var(--NAME), four numbers in 0..1; may come again\n",
     kCallsOptions, 1, 1, RunCalls},
    {"path", "'D' | --lines FILE",
     "Prints the segments of path data, as the renderer gets them.\n"
     "  --lines FILE        read JSON strings from FILE, one a line, a result for each\n",
     kLinesOptions, 0, 1, RunPath},
    {"transform", "'LIST' | --lines FILE",
     "Prints whether a list of transform functions is read to its end, and the matrix of what was\n"
     "read.\n"
     "  --lines FILE        read JSON strings from FILE, one a line, a result for each\n",
     kLinesOptions, 0, 1, RunTransform},
    {"color", "[--current-color] 'TEXT' | --lines FILE",
     "Prints what a colour value is read as: result 0 for a colour and 1 for none, and the rest "
     "of\n"
     "the text behind what was read.\n"
     "  --current-color     take \"currentColor\", as most properties do\n"
     "  --lines FILE        read JSON strings from FILE, one a line, a result for each\n",
     kColorOptions, 0, 1, RunColor},
    {"css", "FILE | --lines FILE",
     "Prints the rules of a style sheet: its selectors by kind (types, classes, ids, others) and\n"
     "name, each with its declarations by name.\n"
     "  --lines FILE        read JSON strings from FILE, one a line, a result for each\n",
     kLinesOptions, 0, 1, RunCss},
    {"names",
     "",
     "Prints the named colours in the order in which they are looked up.\n",
     {},
     0,
     0,
     RunNames},
};

}  // namespace

std::span<const tools::Command> Commands()
{
    return kCommands;
}

}  // namespace svgloom
