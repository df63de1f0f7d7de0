#include "Yr/UniString.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Yr/Exceptions.h"

namespace {

using Yr::UniString;

// 'a', e-acute (2 bytes), euro sign (3 bytes), grinning face (4 bytes), 'z', euro sign.
const char* const kMixed = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z\xE2\x82\xAC";

TEST(UniStringTest, PositionsCountCharactersNotBytes) {
    const UniString text(kMixed);
    EXPECT_EQ(text.GetLength(), 6u);
    EXPECT_EQ(text.GetSubstring(1, 2).ToUtf8(), "\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(text.GetCharacterAt(3), U'\U0001F600');
    EXPECT_THROW(text.GetCharacterAt(6), Yr::IllegalArgumentException);
    EXPECT_EQ(text.FindFirst(U'\u20AC', 3), 5u);
    EXPECT_EQ(text.FindFirst(UniString("z\xE2\x82\xAC")), 4u);
    UniString cut(kMixed);
    cut.Truncate(4);
    cut.ReplaceAll(U'\U0001F600', U'-');  // four bytes become one
    EXPECT_EQ(cut.ToUtf8(), "a\xC3\xA9\xE2\x82\xAC-");
    EXPECT_THROW(cut.ReplaceAll(U'-', char32_t{0xD800}), Yr::ConversionErrorException);
}

TEST(UniStringTest, Utf16RoundTripsIncludingSurrogatePairs) {
    const std::pair<const char*, std::u16string> kCases[] = {
        {"A\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF", {0x0041, 0x00E9, 0x20AC, 0xFFFF}},
        {"\xF0\x90\x80\x80", {0xD800, 0xDC00}},
        {"\xF4\x8F\xBF\xBF!", {0xDBFF, 0xDFFF, 0x0021}},
    };
    for (const auto& [utf8, utf16] : kCases) {
        EXPECT_EQ(UniString(utf8).ToUStr(), utf16);
        EXPECT_EQ(UniString(std::u16string_view(utf16)).ToUtf8(), utf8);
    }
}

TEST(UniStringTest, IllFormedTextIsRefused) {
    for (const std::u16string& lone : std::initializer_list<std::u16string>{
             {0xD800}, {0xDC00}, {0x0041, 0xD83D, 0x0041}, {0xDE00, 0xD83D}}) {
        EXPECT_THROW(UniString{std::u16string_view(lone)}, Yr::ConversionErrorException)
            << testing::PrintToString(lone);
    }
    for (const std::string bytes : {
             "\xC0\xAF", "\xE0\x80\xAF", "\xF0\x80\x80\xAF",  // overlong
             "\xED\xA0\x80", "\xED\xBF\xBF",                  // surrogates
             "ok\xC3", "\xE2\x82!", "\xF0\x9F\x98", "a\x80",  // cut sequences
             "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF",  // above U+10FFFF
             "01234567\xC3", "0123456789abcdef\xFF",
             "0123456789\xC3\xA9"
             "abcdefgh\x80",  // after ASCII runs
         }) {
        EXPECT_THROW(UniString::FromUtf8(bytes), Yr::ConversionErrorException)
            << testing::PrintToString(bytes);
        EXPECT_THROW(UniString(bytes.c_str()), Yr::ConversionErrorException);
    }
}

TEST(UniStringTest, Latin1AndReplacingConversions) {
    const UniString latin1("caf\xE9\xFF", Yr::CharacterCode::Latin1);
    EXPECT_EQ(latin1.ToUtf8(), "caf\xC3\xA9\xC3\xBF");
    EXPECT_EQ(latin1.ToCStr(Yr::CharacterCode::Latin1), "caf\xE9\xFF");
    EXPECT_THROW((void)UniString("\xE2\x82\xAC").ToCStr(Yr::CharacterCode::Latin1),
                 Yr::ConversionErrorException);
    // Each byte of an ill-formed sequence becomes one U+FFFD.
    EXPECT_EQ(UniString::FromUtf8Replacing("\xED\xA0\x80!").ToUtf8(),
              "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD!");
}

}  // namespace
