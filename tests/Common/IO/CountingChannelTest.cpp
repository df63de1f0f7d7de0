#include <gtest/gtest.h>

#include <vector>

#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/CountingOBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;

TEST(CountingChannelTest, InputCountsWhatReadsReturnNotWhatWasAsked) {
    Morvelan::Testing::OneByteIBinaryChannel inner("abcdef");
    CountingIBinaryChannel channel(inner);
    char buffer[100];
    channel.Read(buffer, sizeof buffer, Yr::kReadSome);
    EXPECT_EQ(channel.GetCount(), 1u);
    channel.ResetCount();
    while (channel.Read(buffer, sizeof buffer, Yr::kReadSome) != 0) {
    }
    EXPECT_EQ(channel.GetCount(), 5u);
}

// No check of its own: the inner channel sees the empty write.
TEST(CountingChannelTest, OutputPassesZeroByteWriteOnAndCountsNothing) {
    Morvelan::Testing::RecordingOBinaryChannel inner;
    CountingOBinaryChannel channel(inner);
    channel.Write("abc", 3);
    channel.Write("x", 0);
    EXPECT_EQ(channel.GetCount(), 3u);
    EXPECT_EQ(inner.GetWriteSizes(), (std::vector<Yr::UInt32>{3, 0}));
}

}  // namespace
