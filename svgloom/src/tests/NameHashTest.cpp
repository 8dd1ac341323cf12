#include "svgloom/src/NameHash.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

TEST(KeyedHash, DependsOnEveryByteAndTheKey)
{
    const std::string text = "abcdefghijklmnopqrst";
    std::set<std::uint64_t> seen;
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const testing_support::ExactText part(std::string_view(text).substr(0, length));
        EXPECT_TRUE(seen.insert(KeyedHash(part.View(), 1, 2)).second) << length;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string changed = text;
        changed[i] = static_cast<char>(changed[i] ^ 1);
        EXPECT_TRUE(seen.insert(KeyedHash(changed, 1, 2)).second) << i;
    }
    EXPECT_TRUE(seen.insert(KeyedHash(text, 1, 3)).second);
    EXPECT_TRUE(seen.insert(KeyedHash(text, 2, 2)).second);
    EXPECT_EQ(KeyedHash(text, 1, 2), KeyedHash(std::string(text), 1, 2));
}

}  // namespace
}  // namespace SVGLoom
