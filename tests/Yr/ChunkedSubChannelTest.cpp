#include <gtest/gtest.h>

#include <string>

#include "Yr/BinProtocolX.h"
#include "Yr/ChunkedIBinarySubChannel.h"
#include "Yr/ChunkedOBinarySubChannel.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Testing::RecordingOBinaryChannel;

// Reads the whole sub-stream; the channel then stands behind its end mark.
std::string ReadSubStream(Yr::IBinaryChannel& framed) {
    Yr::ChunkedIBinarySubChannel reader(framed, Yr::GetBinIProtocolX());
    std::string result;
    char buffer[4096];
    while (const Yr::UInt32 count = reader.Read(buffer, sizeof buffer, Yr::kReadSome))
        result.append(buffer, count);
    EXPECT_EQ(reader.Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    return result;
}

TEST(ChunkedSubChannelTest, RoundTripsAcrossChunkBoundaries) {
    for (const Yr::UInt32 chunk : {1u, 7u, 262144u}) {
        for (const Yr::UInt32 size : {0u, 1u, chunk - 1, chunk, chunk + 1, chunk * 3 + 5}) {
            // Pieces smaller and larger than a chunk take both paths of the writer.
            for (const Yr::UInt32 piece : {3u, chunk * 2 + 1}) {
                SCOPED_TRACE(testing::Message() << chunk << " " << size << " " << piece);
                std::string data(size, '\0');
                for (Yr::UInt32 i = 0; i < size; ++i) data[i] = static_cast<char>(i * 31 + i / 251);
                RecordingOBinaryChannel out;
                Yr::ChunkedOBinarySubChannel writer(out, Yr::GetBinOProtocolX(), chunk);
                for (Yr::UInt32 done = 0; done < size; done += piece)
                    writer.Write(data.data() + done, std::min(piece, size - done));
                writer.Close();
                // A 4-byte length per full or partial chunk, the end mark, then what follows.
                const std::string framed = out.GetBytes() + "tail";
                EXPECT_EQ(framed.size(), size + 4 * ((size + chunk - 1) / chunk) + 8);
                Yr::MemoryIBinaryChannel in(framed.data(), static_cast<Yr::UInt32>(framed.size()));
                EXPECT_EQ(ReadSubStream(in), data);
                EXPECT_EQ(in.GetAvailable(), 4u);
            }
        }
    }
}

TEST(ChunkedSubChannelTest, WritesKnownFramesOnFullChunkFlushAndClose) {
    RecordingOBinaryChannel out;
    Yr::ChunkedOBinarySubChannel writer(out, Yr::GetBinOProtocolX(), 4);
    writer.Write("abcdef", 6);
    writer.Flush();
    EXPECT_EQ(out.GetFlushCount(), 1);
    writer.Flush();  // nothing collected: no empty chunk, which would read as the end
    writer.Write("ghi", 3);
    writer.Close();
    writer.Close();
    EXPECT_EQ(out.GetBytes(), std::string("\x04\0\0\0abcd\x02\0\0\0ef\x03\0\0\0ghi\0\0\0\0", 25));
    EXPECT_EQ(out.GetCloseCount(), 0);
    EXPECT_THROW(writer.Write("j", 1), Yr::IOException);
    for (const Yr::UInt32 size : {0u, 0x80000000u}) {
        EXPECT_THROW(Yr::ChunkedOBinarySubChannel(out, Yr::GetBinOProtocolX(), size),
                     Yr::IllegalArgumentException);
    }
}

TEST(ChunkedSubChannelTest, ReaderStopsAtEndMarkAndCapsAvailable) {
    Morvelan::Testing::OneByteIBinaryChannel in(std::string("\x05\0\0\0abcde\0\0\0\0xyz", 16));
    Yr::ChunkedIBinarySubChannel reader(in, Yr::GetBinIProtocolX());
    char buffer[8];
    reader.Read(buffer, 2, Yr::kReadAll);
    EXPECT_EQ(reader.GetAvailable(), 1u);  // the channel's 1, not the chunk's 3
    reader.Read(buffer, 3, Yr::kReadAll);
    EXPECT_EQ(std::string(buffer, 3), "cde");
    EXPECT_EQ(reader.Read(buffer, 8, Yr::kReadSome), 0u);
    EXPECT_EQ(reader.Read(buffer, 8, Yr::kReadSome), 0u);
    ASSERT_EQ(in.Read(buffer, 8, Yr::kReadSome), 1u);
    EXPECT_EQ(buffer[0], 'x');  // the stream goes on right behind the end mark
    reader.Close();
    EXPECT_FALSE(in.IsClosed());
    EXPECT_THROW(reader.Read(buffer, 8, Yr::kReadSome), Yr::IOException);
}

TEST(ChunkedSubChannelTest, RejectsMalformedFrames) {
    const struct {
        const char* name;
        std::string bytes;
        const char* message;
    } cases[] = {
        {"negative length", std::string("\xFF\xFF\xFF\xFF", 4), "Invalid chunk length: -1."},
        {"length longer than data", std::string("\x10\0\0\0abc", 7), "End of input reached."},
        {"cut inside a length", std::string("\x02\0", 2), "End of input reached."},
        {"cut inside the end mark", std::string("\x01\0\0\0a\0\0", 7), "End of input reached."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Yr::MemoryIBinaryChannel in(c.bytes.data(), static_cast<Yr::UInt32>(c.bytes.size()));
        try {
            ReadSubStream(in);
            ADD_FAILURE() << "accepted";
        } catch (const Yr::IOException& e) {
            EXPECT_EQ(e.GetMessage(), c.message);
        }
    }
}

}  // namespace
