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
