// pemtext: looks into dictionaries, converts and checks them.

#include "tools/pemtext/Commands.h"

#ifndef KIV_VERSION
#error "the build names the version"
#endif

int main(int argc, char** argv)
{
    return tools::RunProgram({"pemtext", "Looks into dictionaries, converts and checks them.\n",
                              KIV_VERSION, pemtext::Commands()},
                             argc, argv);
}
