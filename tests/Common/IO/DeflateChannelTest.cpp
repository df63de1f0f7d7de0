#include <gtest/gtest.h>
#include <zlib.h>

#include <functional>
#include <string>
#include <vector>

#include "Common/IO/DeflaterOBinaryChannel.h"
#include "Common/IO/Inflater.h"
#include "Common/IO/InflaterException.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryManager.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::Hex;
using Morvelan::Testing::OneByteIBinaryChannel;
using Morvelan::Testing::RecordingOBinaryChannel;

constexpr bool kRaw = true;
constexpr bool kWrapped = false;

// Text that compresses well, broken up by runs of noise that do not.
std::string MixedData(std::size_t size) {
    std::string data;
    Yr::UInt32 noise = 12345;
    while (data.size() < size) {
        data += "the quick brown fox jumps over the lazy dog ";
        for (int i = 0; i < 40; ++i)
            data += static_cast<char>((noise = noise * 1103515245 + 1) >> 16);
    }
    data.resize(size);
    return data;
}

Yr::MemoryIBinaryChannel Source(const std::string& bytes) {
    return Yr::MemoryIBinaryChannel(bytes.data(), static_cast<Yr::UInt32>(bytes.size()), true);
}

std::string Deflate(const std::string& data, int level, Yr::UInt32 bufferSize, bool nowrap) {
    RecordingOBinaryChannel sink;
    DeflaterOBinaryChannel deflater(sink, level, bufferSize, nowrap);
    // Uneven pieces, so writes straddle the input buffer's edges.
    for (std::size_t at = 0, piece = 1; at < data.size(); at += piece, piece = piece * 3 % 1000 + 1)
        deflater.Write(data.data() + at,
                       static_cast<Yr::UInt32>(std::min(piece, data.size() - at)));
    deflater.Close();
    return sink.GetBytes();
}

std::string ReadAll(Yr::IBinaryChannel& channel, Yr::UInt32 readSize = 4096) {
    std::string buffer(readSize, '\0');
    std::string all;
    while (const Yr::UInt32 count = channel.Read(buffer.data(), readSize, Yr::kReadSome))
        all.append(buffer.data(), count);
    return all;
}

// Our deflater takes no dictionary, so zlib makes such streams itself.
std::string DeflateWithDictionary(const std::string& data, const std::string& dictionary,
                                  int windowBits) {
    z_stream stream{};
    deflateInit2(&stream, 6, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    deflateSetDictionary(&stream, reinterpret_cast<const Bytef*>(dictionary.data()),
                         static_cast<uInt>(dictionary.size()));
    std::string out(deflateBound(&stream, data.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

Yr::UInt32 Adler32(const std::string& bytes) {
    return adler32(1, reinterpret_cast<const Bytef*>(bytes.data()),
                   static_cast<uInt>(bytes.size()));
}

// One buffer size serves both ends; the inflater's is read a byte at a time
// from a one-byte source, or in `readSize` pieces from memory.
TEST(DeflateChannelTest, RoundTripsAtEveryLevelAndBufferSize) {
    const struct {
        int level;
        Yr::UInt32 bufferSize;
        bool nowrap;
        Yr::UInt32 readSize;
        bool oneByteInput;
    } kCases[] = {{-1, 1024, kWrapped, 4096, false}, {-1, 1024, kRaw, 1024, false},
                  {0, 1024, kWrapped, 100, false},   {1, 7, kRaw, 4096, false},
                  {9, 65536, kWrapped, 1, false},    {6, 1, kRaw, 333, false},
                  {6, 1024, kWrapped, 4096, true},   {1, 1024, kRaw, 1, true}};
    const std::string data = MixedData(100000);
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << "level " << c.level << " buffer " << c.bufferSize
                                        << (c.nowrap ? " raw" : " wrapped"));
        const std::string compressed = Deflate(data, c.level, c.bufferSize, c.nowrap);
        Yr::MemoryIBinaryChannel memory = Source(compressed);
        OneByteIBinaryChannel oneByte(compressed);
        auto inflater = Yr::MakeRef<Inflater>(c.nowrap);
        InflaterIBinaryChannel channel(
            c.oneByteInput ? static_cast<Yr::IBinaryChannel&>(oneByte) : memory, inflater,
            c.bufferSize);
        ASSERT_TRUE(ReadAll(channel, c.readSize) == data);
        EXPECT_EQ(inflater->GetTotalInputCount(), compressed.size());
        EXPECT_EQ(inflater->GetTotalOutputCount(), data.size());
        if (!c.nowrap) {
            EXPECT_EQ(inflater->GetAddler32(), Adler32(data));
        }
    }
}

TEST(DeflateChannelTest, EmptyStreamIsCompleteAndZeroByteWritesChangeNothing) {
    const struct {
        bool nowrap;
        int level;
        const char* hex;
    } kCases[] = {{kWrapped, -1, "78 9C 03 00 00 00 00 01"},
                  {kWrapped, 1, "78 01 03 00 00 00 00 01"},
                  {kRaw, 9, "03 00"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.hex);
        RecordingOBinaryChannel sink;
        DeflaterOBinaryChannel deflater(sink, c.level, 1024, c.nowrap);
        deflater.Write(nullptr, 0);
        deflater.Write("x", 0);
        EXPECT_TRUE(sink.GetWriteSizes().empty());
        deflater.Finish();
        deflater.Finish();
        deflater.Close();
        EXPECT_EQ(Hex(sink.GetBytes()), c.hex);
        EXPECT_EQ(sink.GetFlushCount(), 1);
        EXPECT_EQ(sink.GetCloseCount(), 1);
    }
}

// A small buffer makes a sync flush fill the output buffer more than once.
TEST(DeflateChannelTest, FlushLetsAReaderDecodeEverythingWrittenSoFar) {
    const std::string first = MixedData(5000);
    const std::string second = "and then some more";
    RecordingOBinaryChannel sink;
    DeflaterOBinaryChannel deflater(sink, 6, 16, kWrapped);
    deflater.Write(first.data(), static_cast<Yr::UInt32>(first.size()));
    deflater.Flush();
    deflater.Flush();
    EXPECT_EQ(sink.GetFlushCount(), 2);

    Inflater inflater(kWrapped);
    inflater.SetInput(std::vector<char>(sink.GetBytes().begin(), sink.GetBytes().end()));
    std::vector<char> out(first.size() + 100);
    EXPECT_EQ(inflater.Inflate(out), first.size());
    EXPECT_EQ(std::string(out.data(), first.size()), first);
    EXPECT_FALSE(inflater.IsFinished());

    deflater.Write(second.data(), static_cast<Yr::UInt32>(second.size()));
    deflater.Close();
    Yr::MemoryIBinaryChannel whole = Source(sink.GetBytes());
    InflaterIBinaryChannel channel(whole, 1024, kWrapped);
    EXPECT_EQ(ReadAll(channel), first + second);
}

TEST(DeflateChannelTest, EndOfStreamReadsAsZeroAgainAndLeavesTrailingInput) {
    const std::string stream = Deflate("payload", 6, 1024, kWrapped) + "TRAILER";
    Yr::MemoryIBinaryChannel source = Source(stream);
    auto inflater = Yr::MakeRef<Inflater>(kWrapped);
    InflaterIBinaryChannel channel(source, inflater, 1024);
    EXPECT_EQ(channel.GetAvailable(), 1u);
    EXPECT_EQ(ReadAll(channel), "payload");
    char buffer[8];
    EXPECT_EQ(channel.Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    EXPECT_EQ(channel.GetAvailable(), 0u);
    EXPECT_FALSE(inflater->NeedsInput());
    EXPECT_EQ(inflater->GetRemainingCount(), 7u);
    // Copies what fits, answers how much there is.
    EXPECT_EQ(inflater->GetRemainingInput(buffer, 3), 7u);
    EXPECT_EQ(std::string(buffer, 3), "TRA");
    std::vector<char> rest(10, '-');
    EXPECT_EQ(inflater->GetRemainingInput(rest), 7u);
    EXPECT_EQ(std::string(rest.begin(), rest.end()), "TRAILER---");
}

TEST(DeflateChannelTest, StreamCutShortThrows) {
    for (const bool nowrap : {kRaw, kWrapped}) {
        const std::string whole = Deflate(MixedData(3000), 6, 1024, nowrap);
        for (const std::size_t length :
             {std::size_t{0}, std::size_t{1}, whole.size() / 2, whole.size() - 1}) {
            SCOPED_TRACE(testing::Message() << nowrap << " " << length);
            Yr::MemoryIBinaryChannel source = Source(whole.substr(0, length));
            InflaterIBinaryChannel channel(source, 64, nowrap);
            ExpectYrException<Yr::IOException>([&] { ReadAll(channel); },
                                               "Unexpected end of stream reached while inflating.",
                                               -7003);
        }
    }
}

TEST(DeflateChannelTest, WrappedInflaterRefusesARawStream) {
    const std::string raw = Deflate("raw raw raw raw", 6, 1024, kRaw);
    Yr::MemoryIBinaryChannel source = Source(raw);
    InflaterIBinaryChannel channel(source, 1024, kWrapped);
    ExpectYrException<InflaterException>(
        [&] { ReadAll(channel); },
        "Failed to inflate input. (Error code: -3, error message: data error)", -7003);
}

TEST(DeflateChannelTest, ClosedOrFinishedChannelsRefuseUse) {
    RecordingOBinaryChannel sink;
    DeflaterOBinaryChannel finished(sink, 6, 4, kWrapped);
    finished.Finish();
    // zlib's refusal of input after the end, its text run on as it comes.
    ExpectYrException<Yr::IOException>([&] { finished.Write("more", 4); },
                                       "Deflate failed:stream error", -7003);
    DeflaterOBinaryChannel closed(sink, 6, 4, kWrapped);
    closed.Close();
    closed.Close();
    EXPECT_EQ(sink.GetCloseCount(), 1);
    const char* const kDeflaterClosed = "Deflater output channel closed.";
    ExpectYrException<Yr::IOException>([&] { closed.Write("a", 1); }, kDeflaterClosed, -7003);
    ExpectYrException<Yr::IOException>([&] { closed.Flush(); }, kDeflaterClosed, -7003);
    ExpectYrException<Yr::IOException>([&] { closed.Finish(); }, kDeflaterClosed, -7003);

    OneByteIBinaryChannel source("");
    InflaterIBinaryChannel channel(source, 16, kRaw);
    channel.Close();
    channel.Close();
    EXPECT_TRUE(source.IsClosed());
    char buffer[4];
    const char* const kInflaterClosed = "Inflater binary input channel closed.";
    ExpectYrException<Yr::IOException>([&] { channel.Read(buffer, 4, Yr::kReadSome); },
                                       kInflaterClosed, -7003);
    ExpectYrException<Yr::IOException>([&] { channel.GetAvailable(); }, kInflaterClosed, -7003);
}

TEST(DeflateChannelTest, RejectsInvalidArguments) {
    Yr::MemoryIBinaryChannel source("", 0);
    RecordingOBinaryChannel sink;
    Inflater inflater(kRaw);
    InflaterIBinaryChannel channel(source, 16, kRaw);
    char buffer[4];
    const std::vector<char> none;
    std::vector<char> noRoom;
    const struct {
        const char* message;
        std::function<void()> action;
    } kCases[] = {
        {"Invalid output channel: channel is null.",
         [] { DeflaterOBinaryChannel(Yr::Ref<Yr::OBinaryChannel>(), 6, 16, kRaw); }},
        {"Invalid input channel: channel is null.",
         [] { InflaterIBinaryChannel(Yr::Ref<Yr::IBinaryChannel>(), 16, kRaw); }},
        {"Invalid inflater: inflater is null.",
         [&] { InflaterIBinaryChannel(source, Yr::Ref<Inflater>(), 16); }},
        {"Invalid buffer size: size is 0.", [&] { DeflaterOBinaryChannel(sink, 6, 0, kRaw); }},
        {"Invalid buffer size: size is 0.", [&] { InflaterIBinaryChannel(source, 0, kRaw); }},
        {"Invalid destination: destination is null.",
         [&] { channel.Read(nullptr, 4, Yr::kReadSome); }},
        {"Invalid length: length is 0.", [&] { channel.Read(buffer, 0, Yr::kReadSome); }},
        {"Invalid input buffer: buffer is null.", [&] { inflater.SetInput(nullptr, 4); }},
        {"Invalid input buffer: buffer is empty.", [&] { inflater.SetInput(buffer, 0); }},
        {"Invalid input buffer: buffer is empty.", [&] { inflater.SetInput(none); }},
        {"Invalid inflated buffer: buffer is null.", [&] { inflater.Inflate(nullptr, 4); }},
        {"Invalid inflated buffer: buffer is empty.", [&] { inflater.Inflate(noRoom); }},
        {"Invalid dictionary buffer: buffer is null.", [&] { inflater.SetDictionary(nullptr, 4); }},
        {"Invalid dictionary buffer: buffer is empty.", [&] { inflater.SetDictionary(none); }},
        {"Invalid remaining buffer: buffer is null.",
         [&] { inflater.GetRemainingInput(nullptr, 4); }},
        {"Invalid remaining buffer: buffer is empty.", [&] { inflater.GetRemainingInput(noRoom); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.message);
        ExpectYrException<Yr::IllegalArgumentException>(c.action, c.message, -50);
    }
    ExpectYrException<Yr::IOException>([&] { DeflaterOBinaryChannel(sink, 10, 16, kRaw); },
                                       "Failed to initialize deflater.", -7003);
}

TEST(DeflateChannelTest, PresetDictionaryIsAskedForOrGivenBeforehand) {
    const std::string dictionary = "common words: archive entry header";
    const std::string data = "archive entry header, archive entry header, common words";
    // Wrapped: the stream names its dictionary and reading stops until it is set.
    Yr::MemoryIBinaryChannel source = Source(DeflateWithDictionary(data, dictionary, 15));
    auto inflater = Yr::MakeRef<Inflater>(kWrapped);
    {
        InflaterIBinaryChannel waiting(source, inflater, 4);
        EXPECT_EQ(ReadAll(waiting), "");
    }
    EXPECT_TRUE(inflater->NeedsDictionary());
    EXPECT_EQ(inflater->GetAddler32(), Adler32(dictionary));
    ExpectYrException<InflaterException>(
        [&] { inflater->SetDictionary("wrong", 5); },
        "Failed to set dictionary. (Error code: -3, error message: data error)", -7003);
    inflater->SetDictionary(std::vector<char>(dictionary.begin(), dictionary.end()));
    EXPECT_FALSE(inflater->NeedsDictionary());
    InflaterIBinaryChannel resumed(source, inflater, 4);
    EXPECT_EQ(ReadAll(resumed), data);

    // Raw: nothing in the stream says so; the dictionary comes first.
    Yr::MemoryIBinaryChannel rawSource = Source(DeflateWithDictionary(data, dictionary, -15));
    auto rawInflater = Yr::MakeRef<Inflater>(kRaw);
    rawInflater->SetDictionary(dictionary.data(), static_cast<Yr::UInt32>(dictionary.size()));
    InflaterIBinaryChannel rawChannel(rawSource, rawInflater, 1024);
    EXPECT_EQ(ReadAll(rawChannel), data);
}

TEST(DeflateChannelTest, ResetStartsANewStreamAndDropsPendingInput) {
    const std::string second = Deflate("second", 6, 1024, kWrapped);
    Yr::MemoryIBinaryChannel source = Source(Deflate("first", 6, 1024, kWrapped) + second);
    auto inflater = Yr::MakeRef<Inflater>(kWrapped);
    {
        InflaterIBinaryChannel channel(source, inflater, 1024);
        EXPECT_EQ(ReadAll(channel), "first");
    }
    EXPECT_EQ(inflater->GetRemainingCount(), second.size());
    inflater->Reset();
    EXPECT_TRUE(inflater->NeedsInput());
    Yr::MemoryIBinaryChannel secondSource = Source(second);
    InflaterIBinaryChannel channel(secondSource, inflater, 1024);
    EXPECT_EQ(ReadAll(channel), "second");
}

// Fails the nth allocation from the memory manager while installed.
class FailingNthAllocation final : public Yr::RawMemorySource {
public:
    explicit FailingNthAllocation(int n)
        : m_left(n), m_previous(Yr::MemoryManager::SetRawMemorySource(this)) {}
    ~FailingNthAllocation() override { Yr::MemoryManager::SetRawMemorySource(m_previous); }
    void* Allocate(std::size_t size, std::size_t alignment) override {
        return --m_left == 0 ? nullptr : m_previous->Allocate(size, alignment);
    }
    void Free(void* pointer) override { m_previous->Free(pointer); }

private:
    int m_left;
    Yr::RawMemorySource* m_previous;
};

TEST(DeflateChannelTest, AllocationFailuresAreOutOfMemory) {
    const char* const kMessages[] = {
        "Failed to allocate input buffer for deflater output channel.",
        "Failed to allocate output buffer for deflater output channel.",
        "Failed to allocate deflater."};
    RecordingOBinaryChannel sink;
    for (int n = 1; n <= 3; ++n) {
        SCOPED_TRACE(n);
        FailingNthAllocation failing(n);
        ExpectYrException<Yr::OutOfMemoryException>(
            [&] { DeflaterOBinaryChannel(sink, 6, 1024, kRaw); }, kMessages[n - 1], -108);
    }
    FailingNthAllocation failing(1);
    ExpectYrException<Yr::OutOfMemoryException>([] { Inflater{kRaw}; },
                                                "Failed to allocate inflater.", -108);
}

}  // namespace
