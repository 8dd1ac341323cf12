// Exceptions across the borders of the libraries: each is thrown in one module and contained in
// another, with its text.

#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <string>

#include "tests/LibraryFixture.h"

#include <kivcore/ErrorManager.h>
#include <kivui/Theme.h>
#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNamespaces.h>

namespace kivtests {
namespace {

namespace config = kivcore::config;

constexpr char kMessage[] = "$$$/Test/Message=The ^0 is ^1";

int RaiseBy(config::ErrorManager& manager)
{
    manager.RaiseError(false, kMessage, "lamp", "out", {}, {});
    return 0;  // never comes here
}

class LibraryExceptionsTest : public LibraryFixture {
protected:
    void SetUp() override
    {
        const MetadataAPIInitParams record = StartRecord();
        ASSERT_TRUE(api.initialize(&record));
    }
    void TearDown() override
    {
        api.terminate();
        LibraryFixture::TearDown();
    }

    config::ErrorManager framework;  ///< its code lies in kivcore
};

TEST_F(LibraryExceptionsTest, OfTheLibraryAreContainedInTheFramework)
{
    const auto library = config::GetErrorManager();
    EXPECT_EQ(framework.RunAndContain([&] { return RaiseBy(*library); }), 1);
    EXPECT_EQ(LastFailure(), "The lamp is out");
    EXPECT_FALSE(framework.ExecuteFunctionAndConvertException([&] { RaiseBy(*library); }));
    EXPECT_EQ(LastFailure(), "The lamp is out");
}

TEST_F(LibraryExceptionsTest, OfTheFrameworkAreContainedInTheLibrary)
{
    const auto library = config::GetErrorManager();
    EXPECT_EQ(library->RunAndContain([&] { return RaiseBy(framework); }), 1);
    EXPECT_EQ(LastFailure(), "The lamp is out");
    // Of a type that only kivxmp has, and that is no std::exception.
    EXPECT_EQ(library->RunAndContain([] {
        kivxmp::RegisterNamespace("no name", "http://ns.example/");
        return 0;
    }),
              1);
    EXPECT_NE(LastFailure().find("no name"), std::string::npos) << LastFailure();
}

TEST_F(LibraryExceptionsTest, OfTheHostAreContainedInBoth)
{
    struct HostError : std::runtime_error {
        using std::runtime_error::runtime_error;
    };
    const auto library = config::GetErrorManager();
    for (config::ErrorManager* const manager : {&framework, library.get()}) {
        EXPECT_EQ(manager->RunAndContain([]() -> int { throw HostError("the host's"); }), 1);
        EXPECT_EQ(LastFailure(), "the host's");
        EXPECT_EQ(manager->RunAndContain([]() -> int { throw 7; }), 1);
        EXPECT_NE(LastFailure(), "the host's");
    }
}

// Through both: thrown in the library, passed on by kivcore, caught here by its type.
TEST_F(LibraryExceptionsTest, ArePassedOnWithTheirType)
{
    const auto library = config::GetErrorManager();
    EXPECT_THROW(RaiseBy(*library), std::runtime_error);
    EXPECT_THROW(RaiseBy(framework), std::runtime_error);
    EXPECT_THROW(kivxmp::RegisterNamespace("no name", "http://ns.example/"), XMP_Error);
}

TEST_F(LibraryExceptionsTest, CanBeKeptAndThrownAgain)
{
    const auto library = config::GetErrorManager();
    std::exception_ptr kept;
    try {
        RaiseBy(*library);
    } catch (...) {
        kept = std::current_exception();
    }
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(framework.RunAndContain([&]() -> int { std::rethrow_exception(kept); }), 1);
    EXPECT_EQ(LastFailure(), "The lamp is out");
}

}  // namespace
}  // namespace kivtests
