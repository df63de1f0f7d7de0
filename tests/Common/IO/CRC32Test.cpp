#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

#include "Common/IO/CRC32.h"

namespace {

using Morvelan::Common::IO::CRC32;

Yr::UInt32 ZlibCrc(Yr::UInt32 start, const char* data, std::size_t size) {
    return static_cast<Yr::UInt32>(
        crc32(start, reinterpret_cast<const Bytef*>(data), static_cast<uInt>(size)));
}

TEST(CRC32Test, MatchesPublishedValuesAfterReset) {
    const std::pair<std::string, Yr::UInt32> kCases[] = {
        {"", 0},
        {"123456789", 0xCBF43926u},
        {"The quick brown fox jumps over the lazy dog", 0x414FA339u},
        {std::string(100, '\0'), 0x9988C6CAu},
        {std::string(100, '\xFF'), 0x03D28681u},
    };
    CRC32 crc;
    for (const auto& [data, expected] : kCases) {
        SCOPED_TRACE(data.size());
        crc.Reset();
        EXPECT_EQ(crc.GetValue(), 0u);
        crc.Update(data.data(), static_cast<Yr::UInt32>(data.size()));
        crc.Update(nullptr, 0);
        EXPECT_EQ(crc.GetValue(), expected);
    }
}

// Every length around the 64-byte stride, from every alignment, fresh and
// chained onto an earlier value; then the same data in blocks of many sizes.
TEST(CRC32Test, MatchesZlibAtAllLengthsAlignmentsAndSplits) {
    std::mt19937 random(7);
    std::string data(5000, '\0');
    for (char& byte : data) byte = static_cast<char>(random());
    const Yr::UInt32 prefix = ZlibCrc(0, "prefix", 6);
    for (std::size_t offset = 0; offset < 16; ++offset)
        for (std::size_t size = 0; size <= 300; ++size) {
            SCOPED_TRACE(testing::Message() << "offset " << offset << " size " << size);
            CRC32 fresh;
            CRC32 chained;
            chained.Update("prefix", 6);
            fresh.Update(data.data() + offset, static_cast<Yr::UInt32>(size));
            chained.Update(data.data() + offset, static_cast<Yr::UInt32>(size));
            ASSERT_EQ(fresh.GetValue(), ZlibCrc(0, data.data() + offset, size));
            ASSERT_EQ(chained.GetValue(), ZlibCrc(prefix, data.data() + offset, size));
        }
    for (std::size_t block : {1, 63, 64, 65, 1000}) {
        SCOPED_TRACE(block);
        CRC32 crc;
        for (std::size_t at = 0; at < data.size(); at += block)
            crc.Update(data.data() + at,
                       static_cast<Yr::UInt32>(std::min(block, data.size() - at)));
        EXPECT_EQ(crc.GetValue(), ZlibCrc(0, data.data(), data.size()));
    }
}

}  // namespace
