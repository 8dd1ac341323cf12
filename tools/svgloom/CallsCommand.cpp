#include "tools/common/Files.h"
#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/JsonValues.h"

#include <kivui/ScrivelTargets.h>

#include <exception>
#include <new>

namespace svgloom {

int RunCalls(const tools::Arguments& arguments)
{
    const float width = arguments.RequiredNumber("--width");
    const float height = arguments.RequiredNumber("--height");
    DrawSettings settings(arguments);
    const std::string& file = arguments.Files()[0];
    const std::string text = tools::ReadInput(file);
    const auto tell = [&](const std::string& what) {
        tools::Tell("svgloom: " + tools::NameOf(file) + ": " + what + "\n");
    };
    try {
        Artwork artwork(text);
        if (!artwork.XmlError().empty())
            tell("malformed XML: " + artwork.XmlError());
        settings.ParseSheet();
        const auto target = kivui::scrivel::CreateRecordingTarget([](std::string_view line) {
            tools::Print(line);
            tools::Print("\n");
        });
        if (target == nullptr)
            throw std::bad_alloc();
        artwork.Draw(settings, settings.Colors(), width, height, *target);
    } catch (const std::exception& error) {
        tools::Print(JsonError(error.what()) + "\n");
        tell(error.what());
        return tools::kBad;
    }
    return tools::kDone;
}

}  // namespace svgloom
