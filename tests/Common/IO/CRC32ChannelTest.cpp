#include <gtest/gtest.h>

#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CRC32OBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;

TEST(CRC32ChannelTest, OutputChecksumsWhatItPassesOnSinceTheLastReset) {
    Morvelan::Testing::RecordingOBinaryChannel inner;
    CRC32OBinaryChannel channel(inner);
    channel.Write("skip", 4);
    channel.Reset();
    channel.Write("1234", 4);
    channel.Write("56789", 5);
    EXPECT_EQ(channel.GetCRC(), 0xCBF43926u);
    EXPECT_EQ(inner.GetBytes(), "skip123456789");
}

// Bytes of the buffer beyond those returned must stay out of the checksum.
TEST(CRC32ChannelTest, InputChecksumsOnlyTheBytesReturnedSinceTheLastReset) {
    Morvelan::Testing::OneByteIBinaryChannel inner("skip|123456789");
    CRC32IBinaryChannel channel(inner);
    char buffer[64] = {};
    channel.Read(buffer, 5, Yr::kReadAll);
    channel.Reset();
    while (channel.Read(buffer, sizeof buffer, Yr::kReadSome) != 0) {
    }
    EXPECT_EQ(channel.GetCRC(), 0xCBF43926u);
}

}  // namespace
