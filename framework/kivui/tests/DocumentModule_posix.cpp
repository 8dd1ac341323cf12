// The module is the test program: its documents are files beside it.

#include "framework/kivui/tests/DocumentModule.h"

#include <filesystem>
#include <fstream>

#include <kivcore/Dir.h>
#include <kivcore/Resource.h>
#include <kivui/NodeManager.h>

namespace kivui {

namespace {

class TestNodeManager : public ui::OS_NodeManager {};

std::filesystem::path FolderOfDocuments()
{
    static const int kHere = 0;
    return std::filesystem::path(
               kivcore::filesupport::PathToUTF8(kivcore::ModuleFolder(&kHere).FullPath())) /
           "kivui_tests.res";
}

}  // namespace

struct DocumentModule::State {
    std::filesystem::path folder = FolderOfDocuments();
    TestNodeManager manager;
};

DocumentModule::DocumentModule() : state_(std::make_unique<State>())
{
    std::filesystem::remove_all(state_->folder);
    std::filesystem::create_directory(state_->folder);
    ui::UI_NodeManager::Set(&state_->manager);
}

DocumentModule::~DocumentModule()
{
    std::filesystem::remove_all(state_->folder);
}

void DocumentModule::Put(const std::string& name, const std::string& text)
{
    std::ofstream(state_->folder / (name + ".xml"), std::ios::binary) << text;
}

}  // namespace kivui
