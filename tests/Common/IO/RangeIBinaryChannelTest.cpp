#include <gtest/gtest.h>

#include <string>

#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/RangeIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"

namespace {

using Morvelan::Common::IO::RangeIBinaryChannel;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::FailingIBinaryChannel;

constexpr Yr::UInt64 kLargest = ~Yr::UInt64{0};

// Offsets count from where the inner channel stood at construction ("01" was
// read before). The inner hands out a byte per read; nothing is read until the
// first GetAvailable, which skips the prefix.
TEST(RangeIBinaryChannelTest, YieldsTheBytesOfTheRange) {
    const struct {
        Yr::UInt64 offset;
        Yr::UInt64 length;
        std::string expected;
    } kCases[] = {{0, 1, "2"}, {3, 4, "5678"}, {6, 5, "89"},
                  {8, 1, ""},  {25, 3, ""},    {0, kLargest - 1, "23456789"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.offset << "+" << c.length);
        FailingIBinaryChannel inner("0123456789", 0);
        char buffer[3];
        inner.Read(buffer, 2, Yr::kReadAll);
        RangeIBinaryChannel channel(inner, c.offset, c.length);
        EXPECT_EQ(inner.GetAvailable(), 8u);
        EXPECT_EQ(channel.GetAvailable(), c.expected.size());
        EXPECT_EQ(inner.GetAvailable(), 8 - std::min<Yr::UInt64>(c.offset, 8));
        std::string read;
        while (Yr::UInt32 count = channel.Read(buffer, sizeof buffer, Yr::kReadSome))
            read.append(buffer, count);
        EXPECT_EQ(read, c.expected);
        EXPECT_EQ(channel.GetAvailable(), 0u);
    }
}

TEST(RangeIBinaryChannelTest, RejectsOutOfRangeArgumentsLengthFirst) {
    const char* const kLength = "Invalid range: length is out of allowed range.";
    const struct {
        Yr::UInt64 offset;
        Yr::UInt64 length;
        const char* message;
    } kCases[] = {{0, 0, kLength},
                  {5, kLargest, kLength},
                  {kLargest, 0, kLength},
                  {kLargest, 1, "Invalid range: offset is out of allowed range."}};
    Yr::MemoryIBinaryChannel inner("0123456789", 10);
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.message);
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { RangeIBinaryChannel(inner, c.offset, c.length); }, c.message, -50);
    }
}

TEST(RangeIBinaryChannelTest, ClosesInnerOnceThenRejectsUseBufferChecksFirst) {
    FailingIBinaryChannel inner("0123456789", 0);
    RangeIBinaryChannel channel(inner, 1, 2);
    channel.Close();
    channel.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);
    char buffer[4];
    const char* const kClosed = "Range input channel is closed.";
    ExpectYrException<Yr::IOException>([&] { channel.Read(buffer, 4, Yr::kReadSome); }, kClosed,
                                       -7003);
    ExpectYrException<Yr::IOException>([&] { channel.GetAvailable(); }, kClosed, -7003);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { channel.Read(nullptr, 4, Yr::kReadSome); },
        "Invalid target buffer: target buffer is null.", -50);
}

}  // namespace
