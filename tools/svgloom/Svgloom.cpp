// svgloom: draws artwork, shows how it is drawn, and checks it.

#include "tools/svgloom/Commands.h"

#ifndef KIV_VERSION
#error "the build names the version"
#endif

int main(int argc, char** argv)
{
    return tools::RunProgram(
        {"svgloom",
         "Draws SVG artwork as the user interface does (render), finds what it does not draw or\n"
         "draws differently (check), and shows how the engine reads and draws it (the others).\n",
         KIV_VERSION, svgloom::Commands()},
        argc, argv);
}
