#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "Yr/UniString.h"

namespace {

using Yr::UniString;

template <class T>
std::string C(const char* format, T value) {
    char text[128];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

template <class... Arguments>
std::string Ours(const char* format, Arguments&&... arguments) {
    return UniString::Printf(format, std::forward<Arguments>(arguments)...).ToUtf8();
}

TEST(PrintfTest, ConversionsPrintAsC) {
    // Our 'l' is 32-bit; C's is 64-bit here, so those rows compare with C's plain form.
    const std::pair<std::string, std::string> kCases[] = {
        {Ours("%d", INT32_MIN), C("%d", INT32_MIN)},
        {Ours("[%-6d]", -42), C("[%-6d]", -42)},
        {Ours("[%+06d]", 42), C("[%+06d]", 42)},
        {Ours("[%8ld]", INT32_MIN), C("[%8d]", INT32_MIN)},
        {Ours("%hd", Yr::Int16{-32768}), C("%hd", -32768)},
        {Ours("%hu", Yr::UInt16{65535}), C("%hu", 65535)},
        {Ours("%u", UINT32_MAX), C("%u", UINT32_MAX)},
        {Ours("[%-10lu]", UINT32_MAX), C("[%-10u]", UINT32_MAX)},
        {Ours("%x", 0xDEADBEEFu), C("%x", 0xDEADBEEFu)},
        {Ours("%#010X", 0xBEEFu), C("%#010X", 0xBEEFu)},
        {Ours("%llu", UINT64_MAX), C("%llu", UINT64_MAX)},
        {Ours("%lld", Yr::Int64{INT64_MIN}), C("%lld", Yr::Int64{INT64_MIN})},
        {Ours("%.2f", -0.005), C("%.2f", -0.005)},
        {Ours("[%8.2f%%]", 99.999), C("[%8.2f%%]", 99.999)},
        {Ours("[%-8s]", "abc"), C("[%-8s]", "abc")},
        {Ours("[%.2s]", "abcdef"), C("[%.2s]", "abcdef")},
        {Ours("[%3c]", 'x'), C("[%3c]", 'x')},
    };
    for (const auto& [ours, c] : kCases) EXPECT_EQ(ours, c);
}

TEST(PrintfTest, TextArgumentsAndWidthsCountCharacters) {
    EXPECT_EQ(Ours("'%T' %s/%d", UniString("c\xC3\xA9"), std::string("dir"), 3),
              "'c\xC3\xA9' dir/3");
    EXPECT_EQ(Ours("<%s>", "a\xFF"), "<a\xEF\xBF\xBD>");  // the result is never ill formed
    // C would count the bytes of the UTF-8 form; these count code points.
    EXPECT_EQ(Ours("[%5T]", UniString("\xE2\x82\xAC\xC3\xA9")), "[   \xE2\x82\xAC\xC3\xA9]");
    EXPECT_EQ(Ours("[%.1T]", UniString("\xE2\x82\xAC\xC3\xA9")), "[\xE2\x82\xAC]");
    EXPECT_EQ(Ours("[%-3s]", "\xC3\xA9"), "[\xC3\xA9  ]");
}

TEST(PrintfTest, MismatchedArgumentsStopDebugBuilds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char* const kMessage = "does not fit its conversion";
    EXPECT_DEBUG_DEATH(UniString::Printf("%lu", Yr::UInt64{1}), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d", 1u), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%s", 1), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%T", "narrow"), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d and %d", 1), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d", 1, 2), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("trailing %"), kMessage);
}

}  // namespace
