#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "Yr/BinProtocolX.h"
#include "Yr/ChunkedIBinarySubChannel.h"
#include "Yr/ChunkedOBinarySubChannel.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Testing::RecordingOBinaryChannel;

const char* const kEnd = "End of input reached.";

// Reads the sub-stream to its end mark, and once more behind it.
std::string ReadSubStream(const std::string& framed, Yr::UInt64 expectedBehind = 0) {
    Yr::MemoryIBinaryChannel in(framed.data(), static_cast<Yr::UInt32>(framed.size()));
    Yr::ChunkedIBinarySubChannel reader(in, Yr::GetBinIProtocolX());
    std::string result;
    char buffer[4096];
    while (const Yr::UInt32 count = reader.Read(buffer, sizeof buffer, Yr::kReadSome))
        result.append(buffer, count);
    EXPECT_EQ(reader.Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    EXPECT_EQ(in.GetAvailable(), expectedBehind);  // the stream goes on right behind the mark
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
                EXPECT_EQ(ReadSubStream(out.GetBytes() + "tail", 4), data);
            }
        }
    }
}

TEST(ChunkedSubChannelTest, WritesKnownFramesOnFullChunkFlushAndClose) {
    RecordingOBinaryChannel out;
    Yr::ChunkedOBinarySubChannel writer(out, Yr::GetBinOProtocolX(), 4);
    writer.Write("abcdef", 6);
    writer.Flush();
    writer.Flush();  // nothing collected: no empty chunk, which would read as the end
    writer.Write("ghi", 3);
    writer.Close();
    writer.Close();
    EXPECT_EQ(out.GetBytes(), std::string("\x04\0\0\0abcd\x02\0\0\0ef\x03\0\0\0ghi\0\0\0\0", 25));
    EXPECT_EQ(out.GetFlushCount(), 2);
    EXPECT_EQ(out.GetCloseCount(), 0);
    EXPECT_THROW(writer.Write("j", 1), Yr::IOException);
    // A chunk that long would frame as a negative length.
    EXPECT_THROW(Yr::ChunkedOBinarySubChannel(out, Yr::GetBinOProtocolX(), 0x80000000u),
                 Yr::IllegalArgumentException);
}

TEST(ChunkedSubChannelTest, ReaderCapsAvailableAndLeavesItsChannelOpen) {
    Morvelan::Testing::OneByteIBinaryChannel in(std::string("\x05\0\0\0abcde\0\0\0\0", 13));
    Yr::ChunkedIBinarySubChannel reader(in, Yr::GetBinIProtocolX());
    char buffer[8];
    reader.Read(buffer, 2, Yr::kReadAll);
    EXPECT_EQ(reader.GetAvailable(), 1u);  // the channel's 1, not the chunk's 3
    reader.Close();
    EXPECT_FALSE(in.IsClosed());
    EXPECT_THROW(reader.Read(buffer, 8, Yr::kReadSome), Yr::IOException);
}

TEST(ChunkedSubChannelTest, RejectsMalformedFrames) {
    const struct {
        std::string bytes;
        const char* message;
        int errorCode;
    } cases[] = {
        // A negative length, a lying length, a cut inside a length, a cut inside a body.
        {std::string("\xFF\xFF\xFF\xFF", 4), "Invalid chunk length: -1.", Yr::kIOErrorCode},
        {std::string("\x10\0\0\0abc", 7), kEnd, Yr::kEndOfInputErrorCode},
        {std::string("\x02\0", 2), kEnd, Yr::kEndOfInputErrorCode},
        {std::string("\x01\0\0\0a\x03\0\0\0b", 10), kEnd, Yr::kEndOfInputErrorCode},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.bytes));
        Morvelan::Testing::ExpectYrException<Yr::IOException>([&] { ReadSubStream(c.bytes); },
                                                              c.message, c.errorCode);
    }
}

}  // namespace
