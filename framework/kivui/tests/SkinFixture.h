// Skins over theme documents that lie beside the test program, whose own node manager is the
// registered one.

#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <kivcore/Dir.h>
#include <kivcore/Resource.h>
#include <kivcore/Xml.h>
#include <kivui/NodeManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>

namespace kivui {

class SkinFixture : public testing::Test {
protected:
    SkinFixture()
    {
        static const int kHere = 0;
        folder_ = kivcore::filesupport::PathToUTF8(kivcore::ModuleFolder(&kHere).FullPath());
        folder_ /= "kivui_tests.res";
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directory(folder_);
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
        ui::UI_NodeManager::Set(&manager_);
    }
    ~SkinFixture() override
    {
        ui::Theme::Terminate();
        skins::core::SkinManager::Terminate();
        kivcore::xml::ResetParserFactory();
        std::filesystem::remove_all(folder_);
    }

    /// Puts the document `name` ("KIVCOLORTHEMESV5") beside the program.
    void Put(const std::string& name, const std::string& text)
    {
        std::ofstream(folder_ / (name + ".xml"), std::ios::binary) << text;
    }
    /// Documents of one row: colour 4 at every brightness.
    static std::string TextColor(const std::string& color)
    {
        return "<colorthemes version='5'><color index='4' keys='0 " + color + "'/></colorthemes>";
    }

private:
    class TestNodeManager : public ui::OS_NodeManager {};

    std::filesystem::path folder_;
    TestNodeManager manager_;
};

}  // namespace kivui
