#include <kivcore/ErrorManager.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <kivcore/Config.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/tests/VirtualSlot.h"

namespace kivcore::config {
namespace {

class PresentingManager : public ErrorManager {
public:
    using ErrorManager::Present;
};

/// Collects what is presented and what is traced.
class ErrorManagerTest : public testing::Test {
protected:
    void SetUp() override
    {
        SetErrorPresenter([this](const std::string& message) { shown_.push_back(message); });
        debug::SetTraceLevel("kivcore", 0);
        sink_ = debug::AddTraceSink([this](int level, const char* channel, std::string_view text) {
            EXPECT_EQ(level, 0);
            EXPECT_STREQ(channel, "kivcore");
            traced_.emplace_back(text);
        });
    }
    void TearDown() override
    {
        debug::RemoveTraceSink(sink_);
        debug::SetTraceLevel("kivcore", -1);
        SetErrorPresenter(nullptr);
        SetAppIsHeadless(false);
        ResetToDefaultErrorManager();
        SetLastFailureText({});
    }

    using Lines = std::vector<std::string>;
    Lines shown_;
    Lines traced_;

private:
    int sink_ = 0;
};

struct SubstituteCase {
    const char* message;
    const char* want;
};

constexpr SubstituteCase kSubstituteCases[] = {
    {"$$$/E/Open=Cannot open ^0", "Cannot open a.jpg"},
    {"$$$/E/Many=^3 ^2 ^1 ^0", "last ^0 7 a.jpg"},
    {"$$$/E/Twice=^0^0", "a.jpga.jpg"},
    // A value is not searched for further marks.
    {"$$$/E/Value=<^2>", "<^0>"},
    {"$$$/E/None=no mark", "no mark"},
    {"$$$/E/Other=^4 ^ ^^1 ^", "^4 ^ ^7 ^"},
    {"plain ^1", "plain 7"},
    {"", ""},
    {nullptr, ""},
};

TEST_F(ErrorManagerTest, SubstitutesInOnePass)
{
    for (const SubstituteCase& row : kSubstituteCases) {
        SCOPED_TRACE(row.want);
        EXPECT_EQ(SubstituteErrorMessage(row.message, "a.jpg", std::int64_t{7}, UStringView(u"^0"),
                                         UString(u"last")),
                  row.want);
    }
}

class GermanLocalizer : public Localizer {
public:
    UString Localize(const std::string& key) override
    {
        return key == "$$$/E/Open=Cannot open ^0" ? UString(u"^0 l\u00E4sst sich nicht \u00F6ffnen")
                                                  : UString();
    }
    void LoadDictionary(const UString&) override {}
};

TEST_F(ErrorManagerTest, MessagesAreLocalized)
{
    GermanLocalizer localizer;
    Localizer::Set(&localizer, nullptr);
    EXPECT_EQ(
        SubstituteErrorMessage("$$$/E/Open=Cannot open ^0", "\xF0\x9F\x98\x80.jpg", {}, {}, {}),
        "\xF0\x9F\x98\x80.jpg l\xC3\xA4sst sich nicht \xC3\xB6"
        "ffnen");
}

TEST_F(ErrorManagerTest, ReplacementValues)
{
    EXPECT_EQ(ReplacementValue().Text(), u"");
    EXPECT_EQ(ReplacementValue(static_cast<const char*>(nullptr)).Text(), u"");
    EXPECT_EQ(ReplacementValue("\xC3\xA4").Text(), u"\u00E4");
    EXPECT_EQ(ReplacementValue(std::int64_t{0}).Text(), u"0");
    EXPECT_EQ(ReplacementValue(std::numeric_limits<std::int64_t>::min()).Text(),
              u"-9223372036854775808");
    EXPECT_EQ(ReplacementValue(std::numeric_limits<std::int64_t>::max()).Text(),
              u"9223372036854775807");
}

TEST_F(ErrorManagerTest, RaiseErrorThrowsTheSubstitutedMessage)
{
    try {
        GetErrorManager()->RaiseError(false, "$$$/E/Open=Cannot open ^0", "a.jpg", {}, {}, {});
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Cannot open a.jpg");
    }
}

struct ContainCase {
    const char* name;
    std::function<int()> function;
    int want;
    const char* text;
};

TEST_F(ErrorManagerTest, RunAndContain)
{
    const ContainCase rows[] = {
        {"result", [] { return 17; }, 17, ""},
        {"zero", [] { return 0; }, 0, ""},
        {"standard", []() -> int { throw std::runtime_error("reason"); }, 1, "reason"},
        {"foreign", []() -> int { throw 5; }, 1, "unknown exception"},
    };
    for (const ContainCase& row : rows) {
        SCOPED_TRACE(row.name);
        SetLastFailureText({});
        EXPECT_EQ(GetErrorManager()->RunAndContain(row.function), row.want);
        EXPECT_STREQ(KivLastFailureText(), row.text);
    }
    EXPECT_EQ(GetErrorManager()->RunAndContain(nullptr), 1);
}

TEST_F(ErrorManagerTest, ExecuteFunctionTellsWhetherItSucceeded)
{
    const auto manager = GetErrorManager();
    EXPECT_TRUE(manager->ExecuteFunctionAndConvertException([] {}));
    EXPECT_FALSE(manager->ExecuteFunctionAndConvertException([] { throw "broken"; }));
    EXPECT_STREQ(KivLastFailureText(), "broken");
    EXPECT_FALSE(manager->ExecuteFunctionAndConvertException(nullptr));
}

TEST_F(ErrorManagerTest, PresentShowsAndTraces)
{
    PresentingManager manager;
    manager.Present("disk full");
    EXPECT_EQ(shown_, Lines{"disk full"});
    EXPECT_EQ(traced_, Lines{"disk full"});
}

TEST_F(ErrorManagerTest, HeadlessClientsSeeNothing)
{
    PresentingManager manager;
    SetAppIsHeadless(true);
    manager.Present("disk full");
    EXPECT_TRUE(shown_.empty());
    EXPECT_EQ(traced_, Lines{"disk full"});
}

TEST_F(ErrorManagerTest, WithoutAPresenterMessagesAreTraced)
{
    PresentingManager manager;
    SetErrorPresenter(nullptr);
    manager.Present("disk full");
    EXPECT_EQ(traced_, Lines{"disk full"});
}

TEST_F(ErrorManagerTest, AFailingPresenterIsContained)
{
    PresentingManager manager;
    SetErrorPresenter([](const std::string&) { throw std::runtime_error("no display"); });
    EXPECT_NO_THROW(manager.Present("disk full"));
    EXPECT_EQ(traced_, (Lines{"disk full", "a message could not be shown"}));
}

TEST_F(ErrorManagerTest, LazyErrorsWaitForTheLastDecrement)
{
    PresentingManager manager;
    manager.DecrementLazilyDisplayErrors();  // silent: nothing to undo
    manager.IncrementLazilyDisplayErrors();
    manager.IncrementLazilyDisplayErrors();
    manager.Present("one");
    manager.Present("two");
    manager.DecrementLazilyDisplayErrors();
    EXPECT_TRUE(shown_.empty());
    manager.DecrementLazilyDisplayErrors();
    EXPECT_EQ(shown_, Lines{"one\ntwo"});
    manager.IncrementLazilyDisplayErrors();
    manager.DecrementLazilyDisplayErrors();
    EXPECT_EQ(shown_.size(), 1U);
    manager.Present("three");
    EXPECT_EQ(shown_, (Lines{"one\ntwo", "three"}));
}

TEST_F(ErrorManagerTest, DeferredErrorsAreShownTogether)
{
    auto manager = std::make_unique<PresentingManager>();
    auto reporter = manager->NewDeferredErrorReporter();
    EXPECT_EQ(reporter->Text(), "");
    reporter->Report("a is broken");
    reporter->Report("b is broken");
    reporter->Report("a is broken");
    EXPECT_EQ(reporter->Text(), "a is broken\nb is broken");
    EXPECT_TRUE(shown_.empty());
    manager.reset();  // a reporter may outlive its manager
    reporter.reset();
    EXPECT_EQ(shown_, Lines{"a is broken\nb is broken"});
}

TEST_F(ErrorManagerTest, ASilentReporterShowsNothing)
{
    GetErrorManager()->NewDeferredErrorReporter().reset();
    EXPECT_TRUE(shown_.empty());
}

TEST_F(ErrorManagerTest, DeferredErrorsWaitWhileErrorsAreLazy)
{
    PresentingManager manager;
    manager.IncrementLazilyDisplayErrors();
    manager.NewDeferredErrorReporter()->Report("later");
    EXPECT_TRUE(shown_.empty());
    manager.DecrementLazilyDisplayErrors();
    EXPECT_EQ(shown_, Lines{"later"});
}

TEST_F(ErrorManagerTest, PurgeMemoryFreesRecycledBlocks)
{
    {
        const UString text(1000, u'x');
    }
    const std::size_t waiting = RecycledBytes();
    EXPECT_EQ(GetErrorManager()->PurgeMemory(), waiting);
    EXPECT_EQ(RecycledBytes(), 0U);
}

TEST_F(ErrorManagerTest, OwnershipIsShared)
{
    const auto original = GetErrorManager();
    auto mine = std::make_shared<ErrorManager>();
    const std::weak_ptr<ErrorManager> watch = mine;
    SetErrorManager(mine);
    EXPECT_EQ(GetErrorManager(), mine);
    mine.reset();
    EXPECT_FALSE(watch.expired());
    ResetToDefaultErrorManager();
    ResetToDefaultErrorManager();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(GetErrorManager(), original);
    SetErrorManager(nullptr);
    EXPECT_EQ(GetErrorManager(), original);
}

class ResettingManager : public ErrorManager {
public:
    ~ResettingManager() override { ResetToDefaultErrorManager(); }
};

TEST_F(ErrorManagerTest, AManagerMayResetWhileItGoes)
{
    SetErrorManager(std::make_shared<ResettingManager>());
    SetErrorManager(std::make_shared<ErrorManager>());
    ResetToDefaultErrorManager();
    EXPECT_NE(GetErrorManager(), nullptr);
}

TEST_F(ErrorManagerTest, SlotsStandInTheirOrder)
{
    using testing_support::VirtualSlot;
    EXPECT_EQ(VirtualSlot(&ErrorManager::PurgeMemory), 1);
    EXPECT_EQ(VirtualSlot(&ErrorManager::IncrementLazilyDisplayErrors), 2);
    EXPECT_EQ(VirtualSlot(&ErrorManager::DecrementLazilyDisplayErrors), 3);
    EXPECT_EQ(VirtualSlot(&ErrorManager::ExecuteFunctionAndConvertException), 4);
    EXPECT_EQ(VirtualSlot(&ErrorManager::RunAndContain), 5);
    EXPECT_EQ(VirtualSlot(&ErrorManager::NewDeferredErrorReporter), 6);
    EXPECT_EQ(VirtualSlot(&ErrorManager::RaiseError), 7);
}

}  // namespace
}  // namespace kivcore::config
