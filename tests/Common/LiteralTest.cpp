#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "Common/Boolean.h"
#include "Common/Integer16.h"
#include "Common/Integer32.h"
#include "Common/Integer64.h"
#include "Common/UnsignedInteger16.h"
#include "Common/UnsignedInteger32.h"
#include "Common/UnsignedInteger64.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"

namespace {

using namespace Morvelan::Common;
using Morvelan::Testing::ExpectYrException;

// A text and the value it parses to, or nullopt when it must be refused.
template <class T>
struct ParseCase {
    const char* text;
    std::optional<T> expected;
};

// The failure message with the refused text in place of a "%T".
std::string MessageFor(std::string failure, const char* text) {
    const auto at = failure.find("%T");
    if (at != std::string::npos) failure.replace(at, 2, text);
    return failure;
}

// Checks both Parse forms against the table and the empty text; the
// throwing form must report `failure` for every refused text.
template <class Literal, class T>
void CheckParsing(const std::vector<ParseCase<T>>& table, const char* failure,
                  const char* emptyMessage) {
    for (const auto& [text, expected] : table) {
        SCOPED_TRACE(text);
        T value{};
        EXPECT_EQ(Literal::Parse(text, value), expected.has_value());
        if (expected) {
            EXPECT_EQ(value, *expected);
            EXPECT_EQ(Literal::Parse(text), *expected);
        } else {
            EXPECT_EQ(value, T{});  // untouched on failure
            ExpectYrException<Yr::ConversionErrorException>(
                [&] { Literal::Parse(text); }, MessageFor(failure, text).c_str(), Yr::kIOErrorCode);
        }
    }
    T value{};
    ExpectYrException<Yr::IllegalArgumentException>([&] { Literal::Parse(""); }, emptyMessage,
                                                    Yr::kIllegalArgumentErrorCode);
    ExpectYrException<Yr::IllegalArgumentException>([&] { Literal::Parse("", value); },
                                                    emptyMessage, Yr::kIllegalArgumentErrorCode);
}

constexpr const char* kSignedEmpty = "Invalid integer literal: literal is empty.";
constexpr const char* kUnsignedEmpty = "Invalid unsigned integer literal: literal is empty.";

TEST(LiteralTest, BooleanParsesExactLowerCaseWordsOnly) {
    CheckParsing<Boolean, bool>({{"true", true},
                                 {"false", false},
                                 {"True", {}},
                                 {"FALSE", {}},
                                 {" true", {}},
                                 {"false ", {}},
                                 {"1", {}},
                                 {"truex", {}}},
                                "Failed to parse boolean literal: '%T'.",
                                "Invalid boolean literal: literal is empty.");
    EXPECT_STREQ(Boolean::ToCStr(true), "true");
    EXPECT_STREQ(Boolean::ToCStr(false), "false");
    EXPECT_EQ(Boolean::ToString(false), "false");
}

TEST(LiteralTest, SignedIntegersParseWholeDecimalWithinRange) {
    CheckParsing<Integer16, Yr::Int16>({{"0", 0},
                                        {"-32768", -32768},
                                        {"32767", 32767},
                                        {"007", 7},
                                        {"40000", {}},
                                        {"-32769", {}},
                                        {"+5", {}},
                                        {" 5", {}},
                                        {"5 ", {}},
                                        {"0x10", {}},
                                        {"1.5", {}},
                                        {"-", {}}},
                                       "Failed to parse literal as integer16 value.", kSignedEmpty);
    CheckParsing<Integer32, Yr::Int32>(
        {{"-2147483648", INT32_MIN}, {"2147483647", INT32_MAX}, {"2147483648", {}}, {"12a", {}}},
        "Failed to parse literal as integer32 value.", kSignedEmpty);
    CheckParsing<Integer64, Yr::Int64>({{"-9223372036854775808", INT64_MIN},
                                        {"9223372036854775807", INT64_MAX},
                                        {"9223372036854775808", {}},
                                        {"--1", {}}},
                                       "Failed to parse literal as integer64 value.", kSignedEmpty);
}

TEST(LiteralTest, UnsignedIntegersParseDecimalWithinRange) {
    CheckParsing<UnsignedInteger16, Yr::UInt16>(
        {{"65535", 65535}, {"65536", {}}, {"-1", {}}, {"-0", {}}, {"+1", {}}, {"ff", {}}},
        "Failed to parse literal as unsigned integer16 value.", kUnsignedEmpty);
    CheckParsing<UnsignedInteger32, Yr::UInt32>(
        {{"4294967295", UINT32_MAX}, {"4294967296", {}}, {" 1", {}}},
        "Failed to parse literal as unsigned integer32 value.", kUnsignedEmpty);
    // Read like one "%llu" conversion: leading blanks and a plus pass, the
    // rest of the text is ignored, but no wrap-around of minus or overflow.
    CheckParsing<UnsignedInteger64, Yr::UInt64>(
        {{"18446744073709551615", UINT64_MAX},
         {" \t42", 42},
         {"+7", 7},
         {"12abc", 12},
         {"0x1f", 0},
         {"18446744073709551616", {}},
         {"-1", {}},
         {"   ", {}},
         {"+", {}},
         {"abc", {}}},
        "Failed to parse literal as unsigned integer64 value.", kUnsignedEmpty);
}

TEST(LiteralTest, ToStringAndToHexStringPrintPlainDigits) {
    const std::vector<std::pair<Yr::UniString, const char*>> table = {
        {Integer16::ToString(-32768), "-32768"},
        {Integer32::ToString(INT32_MIN), "-2147483648"},
        {Integer64::ToString(INT64_MIN), "-9223372036854775808"},
        {Integer64::ToHexString(-1), "ffffffffffffffff"},
        {Integer64::ToHexString(0xABCDEF), "abcdef"},
        {Integer64::ToHexString(0), "0"},
        {UnsignedInteger16::ToString(65535), "65535"},
        {UnsignedInteger16::ToHexString(0xBEEF), "beef"},
        {UnsignedInteger32::ToString(UINT32_MAX), "4294967295"},
        {UnsignedInteger32::ToHexString(255), "ff"},
        {UnsignedInteger64::ToString(UINT64_MAX), "18446744073709551615"},
        {UnsignedInteger64::ToHexString(UINT64_MAX), "ffffffffffffffff"},
    };
    for (const auto& [actual, expected] : table) EXPECT_EQ(actual, expected);
}

TEST(LiteralTest, ToBytesStringScalesInSinglePrecisionWithoutByteOrTeraUnits) {
    const std::vector<std::pair<Yr::UInt64, const char*>> table = {
        {0, "0.00 kB"},
        {512, "0.50 kB"},
        {1048575, "1024.00 kB"},
        {1048576, "1.00 MB"},
        {1073741823, "1024.00 MB"},  // rounds up to 2^30 as a float
        {1073741824, "1.00 GB"},
        {5ull << 40, "5120.00 GB"},
        {(1ull << 54) + (1ull << 30), "16777216.00 GB"},  // the extra GB is lost in a float
    };
    for (const auto& [bytes, expected] : table)
        EXPECT_EQ(UnsignedInteger64::ToBytesString(bytes), expected) << bytes;
}

}  // namespace
