#include <kivmetadata/Definitions.h>

#include "framework/kivmetadata/src/DefinitionFile.h"
#include "framework/kivmetadata/src/SchemaReader.h"
#include "framework/kivmetadata/src/Tracing.h"
#include "framework/kivmetadata/src/Translations.h"
#include "framework/kivmetadata/src/ViewReader.h"

#include <kivcore/Dir.h>
#include <kivcore/NeverDestroyed.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace kivmetadata {

namespace {

using kivcore::UString;
using kivcore::filesupport::Dir;
using kivcore::filesupport::File;

struct Loaded {
    std::vector<std::shared_ptr<const SchemaDefinition>> schemas;
    ViewDefinitions views;
};

struct Common {
    std::shared_ptr<const SchemaDefinitions> schemas = std::make_shared<const SchemaDefinitions>(
        std::vector<std::shared_ptr<const SchemaDefinition>>());
    std::shared_ptr<const ViewDefinitions> views = std::make_shared<const ViewDefinitions>();
};

constinit kivcore::NeverDestroyed<std::unique_ptr<Common>> commonSlot;

Common& EnsureCommon()
{
    if (!*commonSlot) {
        *commonSlot = std::make_unique<Common>();
    }
    return **commonSlot;
}

void LoadSchemas(const Dir& folder, const TextSource& texts, Loaded& loaded)
{
    for (const UString& name : folder.FileNames()) {
        if (!name.ends_with(u".xml")) {
            continue;
        }
        ReadDefinitionFile(File(folder, name),
                           [&](std::string_view text, const std::string& sourceName) {
                               loaded.schemas.push_back(ReadSchema(text, sourceName, texts));
                           });
    }
}

// Preferences remember a view by its owner and name, so each pair is there once.
void AddView(std::shared_ptr<const ViewDefinition> view, const std::string& sourceName,
             Loaded& loaded)
{
    const bool isKnown =
        std::any_of(loaded.views.begin(), loaded.views.end(), [&](const auto& other) {
            return other->owner == view->owner && other->name == view->name;
        });
    if (isKnown) {
        TraceProblem(sourceName + ": left out, there is a view '" + view->name + "' of '" +
                     view->owner + "' already");
        return;
    }
    loaded.views.push_back(std::move(view));
}

void LoadViews(const Dir& folder, const std::string& owner, const TextSource& texts, Loaded& loaded)
{
    for (const UString& name : folder.FileNames()) {
        if (!name.ends_with(u".xml")) {
            continue;
        }
        ReadDefinitionFile(
            File(folder, name), [&](std::string_view text, const std::string& sourceName) {
                AddView(ReadView(text, sourceName, owner, texts), sourceName, loaded);
            });
    }
}

/// The owner that a manifest names.
std::string ReadManifest(std::string_view text, const std::string& sourceName)
{
    const ElementReader reader(sourceName);
    const Element root = reader.Parse(text, "definitions");
    reader.Expect(root, {"owner", "name", "version"}, {});
    std::string owner = reader.Required(root, "owner");
    if (owner == kBuiltInOwner) {
        reader.Fail(root, "the owner '" + owner + "' is that of the built-in views");
    }
    return owner;
}

/// One folder of custom definitions. Without a readable manifest nothing of it counts.
void LoadCustomFolder(const Dir& folder, Loaded& loaded)
{
    std::string owner;
    const bool hasManifest = ReadDefinitionFile(
        File(folder, u"manifest.xml"), [&](std::string_view text, const std::string& sourceName) {
            owner = ReadManifest(text, sourceName);
        });
    if (!hasManifest) {
        TraceProblem(kivcore::filesupport::PathToUTF8(folder.FullPath()) +
                     ": left out, there is no manifest.xml that could be read");
        return;
    }
    const FolderTexts texts(folder / u"loc");
    LoadSchemas(folder / u"schema", texts, loaded);
    LoadViews(folder / u"view", owner, texts, loaded);
}

void LoadCustomFolders(const Dir& parent, Loaded& loaded)
{
    for (const UString& name : parent.FolderNames()) {
        LoadCustomFolder(parent / name, loaded);
    }
}

void LoadCustom(const Dir& required, Loaded& loaded)
{
    if (const Dir only = Dir::FromEnvironment("KIV_DEFINITIONS_DIR"); !only.IsEmpty()) {
        if (!only.Exists()) {
            TraceProblem(kivcore::filesupport::PathToUTF8(only.FullPath()) +
                         ": there is no such folder");
        }
        LoadCustomFolders(only, loaded);
        return;
    }
    LoadCustomFolders(required / u"Definitions", loaded);
    try {
        LoadCustomFolders(Dir::PrefDir() / u"Definitions", loaded);
    } catch (const std::logic_error&) {  // no client name, so no preferences folder
    } catch (const kivcore::filesupport::FileError& error) {
        TraceProblem(error.what());
    }
}

}  // namespace

void LoadAllViewDefinitions()
{
    Loaded loaded;
    const Dir required = Dir::AppDir() / u"Required";
    const Dir builtIn = required / u"Metadata";
    const LocalizerTexts texts;
    LoadSchemas(builtIn / u"schema", texts, loaded);
    LoadViews(builtIn / u"view", std::string(kBuiltInOwner), texts, loaded);
    if (loaded.views.empty()) {
        TraceProblem(kivcore::filesupport::PathToUTF8(builtIn.FullPath()) +
                     ": no built-in views there");
    }
    LoadCustom(required, loaded);

    auto schemas = std::make_shared<const SchemaDefinitions>(std::move(loaded.schemas));
    auto views = std::make_shared<const ViewDefinitions>(std::move(loaded.views));
    Common& common = EnsureCommon();
    common.schemas = std::move(schemas);
    common.views = std::move(views);
}

void UnloadViewDefinitions() noexcept
{
    commonSlot->reset();
}

std::shared_ptr<const ViewDefinitions> CommonViewDefinitions()
{
    return EnsureCommon().views;
}

std::shared_ptr<const SchemaDefinitions> CommonSchemaDefinitions()
{
    return EnsureCommon().schemas;
}

}  // namespace kivmetadata
