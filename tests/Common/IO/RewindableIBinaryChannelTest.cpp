#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/PagedBuffer.h"
#include "Common/IO/RewindableIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"

namespace {

using Morvelan::Common::IO::RewindableIBinaryChannel;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::FailingIBinaryChannel;

constexpr Yr::UInt32 kUnbounded = 0;

std::unique_ptr<RewindableIBinaryChannel> Make(Yr::IBinaryChannel& inner, Yr::UInt32 capacity) {
    return capacity == kUnbounded ? std::make_unique<RewindableIBinaryChannel>(inner)
                                  : std::make_unique<RewindableIBinaryChannel>(inner, capacity);
}

std::string ReadExactly(Yr::IBinaryChannel& channel, Yr::UInt32 size) {
    std::string bytes(size, '\0');
    channel.Read(bytes.data(), size, Yr::kReadAll);
    return bytes;
}

// The inner channel serves each byte once: what comes back after the rewind
// is from the history.
TEST(RewindableIBinaryChannelTest, RereadsFromHistoryOnly) {
    for (Yr::UInt32 capacity : {kUnbounded, Yr::UInt32{10}}) {
        FailingIBinaryChannel inner("0123456789abcdefghij", 0, 3);
        auto channel = Make(inner, capacity);
        EXPECT_EQ(ReadExactly(*channel, 10), "0123456789");
        channel->Rewind(0);
        EXPECT_EQ(channel->GetAvailable(), 20u);
        EXPECT_EQ(ReadExactly(*channel, 10), "0123456789");
        EXPECT_EQ(inner.GetAvailable(), 10u);
    }
}

// One inner read of 10 bytes into a ring of 4 keeps "6789", each in its slot.
TEST(RewindableIBinaryChannelTest, BoundedHistoryKeepsTheLastCapacityBytes) {
    Yr::MemoryIBinaryChannel inner("0123456789", 10);
    RewindableIBinaryChannel channel(inner, 4);
    char buffer[16];
    ASSERT_EQ(channel.Read(buffer, sizeof buffer, Yr::kReadSome), 10u);
    EXPECT_TRUE(channel.CanRewind(6));
    EXPECT_FALSE(channel.CanRewind(5));
    EXPECT_FALSE(channel.CanRewind(11));
    ExpectYrException<Yr::IOException>(
        [&] { channel.Rewind(5); },
        "Failed to rewind rewindable binary input channel to position: 5: the specified position "
        "hasn't been buffered yet.",
        -7003);
    ExpectYrException<Yr::IOException>(
        [&] { channel.Rewind(11); },
        "Failed to rewind rewindable binary input channel to position: 11: the specified "
        "position hasn't been reached yet.",
        -7003);
    channel.Rewind(6);
    // Rewound bytes are served alone, without fresh ones.
    ASSERT_EQ(channel.Read(buffer, sizeof buffer, Yr::kReadSome), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    channel.Rewind(7);
    channel.Rewind(9);
    EXPECT_EQ(channel.GetPosition(), 9u);
    EXPECT_EQ(ReadExactly(channel, 1), "9");
}

// Random reads and rewinds (back and forward) against the plain bytes; the
// unbounded row crosses page boundaries.
TEST(RewindableIBinaryChannelTest, MatchesThePlainBytes) {
    const struct {
        Yr::UInt32 capacity;
        std::size_t size;
        Yr::UInt32 largestRead;
    } kCases[] = {{1, 3000, 3},
                  {7, 5000, 20},
                  {4096, 200000, 10000},
                  {kUnbounded, 3 * Morvelan::Common::IO::PagedBuffer::kPageSize, 200000}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.capacity);
        std::mt19937 random(5);
        std::string data(c.size, '\0');
        for (char& byte : data) byte = static_cast<char>(random());
        Yr::MemoryIBinaryChannel inner(data.data(), static_cast<Yr::UInt32>(data.size()));
        auto channel = Make(inner, c.capacity);
        std::string buffer(c.largestRead, '\0');
        Yr::UInt64 furthest = 0;
        while (furthest < data.size()) {
            const Yr::UInt64 position = channel->GetPosition();
            if (random() % 4 == 0) {
                // Back by up to two reads' worth, as far as the ring allows.
                Yr::UInt64 back = std::min<Yr::UInt64>(furthest, 2 * c.largestRead);
                if (c.capacity != kUnbounded) back = std::min<Yr::UInt64>(back, c.capacity);
                const Yr::UInt64 target = furthest - random() % (back + 1);
                ASSERT_TRUE(channel->CanRewind(target));
                channel->Rewind(target);
                ASSERT_EQ(channel->GetAvailable(), data.size() - target);
                continue;
            }
            const Yr::UInt32 count =
                channel->Read(buffer.data(), 1 + random() % c.largestRead, Yr::kReadSome);
            ASSERT_GT(count, 0u);
            ASSERT_EQ(buffer.compare(0, count, data, position, count), 0) << position;
            furthest = std::max(furthest, position + count);
        }
    }
}

TEST(RewindableIBinaryChannelTest, RejectsInvalidArgumentsAndUseAfterClose) {
    FailingIBinaryChannel inner("0123456789", 0, 10);
    RewindableIBinaryChannel channel(inner, 8);
    const Yr::Ref<Yr::IBinaryChannel> none;
    char buffer[4];
    const char* const kNoChannel = "Invalid input channel: channel is null.";
    const char* const kNoLength = "Invalid destination length: length is 0.";
    const struct {
        std::function<void()> action;
        const char* message;
    } kCases[] = {
        {[&] { RewindableIBinaryChannel(inner, 0); }, "Invalid capacity: capacity is 0."},
        {[&] { RewindableIBinaryChannel(none, 4); }, kNoChannel},
        {[&] { RewindableIBinaryChannel{none}; }, kNoChannel},
        {[&] { channel.Read(nullptr, 1, Yr::kReadSome); },
         "Invalid destination buffer: buffer is null."},
        {[&] { channel.Read(buffer, 0, Yr::kReadSome); }, kNoLength},
    };
    for (const auto& c : kCases)
        ExpectYrException<Yr::IllegalArgumentException>(c.action, c.message, -50);
    channel.Read(buffer, 4, Yr::kReadSome);
    channel.Close();
    channel.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);
    const std::function<void()> kCalls[] = {
        [&] { channel.Read(buffer, 4, Yr::kReadSome); }, [&] { channel.GetAvailable(); },
        [&] { channel.GetPosition(); }, [&] { channel.CanRewind(0); }, [&] { channel.Rewind(0); }};
    for (const auto& call : kCalls)
        ExpectYrException<Yr::IOException>(call, "Rewindable binary input channel is closed.",
                                           -7003);
    // Argument faults come before the closed check.
    ExpectYrException<Yr::IllegalArgumentException>(kCases[4].action, kNoLength, -50);
}

}  // namespace
