// An application folder and a preferences folder of a test's own, and short forms of what was
// loaded from them.

#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "framework/kivcore/tests/Environment.h"
#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadata/tests/Dump.h"
#include "framework/kivmetadata/tests/TraceLog.h"

#include <kivmetadata/Definitions.h>

namespace kivmetadata {

using kivcore::testing::EnvironmentVariable;

class DefinitionsFixture : public ReaderTest {
protected:
    ~DefinitionsFixture() override { UnloadViewDefinitions(); }

    std::string PathOf(const std::string& name) const { return folder_.Of(name).string(); }

    /// Writes the file `name`; "app" and "prefs" are the two folders.
    void Put(const std::string& name, const std::string& text) const
    {
        std::filesystem::create_directories(folder_.Of(name).parent_path());
        folder_.Write(name, text);
    }
    void Remove(const std::string& name) const { std::filesystem::remove(folder_.Of(name)); }

    static std::string Schema(const std::string& uri, const std::string& prefix)
    {
        return "<schema namespace='" + uri + "' prefix='" + prefix +
               "'><property name='x' label='X'/></schema>";
    }
    static std::string View(const std::string& name)
    {
        return "<view name='" + name + "' label='L'/>";
    }
    /// The schema "dc" and the view "built-in".
    void PutBuiltIn() const
    {
        Put("app/Required/Metadata/schema/dc.xml", Schema("http://dc/", "dc"));
        Put("app/Required/Metadata/view/v.xml", View("built-in"));
    }
    /// A manifest, a schema whose prefix is the owner, and a view.
    void PutSet(const std::string& folder, const std::string& owner, const std::string& view) const
    {
        Put(folder + "/manifest.xml", "<definitions owner='" + owner + "'/>");
        Put(folder + "/schema/s.xml", Schema("http://" + owner + "/", owner));
        Put(folder + "/view/v.xml", View(view));
    }

    /// "owner/name" of each view.
    static std::vector<std::string> Views()
    {
        std::vector<std::string> names;
        for (const auto& view : *CommonViewDefinitions()) {
            names.push_back(view->owner + "/" + view->name);
        }
        return names;
    }
    /// Prefixes of the schemas.
    static std::vector<std::string> Schemas()
    {
        std::vector<std::string> prefixes;
        const auto schemas = CommonSchemaDefinitions();
        for (auto at = schemas->Begin(); !at.AtEnd(); at.Next()) {
            prefixes.push_back(at.Current().prefix);
        }
        return prefixes;
    }
    /// What was traced since the last call; "$", "$APP" and "$PREFS" stand for the folders, and
    /// names are separated by slashes on every system.
    std::vector<std::string> Trace()
    {
        std::vector<std::string> lines(log_.Lines().begin() + static_cast<std::ptrdiff_t>(seen_),
                                       log_.Lines().end());
        seen_ = log_.Lines().size();
        for (std::string& line : lines) {
            for (const auto& [name, sign] :
                 {std::pair("app", "$APP"), std::pair("prefs", "$PREFS"), std::pair("", "$/")}) {
                const std::string path = PathOf(name);
                if (const auto at = line.find(path); at != std::string::npos) {
                    line.replace(at, path.size(), sign);
                }
            }
            std::replace(line.begin(), line.end(), '\\', '/');
        }
        return lines;
    }

    /// Loads, and tells the views and what was traced, a line each.
    std::string LoadAndTell()
    {
        LoadAllViewDefinitions();
        std::string text;
        for (const std::string& view : Views()) {
            text += view + '\n';
        }
        for (const std::string& line : Trace()) {
            text += line + '\n';
        }
        return text;
    }

private:
    kivcore::testing::TestFolder folder_;
    EnvironmentVariable app_{"KIV_APP_DIR", folder_.Of("app").string()};
    EnvironmentVariable prefs_{"KIV_PREF_DIR", folder_.Of("prefs").string()};
    EnvironmentVariable own_{"KIV_DEFINITIONS_DIR", std::nullopt};
    TraceLog log_;
    std::size_t seen_ = 0;
};

}  // namespace kivmetadata
