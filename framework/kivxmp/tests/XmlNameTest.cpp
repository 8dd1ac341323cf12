#include "framework/kivxmp/src/XmlName.h"

#include <gtest/gtest.h>

#include <string>

namespace kivxmp {
namespace {

TEST(XmlName, Names)
{
    for (const std::string& name : {std::string("a"), std::string("_1-.b"), std::string("XML"),
                                    std::string("gr\xC3\xBC\xC3\x9F"), std::string(4096, 'a'),
                                    std::string("\xE6\x97\xA5\xE6\x9C\xAC")}) {
        EXPECT_TRUE(IsXmlName(name)) << name;
    }
    for (const std::string& name :
         {std::string(), std::string("1a"), std::string("-a"), std::string(".a"),
          std::string("a:b"), std::string("a b"), std::string("a\0b", 3), std::string("a/"),
          std::string("a>"), std::string("a\xC3\x97"),
          std::string("\xC2\xB7"
                      "a"),
          std::string("\xC3"), std::string("\xF0\x9F\x8C\x8D"), std::string(4097, 'a')}) {
        EXPECT_FALSE(IsXmlName(name)) << name;
    }
}

}  // namespace
}  // namespace kivxmp
