// Skins over theme documents of a test's own.

#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <kivcore/Xml.h>
#include <kivui/NodeManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>

#include "framework/kivui/tests/DocumentModule.h"

namespace kivui {

class SkinFixture : public testing::Test {
protected:
    SkinFixture()
    {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    ~SkinFixture() override
    {
        ui::Theme::Terminate();
        skins::core::SkinManager::Terminate();
        kivcore::xml::ResetParserFactory();
    }

    /// Puts the document `name` ("KIVCOLORTHEMESV5") into the module of the node manager.
    void Put(const std::string& name, const std::string& text) { module_.Put(name, text); }
    /// Documents of one row: colour 4 at every brightness.
    static std::string TextColor(const std::string& color)
    {
        return "<colorthemes version='5'><color index='4' keys='0 " + color + "'/></colorthemes>";
    }

private:
    DocumentModule module_;
};

}  // namespace kivui
