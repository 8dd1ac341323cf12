// A library that makes a node manager of its own, as kivmetadataapi does.

#include <kivui/NodeManager.h>

namespace {

class TestNodeManager : public kivui::ui::OS_NodeManager {};

}  // namespace

extern "C" __declspec(dllexport) kivui::ui::UI_NodeManager* MakeNodeManager();

extern "C" kivui::ui::UI_NodeManager* MakeNodeManager()
{
    return new TestNodeManager;
}
