#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/BinaryChannelUtilities.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"
#include "tests/support/FailingOBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Utilities = Morvelan::Common::IO::BinaryChannelUtilities;
using namespace Morvelan::Testing;
using Sizes = std::vector<Yr::UInt32>;

const std::string kLetters = "abcdefghijklmnopqrstuvwxyz";

// The input hands out at most 7 bytes per read; a length of ~0 stands for
// CopyAll. Neither channel is flushed or closed.
TEST(BinaryChannelUtilitiesTest, CopyStopsAtLengthOrEndWritingWhatEachReadGave) {
    const struct {
        Yr::UInt64 length;
        Yr::UInt32 bufferSize;
        Sizes writes;
    } kCases[] = {{10, 4, {4, 4, 2}},
                  {20, 64, {7, 7, 6}},
                  {99, 64, {7, 7, 7, 5}},
                  {0, 4, {}},
                  {~0ull, 10, {7, 7, 7, 5}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.length << " " << c.bufferSize);
        FailingIBinaryChannel input(kLetters, 0, 7);
        RecordingOBinaryChannel output;
        const Yr::UInt64 copied = c.length == ~0ull
                                      ? Utilities::CopyAll(input, output, c.bufferSize)
                                      : Utilities::Copy(input, output, c.length, c.bufferSize);
        EXPECT_EQ(copied, std::min<Yr::UInt64>(c.length, 26));
        EXPECT_EQ(output.GetBytes(), kLetters.substr(0, copied));
        EXPECT_EQ(output.GetWriteSizes(), c.writes);
        EXPECT_EQ(output.GetFlushCount() + output.GetCloseCount() + input.GetCloseCount(), 0);
    }
}

// Run under the address sanitizer, this also shows the buffer freed on failure.
TEST(BinaryChannelUtilitiesTest, FailuresLeaveWrittenBytes) {
    Yr::MemoryIBinaryChannel input(kLetters.data(), 26);
    FailingOBinaryChannel output(3);
    ExpectYrException<Yr::IllegalArgumentException>([&] { Utilities::Copy(input, output, 9, 0); },
                                                    "Invalid buffer size: size is 0.", -50);
    ExpectYrException<Yr::IllegalArgumentException>([&] { Utilities::CopyAll(input, output, 0); },
                                                    "Invalid buffer size: size is 0.", -50);
    EXPECT_THROW(Utilities::CopyAll(input, output, 4), Yr::IOException);
    EXPECT_EQ(output.GetBytes(), "abcdefgh");
}

// With both references empty, Copy and CopyAll name the output.
TEST(BinaryChannelUtilitiesTest, SharedFormsRejectEmptyRefsThenWorkAsPlain) {
    const char* const kInput = "Invalid input channel: channel is null.";
    const char* const kOutput = "Invalid output channel: channel is null.";
    RecordingOBinaryChannel plain;
    const Yr::Ref<Yr::IBinaryChannel> noInput;
    const Yr::Ref<Yr::OBinaryChannel> noOutput;
    const std::pair<std::function<void()>, const char*> kCases[] = {
        {[&] { Utilities::Copy(noInput, plain, 1, 0); }, kInput},
        {[&] { Utilities::Copy(noInput, noOutput, 1, 1); }, kOutput},
        {[&] { Utilities::CopyAll(noInput, noOutput, 1); }, kOutput},
        {[&] { Utilities::ContentEquals(noInput, noInput); }, kInput},
        {[&] { Utilities::Skip(noInput, 1); }, kInput},
        {[&] { Utilities::FillWithZeros(noOutput, 1); }, kOutput},
    };
    for (const auto& [call, message] : kCases) {
        SCOPED_TRACE(message);
        ExpectYrException<Yr::IllegalArgumentException>(call, message, -50);
    }
    const Yr::Ref<Yr::IBinaryChannel> input =
        Yr::MakeRef<Yr::MemoryIBinaryChannel>("0123456789", 10u);
    const Yr::Ref<Yr::OBinaryChannel> output(plain, Yr::NotOwned{});
    EXPECT_EQ(Utilities::Copy(input, output, 3, 4), 3u);
    EXPECT_EQ(Utilities::Skip(input, 2), 2u);
    Utilities::FillWithZeros(output, 2);
    EXPECT_EQ(Utilities::CopyAll(input, output, 7), 5u);
    EXPECT_EQ(plain.GetBytes(), std::string("012\0\0"
                                            "56789",
                                            10));
}

// The first stream hands out a byte per read: blocks must still line up.
TEST(BinaryChannelUtilitiesTest, ContentEqualsComparesWholeStreams) {
    const std::string big(10000, 'b');
    const struct {
        std::string first;
        std::string second;
        bool equal;
    } kCases[] = {{"", "", true},          {"abc", "abc", true},         {"abc", "ab", false},
                  {"", "a", false},        {"abc", "abd", false},        {big, big, true},
                  {big, big + "z", false}, {big + "a", big + "z", false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.first.size() << " " << c.second.size());
        FailingIBinaryChannel first(c.first, 0);
        Yr::MemoryIBinaryChannel second(c.second.data(), static_cast<Yr::UInt32>(c.second.size()));
        EXPECT_EQ(Utilities::ContentEquals(first, second), c.equal);
    }
}

TEST(BinaryChannelUtilitiesTest, SkipAndFillWithZerosWorkInPiecesOf1024) {
    const std::pair<std::size_t, Yr::UInt64> kSkips[] = {{26, 0}, {26, 30}, {3000, 2500}};
    for (const auto& [size, count] : kSkips) {
        SCOPED_TRACE(count);
        FailingIBinaryChannel input(std::string(size, 'x'), 0, 3000);
        const Yr::UInt64 present = std::min<Yr::UInt64>(size, count);
        EXPECT_EQ(Utilities::Skip(input, count), present);
        EXPECT_EQ(input.GetAvailable(), size - present);
    }
    const std::pair<Yr::UInt64, Sizes> kFills[] = {
        {0, {}}, {1024, {1024}}, {2500, {1024, 1024, 452}}};
    for (const auto& [count, writes] : kFills) {
        SCOPED_TRACE(count);
        RecordingOBinaryChannel output;
        Utilities::FillWithZeros(output, count);
        EXPECT_EQ(output.GetWriteSizes(), writes);
        EXPECT_EQ(output.GetBytes(), std::string(count, '\0'));
    }
}

}  // namespace
