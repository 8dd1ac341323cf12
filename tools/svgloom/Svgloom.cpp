// svgloom: draws artwork, shows how it is drawn, and checks it.

#include "tools/svgloom/Commands.h"

#ifndef KIV_VERSION
#error "the build names the version"
#endif

int main(int argc, char** argv)
{
    return tools::RunProgram({"svgloom", KIV_VERSION, svgloom::Commands()}, argc, argv);
}
