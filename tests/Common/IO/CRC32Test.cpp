#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

#include "Common/IO/CRC32.h"

namespace {

using Morvelan::Common::IO::CRC32;

Yr::UInt32 ZlibCrc(const char* data, std::size_t size) {
    return static_cast<Yr::UInt32>(
        crc32(0, reinterpret_cast<const Bytef*>(data), static_cast<uInt>(size)));
}

TEST(CRC32Test, MatchesTheCheckValueAfterReset) {
    CRC32 crc;
    crc.Update("garbage", 7);
    crc.Reset();
    EXPECT_EQ(crc.GetValue(), 0u);
    crc.Update("123456789", 9);
    crc.Update(nullptr, 0);
    EXPECT_EQ(crc.GetValue(), 0xCBF43926u);
}

// Every length around the 64-byte stride from every alignment; then the same
// data in blocks of many sizes, which must equal one pass.
TEST(CRC32Test, MatchesZlibAtAllLengthsAlignmentsAndSplits) {
    std::mt19937 random(7);
    std::string data(5000, '\0');
    for (char& byte : data) byte = static_cast<char>(random());
    for (std::size_t offset = 0; offset < 16; ++offset)
        for (std::size_t size = 0; size <= 300; ++size) {
            SCOPED_TRACE(testing::Message() << "offset " << offset << " size " << size);
            CRC32 crc;
            crc.Update(data.data() + offset, static_cast<Yr::UInt32>(size));
            ASSERT_EQ(crc.GetValue(), ZlibCrc(data.data() + offset, size));
        }
    for (std::size_t block : {1, 63, 64, 65, 1000}) {
        SCOPED_TRACE(block);
        CRC32 crc;
        for (std::size_t at = 0; at < data.size(); at += block)
            crc.Update(data.data() + at,
                       static_cast<Yr::UInt32>(std::min(block, data.size() - at)));
        EXPECT_EQ(crc.GetValue(), ZlibCrc(data.data(), data.size()));
    }
}

}  // namespace
