#include <kivcore/Config.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kivcore/Dir.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Trace.h>

namespace kivcore::config {
namespace {

TEST(Config, InitializeCounts)
{
    EXPECT_FALSE(IsInitialized());
    EXPECT_TRUE(Initialize(MessageCallback()));
    EXPECT_FALSE(Initialize(MessageCallback()));
    EXPECT_TRUE(IsInitialized());
    Terminate(nullptr);
    EXPECT_TRUE(IsInitialized());
    Terminate(nullptr);
    EXPECT_FALSE(IsInitialized());
}

TEST(Config, TerminatingWhatNeverBeganIsSilent)
{
    SetClientName(u"kept");
    Terminate(nullptr);
    const std::function<void()> step = [] { FAIL() << "nothing to end"; };
    Terminate(&step);
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(ClientName(), u"kept");
    EXPECT_TRUE(Initialize(MessageCallback()));
    Terminate(nullptr);
}

TEST(Config, EveryRoundHasItsOwnClient)
{
    for (const char16_t* const name : {u"First host", u"Second host"}) {
        EXPECT_TRUE(Initialize(MessageCallback()));
        EXPECT_FALSE(IsClientNameInitialized());
        SetCompanyName(u"Company");
        SetClientVersion(u"1.2");
        SetClientInternalVersion(u"1.2.3");
        SetClientBuildNumber(u"45");
        EXPECT_FALSE(IsClientNameInitialized());
        SetClientName(name);
        SetAppIsHeadless(true);
        Locale::Initialize(u"fr", filesupport::Dir());

        EXPECT_TRUE(IsClientNameInitialized());
        EXPECT_EQ(CompanyName(), u"Company");
        EXPECT_EQ(ClientName(), name);
        EXPECT_EQ(ClientVersion(), u"1.2");
        EXPECT_EQ(ClientInternalVersion(), u"1.2.3");
        EXPECT_EQ(ClientBuildNumber(), u"45");
        EXPECT_TRUE(IsAppHeadless());

        Terminate(nullptr);
        EXPECT_FALSE(IsClientNameInitialized());
        for (const UString* const text : {&CompanyName(), &ClientName(), &ClientVersion(),
                                          &ClientInternalVersion(), &ClientBuildNumber()}) {
            EXPECT_EQ(*text, u"");
        }
        EXPECT_FALSE(IsAppHeadless());
        EXPECT_FALSE(Locale::IsInitialized());
        EXPECT_EQ(RecycledBytes(), 0U);
    }
}

TEST(Config, AnEmptyClientNameIsAName)
{
    Initialize(MessageCallback());
    SetClientName(u"");
    EXPECT_TRUE(IsClientNameInitialized());
    Terminate(nullptr);
}

// The newest callback may lie in a library that its host unloads after the library's Terminate.
TEST(Config, AMessageCallbackCountsUntilItsTerminate)
{
    std::vector<std::string> messages;
    SendMessageToClient("nobody listens");
    Initialize([&messages](const char* text) { messages.push_back(std::string("1:") + text); });
    SendMessageToClient("a");
    Initialize([&messages](const char* text) { messages.push_back(std::string("2:") + text); });
    SendMessageToClient("b");
    SendMessageToClient(nullptr);
    Terminate(nullptr);
    SendMessageToClient("c");
    Terminate(nullptr);
    SendMessageToClient("forgotten");
    EXPECT_EQ(messages, (std::vector<std::string>{"1:a", "2:b", "2:", "1:c"}));
}

TEST(Config, AMessageCallbackMayEndTheFramework)
{
    std::string heard;
    Initialize([&heard](const char* text) {
        Terminate(nullptr);
        heard = text;
    });
    SendMessageToClient("last words");
    EXPECT_EQ(heard, "last words");
    EXPECT_FALSE(IsInitialized());
}

TEST(Config, TheLastStepRunsOnceBeforeTheEnd)
{
    int runs = 0;
    UString name;
    const std::function<void()> step = [&] {
        ++runs;
        name = ClientName();
        EXPECT_TRUE(IsInitialized());
        Terminate(nullptr);  // silent: the end has begun
        EXPECT_TRUE(IsInitialized());
        throw std::runtime_error("dropped");
    };
    Initialize(MessageCallback());
    Initialize(MessageCallback());
    SetClientName(u"host");
    Terminate(&step);
    EXPECT_EQ(runs, 0);
    EXPECT_NO_THROW(Terminate(&step));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(name, u"host");
    EXPECT_FALSE(IsInitialized());

    const std::function<void()> empty;
    Initialize(MessageCallback());
    EXPECT_NO_THROW(Terminate(&empty));
    EXPECT_FALSE(IsInitialized());
}

TEST(Config, TheLastStepMayBeginAnew)
{
    std::string heard;
    const std::function<void()> step = [&heard] {
        EXPECT_FALSE(Initialize([&heard](const char* text) { heard += text; }));
    };
    Initialize([&heard](const char*) { heard += "old"; });
    SetClientName(u"host");
    Terminate(&step);
    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(ClientName(), u"host");
    SendMessageToClient("new");
    EXPECT_EQ(heard, "new");
    Terminate(nullptr);
    EXPECT_FALSE(IsInitialized());
}

struct Foreign {};

struct ExecuteCase {
    const char* name;
    std::function<void()> function;
    bool failed;
    const char* text;
};

TEST(Executor, ContainsEverything)
{
    const ExecuteCase rows[] = {
        {"success", [] {}, false, ""},
        {"success with a text", [] { SetLastFailureText("cancelled"); }, false, "cancelled"},
        {"standard", [] { throw std::runtime_error("no such file"); }, true, "no such file"},
        {"text", [] { throw "text"; }, true, "text"},
        {"foreign", [] { throw Foreign(); }, true, "unknown exception"},
        {"nested failure, outer success",
         [] {
             bool inner = false;
             ExecuteTopLevelFunction([] { throw std::runtime_error("inner"); }, &inner);
             EXPECT_TRUE(inner);
         },
         false, "inner"},
        {"nested success, outer failure",
         [] {
             ExecuteTopLevelFunction([] {}, nullptr);
             throw std::runtime_error("outer");
         },
         true, "outer"},
    };
    for (const ExecuteCase& row : rows) {
        SCOPED_TRACE(row.name);
        SetLastFailureText("from before");
        bool failed = !row.failed;
        ExecuteTopLevelFunction(row.function, &failed);
        EXPECT_EQ(failed, row.failed);
        EXPECT_STREQ(KivLastFailureText(), row.text);
    }
    ExecuteTopLevelFunction([] { throw 1; }, nullptr);
    SetLastFailureText({});
}

TEST(Executor, AnEmptyFunctionFails)
{
    bool failed = false;
    ExecuteTopLevelFunction(nullptr, &failed);
    EXPECT_TRUE(failed);
    EXPECT_STRNE(KivLastFailureText(), "");
    SetLastFailureText({});
}

TEST(Executor, TracesNothing)
{
    std::vector<std::string> traces;
    debug::SetTraceLevel("*", 9);
    const int sink = debug::AddTraceSink(
        [&traces](int, const char*, std::string_view text) { traces.emplace_back(text); });
    ExecuteTopLevelFunction([] { throw std::runtime_error("contained"); }, nullptr);
    debug::RemoveTraceSink(sink);
    debug::SetTraceLevel("*", -1);
    EXPECT_TRUE(traces.empty());
}

class CountingManager : public ErrorManager {
public:
    CountingManager(int& runs, bool& ended) : runs_(runs), ended_(ended) {}
    ~CountingManager() override { ended_ = true; }
    bool ExecuteFunctionAndConvertException(const std::function<void()>& function) noexcept override
    {
        ++runs_;
        try {
            function();
        } catch (...) {
            return false;  // keeps no text
        }
        EXPECT_FALSE(ended_);
        return true;
    }

private:
    int& runs_;
    bool& ended_;
};

TEST(Executor, RunsThroughTheManagerAndHoldsIt)
{
    int runs = 0;
    bool ended = false;
    SetErrorManager(std::make_shared<CountingManager>(runs, ended));
    bool failed = false;
    ExecuteTopLevelFunction([] { throw 1; }, &failed);
    EXPECT_TRUE(failed);
    EXPECT_STREQ(KivLastFailureText(), "unknown exception");

    ExecuteTopLevelFunction(
        [&ended] {
            ResetToDefaultErrorManager();
            EXPECT_FALSE(ended);
            ExecuteTopLevelFunction([] {}, nullptr);  // through the default one
        },
        &failed);
    EXPECT_FALSE(failed);
    EXPECT_EQ(runs, 2);
    EXPECT_TRUE(ended);
}

// None of these needs the framework to be up.
TEST(Executor, WorksBeforeInitializeAndAfterTerminate)
{
    for (int round = 0; round < 2; ++round) {
        ASSERT_FALSE(IsInitialized());
        bool failed = false;
        ExecuteTopLevelFunction([] { throw std::runtime_error("early"); }, &failed);
        EXPECT_TRUE(failed);
        EXPECT_STREQ(KivLastFailureText(), "early");
        EXPECT_NE(GetErrorManager(), nullptr);
        EXPECT_EQ(Localize("$$$/A=text"), u"text");
        Initialize(MessageCallback());
        Terminate(nullptr);
    }
    SetLastFailureText({});
}

}  // namespace
}  // namespace kivcore::config
