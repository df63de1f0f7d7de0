#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CRC32OBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;

TEST(CRC32ChannelTest, OutputMatchesZlibOverUnevenBlocks) {
    std::string data(100000, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 131 + i / 251);
    Morvelan::Testing::RecordingOBinaryChannel inner;
    CRC32OBinaryChannel channel(inner);
    channel.Write("123456789", 9);
    EXPECT_EQ(channel.GetCRC(), 0xCBF43926u);
    channel.Reset();
    for (std::size_t at = 0, block = 1; at < data.size(); at += block, block = block * 3 % 997 + 1)
        channel.Write(data.data() + at, static_cast<Yr::UInt32>(std::min(block, data.size() - at)));
    EXPECT_EQ(channel.GetCRC(), crc32(0, reinterpret_cast<const Bytef*>(data.data()), 100000));
    EXPECT_EQ(inner.GetBytes(), "123456789" + data);
}

// Bytes of the buffer beyond those returned must stay out of the checksum.
TEST(CRC32ChannelTest, InputChecksumsOnlyTheBytesReturned) {
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
