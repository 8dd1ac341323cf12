#include <kivui/Skins.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <kivcore/Resource.h>

#include <kivui/NodeManager.h>

#include "framework/kivui/src/ThemeDocument.h"
#include "framework/kivui/src/Tracing.h"

namespace kivui::skins::core {

namespace {

using kivui::ui::ThemeDocument;

// Newest first.
constexpr const char* kDocumentNames[] = {"KIVCOLORTHEMESV5", "KIVCOLORTHEMESV4",
                                          "KIVCOLORTHEMESV3", "KIVCOLORTHEMESV2"};

struct State {
    int version = 0;
    std::shared_ptr<const ThemeDocument> document;
};

// A plain pointer: a host that leaves without Terminate leaks the state.
constinit State* state = nullptr;

// The module that made the node manager is the one whose documents count, and its virtual table
// lies in it. So a library that brings a node manager of its own brings its colours, too.
const void* VirtualTableOf(const kivui::ui::UI_NodeManager& manager)
{
    const void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&manager), sizeof table);
    return table;
}

// The dialog draws with its colours whatever a document leaves out.
ThemeDocument Completed(ThemeDocument document)
{
    const std::shared_ptr<const ThemeDocument> builtInTheme = kivui::ui::BuiltInTheme();
    const ThemeDocument& builtIn = *builtInTheme;
    document.colors.resize(std::max(document.colors.size(), builtIn.colors.size()));
    for (std::size_t i = 0; i < builtIn.colors.size(); ++i) {
        if (document.colors[i].empty()) {
            document.colors[i] = builtIn.colors[i];
        }
    }
    document.fontSizes.resize(std::max(document.fontSizes.size(), builtIn.fontSizes.size()));
    for (std::size_t i = 0; i < builtIn.fontSizes.size(); ++i) {
        if (document.fontSizes[i] == 0) {
            document.fontSizes[i] = builtIn.fontSizes[i];
        }
    }
    return document;
}

std::shared_ptr<const ThemeDocument> ReadNewestDocument()
{
    try {
        const kivui::ui::UI_NodeManager* const manager = kivui::ui::UI_NodeManager::Get(true);
        if (manager == nullptr) {
            TraceFailure("Theme document was not read", "no node manager is registered");
            return kivui::ui::BuiltInTheme();
        }
        for (const char* const name : kDocumentNames) {
            const std::optional<std::string> text =
                kivcore::LoadXmlResource(VirtualTableOf(*manager), name);
            if (text) {
                return std::make_shared<const ThemeDocument>(
                    Completed(kivui::ui::ReadThemeDocument(*text, name)));
            }
        }
        TraceFailure("Theme document was not read", "the node manager's module carries none");
    } catch (const std::exception& error) {
        TraceFailure("Theme document was not read", error.what());
    }
    return kivui::ui::BuiltInTheme();
}

}  // namespace

void SkinManager::Initialize(int version)
{
    auto fresh = std::make_unique<State>();
    fresh->version = version;
    fresh->document = ReadNewestDocument();
    delete std::exchange(state, fresh.release());
}

bool SkinManager::IsInitialized() noexcept
{
    return state != nullptr;
}

int SkinManager::Version() noexcept
{
    return state == nullptr ? 0 : state->version;
}

void SkinManager::Terminate() noexcept
{
    delete std::exchange(state, nullptr);
}

}  // namespace kivui::skins::core

namespace kivui::ui {

std::shared_ptr<const ThemeDocument> CurrentThemeDocument()
{
    return skins::core::state == nullptr ? BuiltInTheme() : skins::core::state->document;
}

}  // namespace kivui::ui
