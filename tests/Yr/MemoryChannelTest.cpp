#include <gtest/gtest.h>

#include <string>

#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryManager.h"
#include "Yr/MemoryOBinaryChannel.h"

namespace {

TEST(MemoryChannelTest, InputCopiesItsSourceWhenAskedOutputGrowsAndHandsOverItsBlock) {
    std::string source = "0123456789";
    Yr::MemoryIBinaryChannel in(source.data(), 10, true);
    source = "xxxxxxxxxx";
    char buffer[16];
    EXPECT_EQ(in.Read(buffer, 16, Yr::kReadSome), 10u);
    EXPECT_EQ(std::string(buffer, 10), "0123456789");
    EXPECT_EQ(in.Read(buffer, 16, Yr::kReadSome), 0u);

    Yr::MemoryOBinaryChannel out;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        const std::string piece = std::to_string(i);
        out.Write(piece.data(), static_cast<Yr::UInt32>(piece.size()));
        expected += piece;
    }
    char* block = out.ReleaseBuffer();
    EXPECT_EQ(std::string(block, expected.size()), expected);
    Yr::MemoryManager::Free(block);
    EXPECT_EQ(out.GetSize(), 0u);
}

}  // namespace

// Small transfers take fixed-size moves by size class; every size up to and
// past the largest class must come through whole and in order.
TEST(MemoryChannelTest, EverySmallTransferSizeKeepsEveryByte) {
    std::string data;
    for (int i = 0; i < 600; ++i) data += static_cast<char>(i * 7 + 1);
    Yr::MemoryOBinaryChannel output;
    std::size_t written = 0;
    for (Yr::UInt32 size = 0; written + size <= data.size(); ++size) {
        output.Write(data.data() + written, size);
        written += size;
    }
    ASSERT_EQ(std::string(output.GetBuffer(), output.GetSize()), data.substr(0, written));

    Yr::MemoryIBinaryChannel input(data.data(), static_cast<Yr::UInt32>(data.size()));
    std::string read;
    char buffer[40];
    for (Yr::UInt32 size = 1; input.GetAvailable() > 0; size = size % 40 + 1) {
        const Yr::UInt32 count = input.Read(buffer, size, Yr::kReadSome);
        read.append(buffer, count);
    }
    EXPECT_EQ(read, data);
}
