#include "tools/svgloom/Commands.h"

#include <limits>

namespace svgloom {

namespace {

using tools::OptionRow;

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

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
constexpr OptionRow kRenderOptions[] = {{"-o", true},
                                        {"--output", true, "-o"},
                                        {"--out-dir", true},
                                        {"--width", true},
                                        {"-w", true, "--width"},
                                        {"--height", true},
                                        {"-h", true, "--height"},
                                        {"--zoom", true},
                                        {"-z", true, "--zoom"},
                                        {"--scale", true, "--zoom"},
                                        {"--background", true},
                                        {"-b", true, "--background"},
                                        {"--background-color", true, "--background"},
                                        {"--id", true},
                                        {"-i", true, "--id"},
                                        {"--export-id", true, "--id"},
                                        {"--css", true},
                                        {"--stylesheet", true, "--css"},
                                        {"--var", true},
                                        {"--contact-sheet", true},
                                        {"--brightness", true},
                                        {"--scales", true}};
constexpr OptionRow kCheckOptions[] = {{"--strict", false}, {"--format", true}, {"--ignore", true}};
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
    {"render", "FILE... -o OUT.png | --out-dir DIR | --contact-sheet OUT.png [OPTION...]",
     "Draws artwork into PNG files.\n"
     "Where they go:\n"
     "  -o, --output OUT.png\n"
     "                      the picture of a single FILE; \"-\" is standard output\n"
     "  --out-dir DIR       DIR/NAME.png for each FILE; DIR is made if need be\n"
     "  --contact-sheet OUT.png\n"
     "                      one picture of all, with their names, in colours of the user\n"
     "                      interface's theme; goes together with the others\n"
     "Size:\n"
     "  -w, --width W       in pixels; if only one of the two is given, the other follows from\n"
     "  -h, --height H      the viewBox; if none is, the viewBox gives both\n"
     "  -z, --zoom, --scale ZOOM\n"
     "                      multiplies both. Sizes are rounded up, and end at 32767 pixels.\n"
     "What is drawn:\n"
     "  -b, --background, --background-color COLOR\n"
     "                      #rgb, #rrggbb, rgb(r,g,b), a name, or none (if not given)\n"
     "  -i, --id, --export-id ID\n"
     "                      this element and what is below it; with an id that is not there,\n"
     "                      nothing\n"
     "  --css, --stylesheet CSSFILE\n"
     "                      a style sheet for this draw, as the user interface attaches it\n"
     "  --var NAME=R,G,B,A  the colour of var(--NAME), four numbers in 0..1; may come again\n"
     "The contact sheet:\n"
     "  --brightness LIST   of the theme, in percent: a band for each, such as 0,50,100; if not\n"
     "                      given, 100. Its colours stand behind the variables of icons.\n"
     "  --scales LIST       each FILE at each of them, such as 1,1.5,2,3; if not given, 1\n"
     "A file that cannot be drawn is told and left out; the exit status is 1 then.\n",
     kRenderOptions, 1, kAnyNumber, RunRender},
    {"check", "[--strict] [--format text|json] [--ignore ID]... FILE...",
     "Finds what of artwork is not drawn, or drawn differently from other programs, with the\n"
     "place, and says what to do instead: FILE:LINE:COLUMN: severity: message [id]\n"
     "  error               something is never drawn; the exit status is 1\n"
     "  warning             something is drawn differently\n"
     "  --strict            the exit status is 1 for warnings too\n"
     "  --format text|json  lines to read, or a JSON object for each finding\n"
     "  --ignore ID         do not tell findings of this id; may come again\n"
     "docs/artwork-check.md lists all ids. FILE \"-\" is standard input.\n",
     kCheckOptions, 1, kAnyNumber, RunCheck},
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
    {"tree",
     "FILE",
     "Prints the parsed document as one JSON value: its viewBox and its elements with their kind,\n"
     "id, style and path. What only an id leads to, such as the contents of defs, follows under\n"
     "\"byId\". It is for looking at, and may change from version to version.\n",
     {},
     1,
     1,
     RunTree},
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
