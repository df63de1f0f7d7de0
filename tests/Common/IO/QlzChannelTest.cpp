#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "Common/IO/QlzIBinaryChannel.h"
#include "Common/IO/QlzOBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::QlzIBinaryChannel;
using Morvelan::Common::IO::QlzOBinaryChannel;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::RecordingOBinaryChannel;

constexpr Yr::UInt32 kPacket = QlzOBinaryChannel::MinimumPacketSize;

std::string RandomBytes(std::size_t size) {
    std::mt19937 generator(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(generator());
    return bytes;
}

// Text that compresses, with a random stretch that does not.
std::string MixedData(std::size_t size) {
    std::string data;
    for (int line = 0; data.size() < size; ++line)
        data += "line " + std::to_string(line) + ": the quick brown fox jumps over the lazy dog\n";
    const std::string noise = RandomBytes(size / 3);
    data.replace(size / 3, noise.size(), noise);
    data.resize(size);
    return data;
}

std::string Compress(const std::string& data, Yr::UInt32 packetSize, std::size_t piece = 1000) {
    RecordingOBinaryChannel sink;
    QlzOBinaryChannel channel(sink, packetSize);
    for (std::size_t offset = 0; offset < data.size(); offset += piece)
        channel.Write(data.data() + offset,
                      static_cast<Yr::UInt32>(std::min(piece, data.size() - offset)));
    channel.Close();
    EXPECT_EQ(sink.GetCloseCount(), 1);
    return sink.GetBytes();
}

// Reads the whole stream in reads of `chunk` bytes.
std::string Decompress(Yr::IBinaryChannel& source, Yr::UInt32 chunk = 4096) {
    QlzIBinaryChannel channel(source);
    std::string data;
    std::string buffer(chunk, '\0');
    while (const Yr::UInt32 count = channel.Read(buffer.data(), chunk, Yr::kReadSome))
        data.append(buffer.data(), count);
    EXPECT_EQ(channel.Read(buffer.data(), chunk, Yr::kReadSome), 0u);
    return data;
}

std::string Decompress(const std::string& stream) {
    Yr::MemoryIBinaryChannel source(stream.data(), static_cast<Yr::UInt32>(stream.size()));
    return Decompress(source);
}

TEST(QlzChannelTest, StreamsRoundTrip) {
    const struct {
        std::size_t size;
        Yr::UInt32 packetSize;
    } cases[] = {
        {0, kPacket},           {1, kPacket},     {kPacket, kPacket},
        {kPacket + 1, kPacket}, {300000, 262144}, {3000000, 262144},  // crosses the history's reset
        {100000, kPacket},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        const std::string data = MixedData(c.size);
        const std::string stream = Compress(data, c.packetSize);
        EXPECT_EQ(Decompress(stream), data);
        // Whole packets go from one large write, and into one large read,
        // without a copy: the bytes must not change for it.
        EXPECT_TRUE(Compress(data, c.packetSize, std::max<std::size_t>(1, c.size)) == stream);
        Yr::MemoryIBinaryChannel source(stream.data(), static_cast<Yr::UInt32>(stream.size()));
        EXPECT_TRUE(Decompress(source, 1u << 20) == data);
    }
}

TEST(QlzChannelTest, IncompressibleFullPacketsRoundTrip) {
    // Each comes out longer than the packet itself.
    const std::string data = RandomBytes(3 * 262144);
    const std::string stream = Compress(data, 262144, 262144);
    EXPECT_GT(stream.size(), data.size() + 3 * 4);
    Morvelan::Testing::OneByteIBinaryChannel slow(stream);
    EXPECT_EQ(Decompress(slow, 100000), data);
}

TEST(QlzChannelTest, HeaderIsMagicPacketSizeAndVersion) {
    const std::string stream = Compress("", kPacket);
    EXPECT_EQ(Morvelan::Testing::Hex(stream), "43 5A 4C 51 00 20 00 00 01 00 00 00 00 00 00 00");
    EXPECT_EQ(stream.substr(0, 4), "CZLQ");
}

TEST(QlzChannelTest, FlushLetsTheReaderDecodeEverythingSoFar) {
    RecordingOBinaryChannel sink;
    QlzOBinaryChannel channel(sink, kPacket);
    channel.Write("abc", 3);
    channel.Flush();
    EXPECT_EQ(sink.GetFlushCount(), 1);
    EXPECT_EQ(Decompress(sink.GetBytes()), "abc");
    channel.Finish();
    EXPECT_TRUE(channel.IsFinished());
    channel.Write("def", 3);  // a finished stream may go on
    EXPECT_FALSE(channel.IsFinished());
    channel.Close();
    channel.Close();
    EXPECT_EQ(Decompress(sink.GetBytes()), "abcdef");
}

TEST(QlzChannelTest, MisuseIsRefused) {
    RecordingOBinaryChannel sink;
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { QlzOBinaryChannel(sink, kPacket - 1); },
        "Invalid packet size: size is less than minimum packet size.",
        Yr::kIllegalArgumentErrorCode);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { QlzOBinaryChannel(Yr::Ref<Yr::OBinaryChannel>(), kPacket); },
        "Invalid output channel: channel is null.", Yr::kIllegalArgumentErrorCode);

    QlzOBinaryChannel output(sink, kPacket);
    output.Close();
    ExpectYrException<Yr::IOException>([&] { output.Write("a", 1); },
                                       "QuickLZ binary output channel is closed.",
                                       Yr::kIOErrorCode);

    const std::string stream = sink.GetBytes();
    Yr::MemoryIBinaryChannel source(stream.data(), static_cast<Yr::UInt32>(stream.size()));
    QlzIBinaryChannel input(source);
    input.Close();
    char byte;
    ExpectYrException<Yr::IOException>([&] { input.Read(&byte, 1, Yr::kReadSome); },
                                       "QuickLZ binary input channel is closed.", Yr::kIOErrorCode);
}

std::string WithNumberAt(std::string stream, std::size_t offset, Yr::UInt32 value) {
    for (int i = 0; i < 4; ++i) stream[offset + i] = static_cast<char>(value >> (8 * i));
    return stream;
}

TEST(QlzChannelTest, DamagedHeadersAndPacketLengthsAreRefused) {
    const std::string stream = Compress(MixedData(20000), kPacket);
    const struct {
        std::string bytes;
        const char* message;
    } cases[] = {
        {WithNumberAt(stream, 0, 0x514C5A44),
         "Failed to read QuickLZ stream header: invalid header magic."},
        {WithNumberAt(stream, 12, 1),
         "Invalid QuickLZ binary stream header: unsupported stream version: 1.1."},
        {WithNumberAt(stream, 4, QlzOBinaryChannel::MaximumPacketSize + 1),
         "Invalid QuickLZ binary stream header: invalid packet size: 67108865."},
        {WithNumberAt(stream, 16, kPacket + 401), "Failed to read packet: invalid packet size."},
        {WithNumberAt(stream, 16, 0), "Failed to read packet: invalid packet size."},
        {stream.substr(0, 18), "Failed to read packet."},
        {stream.substr(0, 30), "Failed to read packet."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        Yr::MemoryIBinaryChannel source(c.bytes.data(), static_cast<Yr::UInt32>(c.bytes.size()));
        ExpectYrException<Yr::IOException>([&] { Decompress(source); }, c.message,
                                           Yr::kIOErrorCode);
    }
    // A lying length is refused before its bytes are taken.
    const std::string lying = WithNumberAt(stream, 16, kPacket + 401);
    Yr::MemoryIBinaryChannel source(lying.data(), static_cast<Yr::UInt32>(lying.size()));
    EXPECT_THROW(Decompress(source), Yr::IOException);
    EXPECT_EQ(source.GetAvailable(), lying.size() - 20);
}

TEST(QlzChannelTest, EveryCutOrFlippedByteFailsCleanly) {
    const std::string data = MixedData(3 * kPacket);
    const std::string stream = Compress(data, kPacket);
    for (std::size_t cut = 0; cut < stream.size(); ++cut) {
        try {
            const std::string read = Decompress(stream.substr(0, cut));
            EXPECT_EQ(read, data.substr(0, read.size())) << cut;  // a cut between packets
        } catch (const Yr::IOException&) {
        }
    }
    for (std::size_t offset = 16; offset < stream.size(); offset += 97) {
        std::string flipped = stream;
        flipped[offset] = static_cast<char>(flipped[offset] ^ 0x5A);
        try {
            Decompress(flipped);
        } catch (const Yr::IOException&) {
        }
    }
}

}  // namespace
