#include <gtest/gtest.h>

#include <string>

#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/BoundedIBinaryChannel.h"
#include "tests/support/FailingIBinaryChannel.h"

namespace {

using Morvelan::Common::IO::BoundedIBinaryChannel;

TEST(BoundedIBinaryChannelTest, YieldsTheSmallerOfLimitAndStreamThenEnds) {
    const std::string data(100, 'q');
    for (Yr::UInt64 limit : {0ull, 1ull, 10ull, 100ull, 101ull, ~0ull}) {
        SCOPED_TRACE(limit);
        const Yr::UInt32 expected = limit < 100 ? static_cast<Yr::UInt32>(limit) : 100;
        Yr::MemoryIBinaryChannel inner(data.data(), 100);
        BoundedIBinaryChannel channel(inner, limit);
        EXPECT_EQ(channel.GetAvailable(), expected);
        char buffer[128];
        EXPECT_EQ(channel.Read(buffer, 128, Yr::kReadSome), expected);
        EXPECT_EQ(channel.GetAvailable(), 0u);
        EXPECT_EQ(channel.Read(buffer, 128, Yr::kReadSome), 0u);
        EXPECT_EQ(inner.GetAvailable(), 100u - expected);
    }
}

// Short inner reads add up to the limit exactly; the inner is not asked past it.
TEST(BoundedIBinaryChannelTest, StopsAtTheLimitOverShortReads) {
    Morvelan::Testing::FailingIBinaryChannel inner("abcdef", 0);
    BoundedIBinaryChannel channel(inner, 4);
    char buffer[4];
    channel.Read(buffer, 4, Yr::kReadAll);
    EXPECT_EQ(std::string(buffer, 4), "abcd");
    EXPECT_EQ(channel.Read(buffer, 4, Yr::kReadSome), 0u);
    EXPECT_EQ(inner.GetAvailable(), 2u);
}

}  // namespace
