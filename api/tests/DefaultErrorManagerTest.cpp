#include "api/DefaultErrorManager.h"

#include "api/ApiError.h"
#include "api/tests/ApiFixture.h"

#include <kivxmp/XMPError.h>

#include <functional>
#include <stdexcept>

namespace {

using kivcore::config::ReplacementValue;
using kivmetadataapi::DefaultErrorManager;
using kivmetadataapi::kivmetadataapi_error;
using recording::Get;

class DefaultErrorManagerTest : public ApiTest {
protected:
    DefaultErrorManagerTest() { recording::SwitchTrace(true); }

    DefaultErrorManager manager_;
};

TEST_F(DefaultErrorManagerTest, ResultOfTheFunctionIsReturned)
{
    EXPECT_EQ(manager_.RunAndContain([] { return 0; }), 0);
    EXPECT_EQ(manager_.RunAndContain([] { return -7; }), -7);
    EXPECT_TRUE(Get().traces.empty());
}

TEST_F(DefaultErrorManagerTest, ExceptionsStayInside)
{
    struct Row {
        const char* want;
        std::function<int()> function;
    };
    const Row rows[] = {
        {"ours", []() -> int { throw kivmetadataapi_error("ours"); }},
        {"standard", []() -> int { throw std::runtime_error("standard"); }},
        {"xmp", []() -> int { throw XMP_Error(kKivXmpBadPath, "xmp"); }},
        {"unknown exception", []() -> int { throw 42; }},
        {"bad_function_call", std::function<int()>()},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.want);
        Get().traces.clear();
        EXPECT_EQ(manager_.RunAndContain(row.function), 1);
        EXPECT_EQ(Get().traces,
                  std::vector<std::string>{std::string("0 kivmetadataapi ") + row.want});
        EXPECT_EQ(Get().lastFailure, row.want);
    }
}

TEST_F(DefaultErrorManagerTest, RaiseErrorThrowsTheSubstitutedMessage)
{
    for (const bool alreadyShown : {false, true}) {
        try {
            manager_.RaiseError(alreadyShown, "$$$/Message", ReplacementValue("a"),
                                ReplacementValue(std::int64_t{2}), ReplacementValue(),
                                ReplacementValue("d"));
            FAIL() << "returned";
        } catch (const kivmetadataapi_error& error) {
            EXPECT_STREQ(error.what(), "$$$/Message|a|2||d");
            EXPECT_EQ(error.Flag(), !alreadyShown);
        }
    }
}

}  // namespace
