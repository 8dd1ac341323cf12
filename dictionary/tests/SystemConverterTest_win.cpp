// The system's converters beyond what all systems share. The shared tests take Windows-1252 for the
// ANSI code page, as western Windows and Wine have it.

#include "dictionary/SystemConverter.h"

#include "dictionary/DictionaryException.h"
#include "dictionary/SystemConverter_win.h"

#include <windows.h>

#include <string>

#include <gtest/gtest.h>

namespace morvish {
namespace {

constexpr ConversionContext kUtf8{kSelectorUtf8};
constexpr ConversionContext kAnsi{7};

TEST(SystemConverterOnWindows, TheAnsiCodePageIsTheOneThatTestsTake)
{
    EXPECT_EQ(GetACP(), 1252u) << "the tests of the ANSI conversion hold for code page 1252 only";
}

TEST(SystemConverterOnWindows, EmptyTextsAreNoFailure)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    for (const ConversionContext& context : {kUtf8, kAnsi}) {
        std::size_t size = 99;
        EXPECT_EQ(system.multibyteToWideSize(context, "", 0, &size), 0u);
        EXPECT_EQ(size, 0u);
        size = 99;
        EXPECT_EQ(system.wideToMultibyteSize(context, u"", 0, &size), 0u);
        EXPECT_EQ(size, 0u);
        char byte = 'x';
        char16_t unit = u'x';
        size = 99;
        EXPECT_EQ(system.multibyteToWide(context, "", 0, &unit, 1, &size), 0u);
        EXPECT_EQ(size, 0u);
        size = 99;
        EXPECT_EQ(system.wideToMultibyte(context, u"", 0, &byte, 0, &size), 0u);
        EXPECT_EQ(size, 0u);
    }
}

// The system takes a capacity of 0 for the question how much is needed, and answers it.
TEST(SystemConverterOnWindows, NoRoomIsBuff)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    for (const ConversionContext& context : {kUtf8, kAnsi}) {
        std::size_t size = 99;
        char byte = 'x';
        char16_t unit = u'x';
        EXPECT_EQ(system.multibyteToWide(context, "ab", 2, &unit, 0, &size), kCodeBuff);
        EXPECT_EQ(system.multibyteToWide(context, "ab", 2, &unit, 1, &size), kCodeBuff);
        EXPECT_EQ(system.wideToMultibyte(context, u"ab", 2, &byte, 0, &size), kCodeBuff);
        EXPECT_EQ(system.wideToMultibyte(context, u"ab", 2, &byte, 1, &size), kCodeBuff);
        EXPECT_EQ(size, 99u);
    }
    std::size_t size = 99;
    EXPECT_EQ(system.multibyteToWide(kUtf8, "\xFF", 1, nullptr, 0, &size), kCodeHuh);
    EXPECT_EQ(system.wideToMultibyte(kAnsi, u"\u0416", 1, nullptr, 0, &size), kCodeHuh);
}

// No best fit: a look-alike of the code page is not the character.
TEST(SystemConverterOnWindows, LookAlikesAreHuh)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    std::size_t size = 99;
    for (const char16_t* const text : {u"\u0100", u"\uFF21", u"\u221E", u"\u2010", u"\u65E5"}) {
        EXPECT_EQ(system.wideToMultibyteSize(kAnsi, text, 1, &size), kCodeHuh)
            << testing::PrintToString(text);
    }
    // A question mark is itself, not the sign of a failure.
    EXPECT_EQ(system.wideToMultibyteSize(kAnsi, u"?", 1, &size), 0u);
    EXPECT_EQ(size, 1u);
}

TEST(SystemConverterOnWindows, TextsCutInACharacterAreTold)
{
    struct {
        unsigned codePage;
        const char* text;
        bool isCut;
    } const rows[] = {
        {932, "", false},
        {932, "a", false},
        {932, "\x93\xFA\x96\x7B", false},
        {932, "\x93\xFA\x96", true},
        {932, "a\x81", true},
        // A second byte may look like a first one.
        {932, "\x81\x81", false},
        {932, "\x81\x81\x81", true},
        // Katakana of one byte.
        {932, "\xB1", false},
        {1252, "\x93", false},
        {65001, "\xC3", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(morvish_private::IsCutInCharacter(row.codePage, row.text), row.isCut)
            << row.codePage << " " << testing::PrintToString(row.text);
    }
}

TEST(SystemConverterOnWindows, LongTextsConvert)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    const std::string bytes(1000000, '\xE9');
    std::u16string wide(bytes.size(), u'\0');
    std::size_t size = 0;
    EXPECT_EQ(
        system.multibyteToWide(kAnsi, bytes.data(), bytes.size(), wide.data(), wide.size(), &size),
        0u);
    EXPECT_EQ(size, bytes.size());
    EXPECT_EQ(wide, std::u16string(bytes.size(), u'\u00E9'));
}

}  // namespace
}  // namespace morvish
