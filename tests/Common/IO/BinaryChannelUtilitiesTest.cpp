#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/BinaryChannelUtilities.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"
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
TEST(BinaryChannelUtilitiesTest, FailedWriteEndsTheCopy) {
    Yr::MemoryIBinaryChannel input(kLetters.data(), 26);
    RecordingOBinaryChannel output;
    output.SetFailing();
    EXPECT_THROW(Utilities::CopyAll(input, output, 4), Yr::IOException);
}

// Channels come before the buffer size; with both references empty, Copy and
// CopyAll name the output.
TEST(BinaryChannelUtilitiesTest, ArgumentsAreCheckedInOrder) {
    const char* const kInput = "Invalid input channel: channel is null.";
    const char* const kOutput = "Invalid output channel: channel is null.";
    const char* const kSize = "Invalid buffer size: size is 0.";
    Yr::MemoryIBinaryChannel input(kLetters.data(), 26);
    RecordingOBinaryChannel output;
    const Yr::Ref<Yr::IBinaryChannel> noInput;
    const Yr::Ref<Yr::OBinaryChannel> noOutput;
    const std::pair<std::function<void()>, const char*> kCases[] = {
        {[&] { Utilities::Copy(noInput, output, 1, 0); }, kInput},
        {[&] { Utilities::Copy(noInput, noOutput, 1, 0); }, kOutput},
        {[&] { Utilities::CopyAll(noInput, noOutput, 0); }, kOutput},
        {[&] { Utilities::Copy(input, output, 9, 0); }, kSize},
        {[&] { Utilities::CopyAll(input, output, 0); }, kSize},
        {[&] { Utilities::ContentEquals(noInput, noInput); }, kInput},
    };
    for (const auto& [call, message] : kCases) {
        SCOPED_TRACE(message);
        ExpectYrException<Yr::IllegalArgumentException>(call, message, -50);
    }
    EXPECT_EQ(output.GetBytes(), "");
}

// The first stream hands out a byte per read: blocks must still line up.
TEST(BinaryChannelUtilitiesTest, ContentEqualsComparesWholeStreams) {
    const std::string big(10000, 'b');
    const struct {
        std::string first;
        std::string second;
        bool equal;
    } kCases[] = {{"", "", true},   {"abc", "ab", false},    {"", "a", false},
                  {big, big, true}, {big, big + "z", false}, {big + "a", big + "z", false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.first.size() << " " << c.second.size());
        FailingIBinaryChannel first(c.first, 0);
        Yr::MemoryIBinaryChannel second(c.second.data(), static_cast<Yr::UInt32>(c.second.size()));
        EXPECT_EQ(Utilities::ContentEquals(first, second), c.equal);
    }
}

TEST(BinaryChannelUtilitiesTest, SkipStopsAtTheEndFillWithZerosWritesPiecesOf1024) {
    FailingIBinaryChannel input(std::string(3000, 'x'), 0, 3000);
    EXPECT_EQ(Utilities::Skip(input, 2500), 2500u);
    EXPECT_EQ(Utilities::Skip(input, 600), 500u);
    RecordingOBinaryChannel output;
    Utilities::FillWithZeros(output, 2500);
    EXPECT_EQ(output.GetWriteSizes(), (Sizes{1024, 1024, 452}));
    EXPECT_EQ(output.GetBytes(), std::string(2500, '\0'));
}

}  // namespace
