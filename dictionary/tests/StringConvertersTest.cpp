#include "dictionary/StringConverters.h"

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryException.h"
#include "dictionary/SystemConverter.h"
#include "dictionary/tests/TestSupport.h"

#include <vector>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::Text;

constexpr ConversionContext kUtf8{kSelectorUtf8};
constexpr ConversionContext kAnsi{7};

class StringConverters : public testing::Test {
protected:
    void TearDown() override { SetConverterHooks({}); }
};

std::uint32_t CodeOf(const auto& action)
{
    try {
        action();
    } catch (const DictionaryException& exception) {
        return exception.Code();
    }
    return 0;
}

TEST_F(StringConverters, Codes)
{
    EXPECT_EQ(kCodeHuh, 0x6875683Fu);
    EXPECT_EQ(kCodeBuff, 0x42554646u);
    EXPECT_NE(std::string(DictionaryException(kCodeHuh).what()).find("huh?"), std::string::npos);
    EXPECT_NE(std::string(DictionaryException(kCodeBuff).what()).find("BUFF"), std::string::npos);
}

TEST_F(StringConverters, Utf8BothWays)
{
    EXPECT_EQ(ConvertToWide(kUtf8,
                            "Gr\xC3\xB6\xC3\x9F"
                            "e \xF0\x9F\x98\x80"),
              u"Gr\u00F6\u00DFe \U0001F600");
    EXPECT_EQ(ConvertToMultibyte(kUtf8, u"Gr\u00F6\u00DFe \U0001F600"),
              "Gr\xC3\xB6\xC3\x9F"
              "e \xF0\x9F\x98\x80");
    EXPECT_EQ(ConvertToWide(kUtf8, ""), u"");
    EXPECT_EQ(ConvertToMultibyte(kUtf8, u""), "");
}

TEST_F(StringConverters, Windows1252BothWays)
{
    // The 32 bytes that differ from Latin-1.
    std::string bytes;
    for (int byte = 0x80; byte <= 0x9F; ++byte)
        bytes += static_cast<char>(byte);
    const std::u16string wide =
        u"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D\u017D"
        u"\x8F\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x9D"
        u"\u017E\u0178";
    EXPECT_EQ(ConvertToWide(kAnsi, bytes), wide);
    EXPECT_EQ(ConvertToMultibyte(kAnsi, wide), bytes);
    EXPECT_EQ(ConvertToWide(kAnsi, "a~\xA0\xE9\xFF"), u"a~\u00A0\u00E9\u00FF");
    EXPECT_EQ(ConvertToMultibyte(kAnsi, u"a~\u00A0\u00E9\u00FF"), "a~\xA0\xE9\xFF");
}

TEST_F(StringConverters, WhatCannotBeConvertedIsHuh)
{
    const char16_t lone[] = {u'a', 0xD800, u'b'};
    EXPECT_EQ(CodeOf([&] { ConvertToMultibyte(kUtf8, {lone, 3}); }), kCodeHuh);
    EXPECT_EQ(CodeOf([&] { ConvertToMultibyte(kAnsi, u"\u0100"); }), kCodeHuh);
    EXPECT_EQ(CodeOf([&] { ConvertToMultibyte(kAnsi, u"\u0080"); }), kCodeHuh);
    // The hooks themselves are strict with broken UTF-8 too; ConvertToWide repairs it before.
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    std::size_t size = 99;
    char16_t buffer[4];
    EXPECT_EQ(system.multibyteToWideSize(kUtf8, "\xFF", 1, &size), kCodeHuh);
    EXPECT_EQ(system.multibyteToWide(kUtf8, "\xFF", 1, buffer, 4, &size), kCodeHuh);
    EXPECT_EQ(system.wideToMultibyteSize(kUtf8, lone, 3, &size), kCodeHuh);
    EXPECT_EQ(size, 99u);
    EXPECT_EQ(ConvertToWide(kUtf8, "a\xFF"), u"a\uFFFD");
}

TEST_F(StringConverters, LackOfSpaceIsBuff)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    std::size_t size = 0;
    char16_t wide[3];
    char bytes[3];
    EXPECT_EQ(system.multibyteToWideSize(kUtf8, "abc", 3, &size), 0u);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(system.multibyteToWide(kUtf8, "abc", 3, wide, 2, &size), kCodeBuff);
    EXPECT_EQ(system.multibyteToWide(kUtf8, "abc", 3, wide, 3, &size), 0u);
    EXPECT_EQ(std::u16string(wide, size), u"abc");
    EXPECT_EQ(system.wideToMultibyteSize(kAnsi, u"abc", 3, &size), 0u);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(system.wideToMultibyte(kAnsi, u"abc", 3, bytes, 2, &size), kCodeBuff);
    EXPECT_EQ(system.wideToMultibyte(kAnsi, u"abc", 3, bytes, 3, &size), 0u);
    EXPECT_EQ(std::string(bytes, size), "abc");
}

// A hook set that records what it is asked, and answers as told.
struct Script {
    std::uint32_t sizeCode = 0;
    std::uint32_t convertCode = 0;
    std::size_t needed = 0;
    std::size_t written = 0;
    std::uint32_t selector = 0;
    std::size_t capacity = 0;
    std::string input = {};
};
Script script;

std::uint32_t ScriptedSize(const ConversionContext& context, const char* text, std::size_t length,
                           std::size_t* needed)
{
    script.selector = context.selector;
    script.input.assign(text, length);
    *needed = script.needed;
    return script.sizeCode;
}

std::uint32_t ScriptedConvert(const ConversionContext&, const char*, std::size_t, char16_t* buffer,
                              std::size_t capacity, std::size_t* written)
{
    script.capacity = capacity;
    for (std::size_t i = 0; i < std::min(script.written, capacity); ++i)
        buffer[i] = u'!';
    *written = script.written;
    return script.convertCode;
}

std::uint32_t ShoutingSize(const ConversionContext&, const char16_t*, std::size_t,
                           std::size_t* size)
{
    *size = 2;
    return 0;
}

std::uint32_t Shouting(const ConversionContext&, const char16_t*, std::size_t, char* buffer,
                       std::size_t, std::size_t* written)
{
    buffer[0] = 'H';
    buffer[1] = 'O';
    *written = 2;
    return 0;
}

TEST_F(StringConverters, ReplacedHooksAreUsed)
{
    ConverterHooks hooks;
    hooks.multibyteToWide = ScriptedConvert;
    hooks.multibyteToWideSize = ScriptedSize;
    SetConverterHooks(hooks);
    EXPECT_EQ(CurrentConverterHooks().multibyteToWide, &ScriptedConvert);
    script = {.needed = 2, .written = 2};
    const Dictionary dictionary;
    const ConversionContext context{5};
    EXPECT_EQ(Text(dictionary, "$$$/A=\x80x", &context), u"!!");
    EXPECT_EQ(script.selector, 5u);
    EXPECT_EQ(script.input, "\x80x");
    // Without a context no hook is asked.
    script = {};
    EXPECT_EQ(Text(dictionary, "$$$/A=x"), u"x");
    EXPECT_EQ(script.input, "");
    // The other direction still has the system's.
    EXPECT_EQ(ConvertToMultibyte(kUtf8, u"\u00E9"), "\xC3\xA9");

    hooks = {};
    hooks.wideToMultibyte = Shouting;
    hooks.wideToMultibyteSize = ShoutingSize;
    SetConverterHooks(hooks);
    EXPECT_EQ(ConvertToMultibyte(kUtf8, u"x"), "HO");
    EXPECT_EQ(ConvertToWide(kUtf8, "x"), u"x");

    SetConverterHooks({});
    EXPECT_EQ(ConvertToMultibyte(kUtf8, u"x"), "x");
}

TEST_F(StringConverters, HookSeesRepairedUtf8Only)
{
    ConverterHooks hooks;
    hooks.multibyteToWide = ScriptedConvert;
    hooks.multibyteToWideSize = ScriptedSize;
    SetConverterHooks(hooks);
    script = {.needed = 1, .written = 1};
    ConvertToWide(kUtf8, "a\xE2\x82z");
    EXPECT_EQ(script.input, "a\xEF\xBF\xBDz");
    ConvertToWide(kAnsi, "a\xE2\x82z");
    EXPECT_EQ(script.input, "a\xE2\x82z");
}

TEST_F(StringConverters, HookFailuresAreRaised)
{
    ConverterHooks hooks;
    hooks.multibyteToWide = ScriptedConvert;
    hooks.multibyteToWideSize = ScriptedSize;
    SetConverterHooks(hooks);
    const Dictionary dictionary;
    const auto lookup = [&] { dictionary.Lookup("$$$/A=x", &kAnsi); };
    script = {.sizeCode = kCodeHuh};
    EXPECT_EQ(CodeOf(lookup), kCodeHuh);
    script = {.sizeCode = kCodeBuff};
    EXPECT_EQ(CodeOf(lookup), kCodeBuff);
    script = {.convertCode = kCodeBuff};
    EXPECT_EQ(CodeOf(lookup), kCodeBuff);
    script = {.convertCode = 42};
    EXPECT_EQ(CodeOf(lookup), 42u);
    // One that claims to have written more than there was room for.
    script = {.needed = 1, .written = 1000000};
    EXPECT_EQ(CodeOf(lookup), kCodeHuh);
}

TEST_F(StringConverters, BufferGrowsByHalfUntilItIsLargeEnough)
{
    ConverterHooks hooks;
    hooks.multibyteToWide = ScriptedConvert;
    hooks.multibyteToWideSize = ScriptedSize;
    SetConverterHooks(hooks);
    struct {
        std::size_t needed;
        std::size_t capacity;
    } const rows[] = {{0, 64}, {64, 64}, {65, 96}, {97, 144}, {1000, 1093}};
    for (const auto& row : rows) {
        script = {.needed = row.needed, .written = row.needed};
        EXPECT_EQ(ConvertToWide(kAnsi, "x").size(), row.needed);
        EXPECT_EQ(script.capacity, row.capacity);
    }
}

}  // namespace
}  // namespace morvish
