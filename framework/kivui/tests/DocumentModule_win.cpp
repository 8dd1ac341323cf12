// The module is a library made for the test: a copy of kivui_test_module.dll with the documents as
// its resources. What is loaded cannot be changed, so each document makes another copy.

#include "framework/kivui/tests/DocumentModule.h"

#include <filesystem>
#include <map>
#include <stdexcept>

#include <windows.h>

#include <kivui/NodeManager.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivui {

namespace {

void Require(bool isDone, const char* what)
{
    if (!isDone) {
        throw std::runtime_error(what + std::string(": error ") + std::to_string(GetLastError()));
    }
}

// A library and the node manager that it made.
class LoadedModule {
public:
    explicit LoadedModule(const std::filesystem::path& path) : library_(LoadLibraryW(path.c_str()))
    {
        Require(library_ != nullptr, "LoadLibrary");
        using MakeNodeManager = ui::UI_NodeManager*();
        auto* const make = reinterpret_cast<MakeNodeManager*>(
            reinterpret_cast<void*>(GetProcAddress(library_, "MakeNodeManager")));
        Require(make != nullptr, "MakeNodeManager");
        manager_.reset(make());
        ui::UI_NodeManager::Set(manager_.get());
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule()
    {
        manager_.reset();
        FreeLibrary(library_);
    }

private:
    HMODULE library_;
    std::unique_ptr<ui::UI_NodeManager> manager_;
};

}  // namespace

struct DocumentModule::State {
    void Load()
    {
        loaded.reset();
        const std::filesystem::path path =
            folder.Of("module" + std::to_string(++copyCount) + ".dll");
        std::filesystem::copy_file(KIVUI_TEST_MODULE, path);
        HANDLE const update = BeginUpdateResourceW(path.c_str(), /*bDeleteExisting=*/FALSE);
        Require(update != nullptr, "BeginUpdateResource");
        for (const auto& [name, text] : documents) {
            const std::wstring wideName(name.begin(), name.end());
            std::string copy = text;
            Require(UpdateResourceW(update, L"XML", wideName.c_str(), 0, copy.data(),
                                    static_cast<DWORD>(copy.size())) != FALSE,
                    "UpdateResource");
        }
        Require(EndUpdateResourceW(update, /*fDiscard=*/FALSE) != FALSE, "EndUpdateResource");
        loaded = std::make_unique<LoadedModule>(path);
    }

    kivcore::testing::TestFolder folder;
    std::map<std::string, std::string> documents;
    int copyCount = 0;
    std::unique_ptr<LoadedModule> loaded;  // before the folder goes
};

DocumentModule::DocumentModule() : state_(std::make_unique<State>())
{
    state_->Load();
}

DocumentModule::~DocumentModule() = default;

void DocumentModule::Put(const std::string& name, const std::string& text)
{
    state_->documents.insert_or_assign(name, text);
    state_->Load();
}

}  // namespace kivui
