#include "svgloom/src/NamedColors.h"
#include "tools/common/Files.h"
#include "tools/common/Json.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/JsonValues.h"

namespace svgloom {

int RunNames(const tools::Arguments&)
{
    for (const SVGLoom::NamedColor& row : SVGLoom::NamedColorTable())
        tools::Print("{\"name\":" + tools::JsonUtf8String(row.name) +
                     ",\"color\":" + JsonColor(row.color) + "}\n");
    return tools::kDone;
}

}  // namespace svgloom
