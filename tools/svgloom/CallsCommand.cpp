#include "tools/common/Files.h"
#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/Commands.h"

#include <kivui/ScrivelTargets.h>

#include <new>

namespace svgloom {

int RunCalls(const tools::Arguments& arguments)
{
    const float width = arguments.RequiredNumber("--width");
    const float height = arguments.RequiredNumber("--height");
    DrawSettings settings(arguments);
    return PrintOfArtwork(arguments.Files()[0], [&](Artwork& artwork) {
        settings.ParseSheet();
        const auto target = kivui::scrivel::CreateRecordingTarget([](std::string_view line) {
            tools::Print(line);
            tools::Print("\n");
        });
        if (target == nullptr)
            throw std::bad_alloc();
        artwork.Draw(settings, settings.Colors(), width, height, *target);
    });
}

}  // namespace svgloom
