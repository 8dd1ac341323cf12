#include "tests/LibraryFixture.h"

#include <kivcore/Config.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Xml.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/IconCache.h>
#include <kivui/NodeManager.h>
#include <kivui/PrefManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>

#include <memory>
#include <typeinfo>

#ifndef KIV_LIBRARY_PATH
#error "the build names the library"
#endif

namespace kivtests {

namespace {

bool IsErrorManagerDefault()
{
    const std::shared_ptr<kivcore::config::ErrorManager> manager =
        kivcore::config::GetErrorManager();
    const kivcore::config::ErrorManager& object = *manager;
    return typeid(object) == typeid(kivcore::config::ErrorManager);
}

bool HasDefinitions()
{
    const auto views = kivmetadata::CommonViewDefinitions();
    return views != nullptr && !views->empty();
}

}  // namespace

std::string WhatIsUp()
{
    namespace config = kivcore::config;
    const struct {
        const char* name;
        bool isUp;
    } rows[] = {
        {"configuration", config::IsInitialized()},
        {"client name", config::IsClientNameInitialized() || !config::ClientName().empty()},
        {"company name", !config::CompanyName().empty()},
        {"headless", config::IsAppHeadless()},
        {"error manager", !IsErrorManagerDefault()},
        {"localizer", config::Localizer::Initialized()},
        {"locale", kivcore::Locale::IsInitialized()},
        {"parser factory", kivcore::xml::Initialized()},
        {"node manager", kivui::ui::UI_NodeManager::Get(true) != nullptr},
        {"preferences", kivui::ui::PrefManager::IsInitialized()},
        {"skins", kivui::skins::core::SkinManager::IsInitialized()},
        {"theme", kivui::ui::Theme::IsInitialized()},
        {"pictures of icons", kivui::ui::IconCache::PictureCount() != 0},
        {"dialog", kivmetadataui::IsInitialized()},
        {"definitions", HasDefinitions()},
    };
    std::string up;
    for (const auto& row : rows) {
        if (row.isUp) {
            up += std::string(row.name) + '\n';
        }
    }
    return up;
}

LibraryFixture::LibraryFixture()
    : preferences_("KIV_PREF_DIR", folder.Of("preferences").string()),
      definitions_("KIV_DEFINITIONS_DIR", std::nullopt),
      application_("KIV_APP_DIR", std::nullopt),
      library_(KIV_LIBRARY_PATH),
      api(library_)
{
}

LibraryFixture::~LibraryFixture() = default;

void LibraryFixture::TearDown()
{
    kivmetadataui::DialogDriver::Unregister();
    EXPECT_EQ(WhatIsUp(), "");
    EXPECT_EQ(api.getVector(), nullptr);
    EXPECT_EQ(api.getVectorSize(), 0U);
}

std::string LastFailure()
{
    return KivLastFailureText();
}

}  // namespace kivtests
