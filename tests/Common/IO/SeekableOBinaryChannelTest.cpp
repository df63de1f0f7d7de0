#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Common/IO/SeekableOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::SeekableOBinaryChannel;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::RecordingOBinaryChannel;

std::string Pattern(Yr::UInt32 size) {
    std::string bytes(size, '\0');
    for (Yr::UInt32 i = 0; i < size; ++i) bytes[i] = static_cast<char>('A' + i % 23 + i / 4099);
    return bytes;
}

void Write(SeekableOBinaryChannel& channel, const std::string& bytes) {
    channel.Write(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
}

TEST(SeekableOBinaryChannelTest, OverwritesBeforeClose) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    std::string expected = Pattern(100);
    Write(channel, expected);
    channel.Seek(10);
    Write(channel, "12345");
    channel.Seek(100);
    channel.Close();
    expected.replace(10, 5, "12345");
    EXPECT_EQ(inner.GetBytes(), expected);
    EXPECT_EQ(inner.GetCloseCount(), 1);
}

// Flush passes only what lies before the position, in 64 KiB writes; the
// rest stays and can still be overwritten.
TEST(SeekableOBinaryChannelTest, FlushKeepsBytesBeyondPosition) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    std::string expected = Pattern(200000);
    Write(channel, expected);
    channel.Seek(150000);
    channel.Flush();
    EXPECT_EQ(inner.GetWriteSizes(), (std::vector<Yr::UInt32>{65536, 65536, 18928}));
    EXPECT_EQ(inner.GetFlushCount(), 0);
    EXPECT_EQ(channel.GetFlushPosition(), 150000u);
    EXPECT_EQ(channel.GetEndPosition(), 200000u);
    Write(channel, "xy");
    channel.Seek(200000);
    channel.Close();
    expected.replace(150000, 2, "xy");
    EXPECT_TRUE(inner.GetBytes() == expected);
}

TEST(SeekableOBinaryChannelTest, CloseDropsBytesBeyondPosition) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    Write(channel, "0123456789");
    channel.Seek(6);
    channel.Close();
    channel.Close();
    EXPECT_EQ(inner.GetBytes(), "012345");
    EXPECT_EQ(inner.GetCloseCount(), 1);
}

TEST(SeekableOBinaryChannelTest, SeekPastEndLeavesZeros) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    Write(channel, "ab");
    channel.Seek(1);
    channel.Seek(5);
    Write(channel, "z");
    EXPECT_EQ(channel.GetEndPosition(), 6u);
    channel.Close();
    EXPECT_EQ(inner.GetBytes(), std::string("ab\0\0\0z", 6));
}

TEST(SeekableOBinaryChannelTest, SeekBelowFlushPositionThrows) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    Write(channel, Pattern(50));
    channel.Flush();
    ExpectYrException<Yr::IOException>(
        [&] { channel.Seek(40); },
        "Failed to seek seekable output channel to position: 40: the specified position is "
        "beyond flush position: 50.",
        Yr::kIOErrorCode);
    channel.Seek(50);
    EXPECT_EQ(channel.GetPosition(), 50u);
}

TEST(SeekableOBinaryChannelTest, RefusesBadArgumentsAndUseAfterClose) {
    RecordingOBinaryChannel inner;
    SeekableOBinaryChannel channel(inner);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write(nullptr, 1); },
                                                    "Invalid buffer: buffer is null.", -50);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write("a", 0); },
                                                    "Invalid buffer size: size is 0.", -50);
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { SeekableOBinaryChannel shared{Yr::Ref<Yr::OBinaryChannel>()}; },
        "Invalid output channel: channel is null.", -50);
    channel.Close();
    const std::vector<std::function<void()>> calls = {
        [&] { channel.Write("a", 1); },    [&] { channel.Flush(); },
        [&] { channel.Seek(0); },          [&] { channel.GetPosition(); },
        [&] { channel.GetEndPosition(); }, [&] { channel.GetFlushPosition(); }};
    for (const auto& call : calls)
        ExpectYrException<Yr::IOException>(call, "Seekable binary output channel is closed.",
                                           Yr::kIOErrorCode);
}

}  // namespace
