#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Common/IO/PagedBuffer.h"
#include "Common/IO/PagedBufferOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::PagedBuffer;
using Yr::UInt32;

constexpr UInt32 kPage = PagedBuffer::kPageSize;

std::string Pattern(UInt32 size, char seed) {
    std::string bytes(size, '\0');
    for (UInt32 i = 0; i < size; ++i) bytes[i] = static_cast<char>(seed + i * 7 + i / 251);
    return bytes;
}

std::string ReadAll(const PagedBuffer& buffer) {
    std::string bytes(buffer.GetSize(), '\0');
    EXPECT_EQ(buffer.Read(0, bytes.data(), buffer.GetSize()), buffer.GetSize());
    return bytes;
}

// Writes at the given offsets, checked against a string holding the same.
struct WriteCase {
    const char* name;
    std::vector<std::pair<UInt32, UInt32>> writes;  // offset, size
};

class PagedBufferWriteTest : public testing::TestWithParam<WriteCase> {};

TEST_P(PagedBufferWriteTest, HoldsWhatAStringWould) {
    PagedBuffer buffer;
    std::string model;
    char seed = 'a';
    for (const auto& [offset, size] : GetParam().writes) {
        const std::string data = Pattern(size, seed++);
        buffer.Write(offset, data.data(), size);
        if (model.size() < offset + size) model.resize(offset + size, '\0');
        model.replace(offset, size, data);
    }
    EXPECT_EQ(buffer.GetSize(), model.size());
    EXPECT_TRUE(ReadAll(buffer) == model);
    EXPECT_GE(buffer.GetCapacity(), model.size());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PagedBufferWriteTest,
    testing::Values(
        WriteCase{"Small", {{0, 10}, {5, 10}}}, WriteCase{"EndsAtPageEnd", {{0, kPage}}},
        WriteCase{"SpansPages", {{0, 100}, {kPage - 3, 10}}},
        WriteCase{"SpansThreePages", {{10, 2 * kPage + 5}}},
        // The short first page is enlarged before the second is added.
        WriteCase{"EnlargesLastPageKeepingBytes", {{0, 5000}, {5000, 60000}, {65000, kPage}}},
        WriteCase{"GapReadsAsZeros", {{0, 3}, {kPage + 1, 4}}},
        WriteCase{"OverwritesAcrossBoundary", {{0, 2 * kPage}, {kPage - 1, 2}, {kPage, 1}}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PagedBufferTest, ReadStopsAtEndAndPastEndReturnsZero) {
    PagedBuffer buffer;
    const std::string data = Pattern(kPage + 20, 'x');
    buffer.Write(0, data.data(), kPage + 20);
    char out[64];
    EXPECT_EQ(buffer.Read(kPage - 4, out, 8), 8u);
    EXPECT_EQ(std::string(out, 8), data.substr(kPage - 4, 8));
    EXPECT_EQ(buffer.Read(kPage + 10, out, 64), 10u);
    EXPECT_EQ(buffer.Read(kPage + 20, out, 64), 0u);
    EXPECT_EQ(buffer.Read(3 * kPage, out, 64), 0u);
}

// Bytes dropped by Truncate must not come back through Grow or a gap.
TEST(PagedBufferTest, GrowAfterTruncateZeroes) {
    PagedBuffer buffer;
    const std::string data = Pattern(kPage + 100, 'q');
    buffer.Write(0, data.data(), kPage + 100);
    buffer.Truncate(kPage - 10);
    EXPECT_EQ(buffer.GetSize(), kPage - 10);
    buffer.Grow(kPage + 50);
    buffer.Write(kPage + 80, "z", 1);
    buffer.Grow(10);
    const std::string all = ReadAll(buffer);
    ASSERT_EQ(all.size(), kPage + 81);
    EXPECT_TRUE(all.substr(0, kPage - 10) == data.substr(0, kPage - 10));
    EXPECT_EQ(all.substr(kPage - 10, 90), std::string(90, '\0'));
    EXPECT_EQ(all.back(), 'z');
}

TEST(PagedBufferTest, WriteToPassesPagePieces) {
    PagedBuffer buffer;
    const std::string data = Pattern(2 * kPage, 'w');
    buffer.Write(0, data.data(), 2 * kPage);
    Morvelan::Testing::RecordingOBinaryChannel output;
    buffer.WriteTo(output, kPage - 5, kPage + 5);
    EXPECT_EQ(output.GetWriteSizes(), (std::vector<UInt32>{5, kPage}));
    EXPECT_TRUE(output.GetBytes() == data.substr(kPage - 5, kPage + 5));
}

TEST(PagedBufferTest, ClearReleasesPages) {
    PagedBuffer buffer;
    buffer.Grow(kPage + 1);
    EXPECT_GT(buffer.GetCapacity(), kPage);
    buffer.Clear();
    EXPECT_EQ(buffer.GetSize(), 0u);
    EXPECT_EQ(buffer.GetCapacity(), 0u);
    buffer.Write(2, "ab", 2);
    EXPECT_EQ(ReadAll(buffer), std::string("\0\0ab", 4));
}

TEST(PagedBufferTest, WritePastMaximumThrows) {
    PagedBuffer buffer;
    Morvelan::Testing::ExpectYrException<Yr::OutOfMemoryException>(
        [&] { buffer.Write(PagedBuffer::kMaximumSize, "a", 1); }, "Paged buffer is full.",
        Yr::kOutOfMemoryErrorCode);
    EXPECT_EQ(buffer.GetSize(), 0u);
}

// Close keeps the bytes for the owner but refuses further use.
TEST(PagedBufferOBinaryChannelTest, AppendsAndKeepsBytesAfterClose) {
    using Morvelan::Testing::ExpectYrException;
    Morvelan::Common::IO::PagedBufferOBinaryChannel channel;
    channel.Write("ab", 2);
    channel.Write("cd", 2);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write(nullptr, 1); },
                                                    "Invalid buffer: buffer is null.", -50);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write("a", 0); },
                                                    "Invalid buffer size: buffer size is 0.", -50);
    channel.Close();
    channel.Close();
    const char* closed = "Paged buffer binary output channel is closed.";
    ExpectYrException<Yr::IOException>([&] { channel.Write("e", 1); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { channel.Flush(); }, closed, Yr::kIOErrorCode);
    EXPECT_EQ(ReadAll(channel.GetBuffer()), "abcd");
}

}  // namespace
