#include "Yr/UniString.h"

#include <gtest/gtest.h>

#include <string>

#include "Yr/Exceptions.h"

namespace {

using Yr::UniString;

// 'a', e-acute (2 bytes), euro sign (3 bytes), grinning face (4 bytes), 'b', euro sign.
const char* const kMixed =
    "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"
    "b\xE2\x82\xAC";

TEST(UniStringTest, LengthCountsCodePointsNotBytes) {
    const struct {
        const char* utf8;
        std::size_t length;
        std::size_t bytes;
    } kCases[] = {
        {"", 0, 0},      {"plain", 5, 5}, {"\xC3\xA9t\xC3\xA9", 3, 5}, {"\xF4\x8F\xBF\xBF", 1, 4},
        {kMixed, 6, 14},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.utf8);
        const UniString text(c.utf8);
        EXPECT_EQ(text.GetLength(), c.length);
        EXPECT_EQ(text.GetByteCount(), c.bytes);
    }
}

TEST(UniStringTest, SubstringFindAndTruncateCountCharacters) {
    const UniString text(kMixed);
    EXPECT_EQ(text.GetSubstring(1, 2), UniString("\xC3\xA9\xE2\x82\xAC"));
    EXPECT_EQ(text.GetSubstring(3), UniString("\xF0\x9F\x98\x80"
                                              "b\xE2\x82\xAC"));
    EXPECT_EQ(text.GetSubstring(40, 2), UniString());
    EXPECT_EQ(text.GetPrefix(2), UniString("a\xC3\xA9"));
    EXPECT_EQ(text.GetCharacterAt(3), U'\U0001F600');
    EXPECT_THROW(text.GetCharacterAt(6), Yr::IllegalArgumentException);

    EXPECT_EQ(text.FindFirst(U'\u20AC'), 2u);
    EXPECT_EQ(text.FindFirst(U'\u20AC', 3), 5u);
    EXPECT_EQ(text.FindFirst(U'x'), UniString::npos);
    EXPECT_EQ(text.FindFirst(UniString("b\xE2\x82\xAC")), 4u);
    EXPECT_EQ(text.FindFirst(UniString("\xE2\x82\xAC"), 3), 5u);
    EXPECT_EQ(text.FindFirst(UniString("\xE2\x82\xAC"), 6), UniString::npos);
    EXPECT_TRUE(text.Contains(UniString("\xF0\x9F\x98\x80")));
    EXPECT_FALSE(text.Contains(U'\u00E8'));

    UniString cut(kMixed);
    cut.Truncate(4);
    EXPECT_EQ(cut, UniString("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
    cut.Truncate(99);
    EXPECT_EQ(cut.GetLength(), 4u);
}

TEST(UniStringTest, ReplaceAllSwapsEveryOccurrence) {
    const struct {
        const char* before;
        char32_t from;
        char32_t to;
        const char* after;
    } kCases[] = {
        {"a/b/c", U'/', U'\\', "a\\b\\c"},
        {"\xC3\xA9-\xC3\xA9", U'\u00E9', U'e', "e-e"},
        {"a-b", U'-', U'\u20AC',
         "a\xE2\x82\xAC"
         "b"},
        {"x\xF0\x9F\x98\x80", U'\U0001F600', U'\u00E9', "x\xC3\xA9"},
        {"none", U'z', U'\u20AC', "none"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.before);
        UniString text(c.before);
        text.ReplaceAll(c.from, c.to);
        EXPECT_EQ(text.ToUtf8(), c.after);
    }
    UniString text("a\xC3\xA9");
    EXPECT_THROW(text.ReplaceAll(U'\u00E9', static_cast<char32_t>(0xD800)),
                 Yr::ConversionErrorException);
}

TEST(UniStringTest, Utf16RoundTripsIncludingSurrogatePairs) {
    const struct {
        const char* utf8;
        std::u16string utf16;
    } kCases[] = {
        {"", u""},
        {"A\xC3\xA9", {0x0041, 0x00E9}},
        {"\xE2\x82\xAC", {0x20AC}},
        {"\xEF\xBF\xBF", {0xFFFF}},
        {"\xF0\x90\x80\x80", {0xD800, 0xDC00}},
        {"\xF0\x9F\x98\x80!", {0xD83D, 0xDE00, 0x0021}},
        {"\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.utf8);
        EXPECT_EQ(UniString(c.utf8).ToUStr(), c.utf16);
        EXPECT_EQ(UniString(std::u16string_view(c.utf16)).ToUtf8(), c.utf8);
    }
}

TEST(UniStringTest, LoneUtf16SurrogatesAreRefused) {
    const std::u16string kCases[] = {
        {0xD800}, {0xDC00}, {0x0041, 0xD83D, 0x0041}, {0xDE00, 0xD83D}, {0xD83D, 0xD83D, 0xDE00},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c));
        EXPECT_THROW(UniString{std::u16string_view(c)}, Yr::ConversionErrorException);
    }
}

TEST(UniStringTest, IllFormedUtf8IsRefused) {
    const struct {
        const char* fault;
        std::string bytes;
    } kCases[] = {
        {"overlong slash", "\xC0\xAF"},
        {"overlong two-byte", "\xC1\xBF"},
        {"overlong three-byte", "\xE0\x80\xAF"},
        {"overlong four-byte", "\xF0\x80\x80\xAF"},
        {"surrogate D800", "\xED\xA0\x80"},
        {"surrogate DFFF", "\xED\xBF\xBF"},
        {"encoded pair", "\xED\xA0\xBD\xED\xB8\x80"},
        {"cut at end", "ok\xC3"},
        {"cut three-byte", "\xE2\x82"},
        {"cut by ASCII",
         "\xE2\x82"
         "A"},
        {"cut four-byte", "\xF0\x9F\x98"},
        {"lone continuation", "a\x80"},
        {"above U+10FFFF", "\xF4\x90\x80\x80"},
        {"lead F5", "\xF5\x80\x80\x80"},
        {"byte FF", "\xFF"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.fault);
        EXPECT_THROW(UniString::FromUtf8(c.bytes), Yr::ConversionErrorException);
        EXPECT_THROW(UniString(c.bytes.c_str()), Yr::ConversionErrorException);
    }
}

TEST(UniStringTest, Latin1ConvertsBothWaysAndRefusesWiderCharacters) {
    const UniString fromLatin1("caf\xE9", Yr::CharacterCode::Latin1);
    EXPECT_EQ(fromLatin1.ToUtf8(), "caf\xC3\xA9");
    EXPECT_EQ(fromLatin1.ToCStr(Yr::CharacterCode::Latin1), "caf\xE9");
    EXPECT_EQ(UniString("\xC3\xBF").ToCStr(Yr::CharacterCode::Latin1), "\xFF");

    // U+20AC lies above U+00FF.
    EXPECT_THROW((void)UniString("1 \xE2\x82\xAC").ToCStr(Yr::CharacterCode::Latin1),
                 Yr::ConversionErrorException);
}

TEST(UniStringTest, FromUtf8ReplacingSubstitutesEachBadByte) {
    const struct {
        std::string bytes;
        const char* text;
    } kCases[] = {
        {"plain", "plain"},
        {"a\xFF"
         "b",
         "a\xEF\xBF\xBD"
         "b"},
        {"\xC3\xA9\x80", "\xC3\xA9\xEF\xBF\xBD"},
        {"\xE2\x82", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const UniString text = UniString::FromUtf8Replacing(c.bytes);
        EXPECT_EQ(text.ToUtf8(), c.text);
        // Whatever came in, the result must convert to UTF-16 and back.
        EXPECT_EQ(UniString(std::u16string_view(text.ToUStr())), text);
    }
}

TEST(UniStringTest, HashIsFnv1aOfTheUtf8Bytes) {
    // Published FNV-1a 32-bit test vectors.
    EXPECT_EQ(UniString().GenerateHashValue(), 0x811C9DC5u);
    EXPECT_EQ(UniString("a").GenerateHashValue(), 0xE40C292Cu);
    EXPECT_EQ(UniString("foobar").GenerateHashValue(), 0xBF9CF968u);
}

}  // namespace
