#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "Yr/UniString.h"

namespace {

using Yr::UniString;

// Our conversion and the C conversion that means the same for this value:
// our 'l' is 32-bit, C's is 64-bit on this platform.
template <class T>
struct LikeC {
    const char* ours;
    const char* c;
    T value;
};

template <class T, std::size_t N>
void ExpectSameAsSnprintf(const LikeC<T> (&rows)[N]) {
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ours);
        char expected[256];
        std::snprintf(expected, sizeof expected, row.c, row.value);
        EXPECT_EQ(UniString::Printf(row.ours, row.value).ToUtf8(), expected);
    }
}

TEST(PrintfTest, ConversionsPrintAsC) {
    const LikeC<Yr::Int32> kInt32[] = {
        {"%d", "%d", std::numeric_limits<Yr::Int32>::min()},
        {"%d", "%d", std::numeric_limits<Yr::Int32>::max()},
        {"[%6d]", "[%6d]", -42},
        {"[%-6d]", "[%-6d]", -42},
        {"[%06d]", "[%06d]", -42},
        {"%+d", "%+d", 7},
        {"%ld", "%d", std::numeric_limits<Yr::Int32>::min()},
        {"[%8ld]", "[%8d]", 123456},
    };
    const LikeC<Yr::Int16> kInt16[] = {{"%hd", "%hd", -32768}, {"%hd", "%hd", 32767}};
    const LikeC<Yr::Int64> kInt64[] = {{"%lld", "%lld", std::numeric_limits<Yr::Int64>::min()}};
    const LikeC<Yr::UInt32> kUInt32[] = {
        {"%u", "%u", 4294967295u}, {"%lu bytes", "%u bytes", 4294967295u},
        {"%x", "%x", 0xDEADBEEFu}, {"%X", "%X", 0xDEADBEEFu},
        {"%08x", "%08x", 0xBEEFu}, {"%#x", "%#x", 255u},
        {"[%10u]", "[%10u]", 99u}, {"[%-10lu]", "[%-10u]", 99u},
    };
    const LikeC<Yr::UInt16> kUInt16[] = {{"%hu", "%hu", 65535}, {"%x", "%x", 0xFFFF}};
    const LikeC<Yr::UInt64> kUInt64[] = {
        {"%llu", "%llu", std::numeric_limits<Yr::UInt64>::max()},
        {"%llx", "%llx", 0x0123456789ABCDEFull},
    };
    const LikeC<double> kDouble[] = {
        {"%.2f", "%.2f", 3.14159},    {"%.2f", "%.2f", -0.005},    {"%.2f", "%.2f", 1e10},
        {"%.2f%%", "%.2f%%", 99.999}, {"[%8.3f]", "[%8.3f]", 2.5}, {"%f", "%f", 0.1},
    };
    const LikeC<const char*> kStrings[] = {
        {"%s", "%s", "archive.bin"}, {"'%s'", "'%s'", ""},           {"[%8s]", "[%8s]", "abc"},
        {"[%-8s]", "[%-8s]", "abc"}, {"[%.2s]", "[%.2s]", "abcdef"},
    };
    const LikeC<char> kChars[] = {{"[%3c]", "[%3c]", 'x'}, {"[%-3c]", "[%-3c]", 'x'}};
    ExpectSameAsSnprintf(kInt32);
    ExpectSameAsSnprintf(kInt16);
    ExpectSameAsSnprintf(kInt64);
    ExpectSameAsSnprintf(kUInt32);
    ExpectSameAsSnprintf(kUInt16);
    ExpectSameAsSnprintf(kUInt64);
    ExpectSameAsSnprintf(kDouble);
    ExpectSameAsSnprintf(kStrings);
    ExpectSameAsSnprintf(kChars);
}

TEST(PrintfTest, KnownTexts) {
    EXPECT_EQ(UniString::Printf("%lu", 4294967295u).ToUtf8(), "4294967295");
    EXPECT_EQ(UniString::Printf("%llu", UINT64_MAX).ToUtf8(), "18446744073709551615");
    EXPECT_EQ(UniString::Printf("100%% of %u%%", 5u).ToUtf8(), "100% of 5%");
    EXPECT_EQ(UniString::Printf("no conversions").ToUtf8(), "no conversions");
    EXPECT_EQ(UniString::Printf("Failed to copy file system entry from: '%T' to: '%T'.",
                                UniString("a/b"), UniString("c\xC3\xA9"))
                  .ToUtf8(),
              "Failed to copy file system entry from: 'a/b' to: 'c\xC3\xA9'.");
    EXPECT_EQ(UniString::Printf("%s/%d", std::string("dir"), 3).ToUtf8(), "dir/3");
    // Bytes from outside may be ill formed; the result never is.
    EXPECT_EQ(UniString::Printf("<%s>", "a\xFF").ToUtf8(), "<a\xEF\xBF\xBD>");
}

TEST(PrintfTest, TextWidthAndPrecisionCountCharacters) {
    // C would count the bytes of the UTF-8 form; these count code points.
    const UniString euroE("\xE2\x82\xAC\xC3\xA9");
    EXPECT_EQ(UniString::Printf("[%5T]", euroE).ToUtf8(), "[   \xE2\x82\xAC\xC3\xA9]");
    EXPECT_EQ(UniString::Printf("[%-4T]", euroE).ToUtf8(), "[\xE2\x82\xAC\xC3\xA9  ]");
    EXPECT_EQ(UniString::Printf("[%.1T]", euroE).ToUtf8(), "[\xE2\x82\xAC]");
    EXPECT_EQ(UniString::Printf("[%4s]", "\xC3\xA9").ToUtf8(), "[   \xC3\xA9]");
}

TEST(PrintfTest, MismatchedArgumentsStopDebugBuilds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char* const kMessage = "does not fit its conversion";
    EXPECT_DEBUG_DEATH(UniString::Printf("%lu", Yr::UInt64{1}), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%u", std::size_t{1}), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d", 1u), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%u", -1), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%s", 1), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%T", "narrow"), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d and %d", 1), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("%d", 1, 2), kMessage);
    EXPECT_DEBUG_DEATH(UniString::Printf("trailing %"), kMessage);
}

}  // namespace
