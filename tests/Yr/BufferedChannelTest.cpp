#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Yr/BufferedIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Testing::OneByteIBinaryChannel;
using Morvelan::Testing::RecordingOBinaryChannel;

const std::string kData = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";  // 62

// Records the size of every read that reaches it.
class RecordingReads final : public Yr::IBinaryChannel {
public:
    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        m_asked.push_back(size);
        return m_inner.Read(buffer, size, Yr::kReadSome);
    }
    Yr::UInt64 GetAvailable() const override { return m_inner.GetAvailable(); }
    void Close() override {}
    std::vector<Yr::UInt32> m_asked;

private:
    Yr::MemoryIBinaryChannel m_inner{kData.data(), 62};
};

TEST(BufferedChannelTest, SmallReadsFillBufferAndLargeOnesBypassIt) {
    RecordingReads inner;
    Yr::BufferedIBinaryChannel in(inner, 16);
    char buffer[64];
    ASSERT_EQ(in.Read(buffer, 3, Yr::kReadSome), 3u);
    EXPECT_EQ(in.GetAvailable(), 59u);                   // 13 buffered + 46 inside
    EXPECT_EQ(in.Read(buffer, 40, Yr::kReadSome), 13u);  // the rest of the buffer, no more
    EXPECT_EQ(in.Read(buffer, 40, Yr::kReadSome), 40u);
    EXPECT_EQ(std::string(buffer, 40), kData.substr(16, 40));
    EXPECT_EQ(in.Read(buffer, 64, Yr::kReadSome), 6u);
    EXPECT_EQ(in.Read(buffer, 1, Yr::kReadSome), 0u);
    EXPECT_EQ(inner.m_asked, (std::vector<Yr::UInt32>{16, 40, 64, 16}));
}

TEST(BufferedChannelTest, ReadsOneByteInnerAndClosesItOnlyOnClose) {
    OneByteIBinaryChannel inner(kData);
    {
        Yr::BufferedIBinaryChannel in(inner, 8);
        char buffer[62];
        EXPECT_EQ(Yr::IBinaryChannelUtilities::ReadFully(in, buffer, 62), 62u);
        EXPECT_EQ(std::string(buffer, 62), kData);
    }
    EXPECT_FALSE(inner.IsClosed());
    Yr::BufferedIBinaryChannel in(inner, 8);
    in.Close();
    EXPECT_TRUE(inner.IsClosed());
    char byte;
    EXPECT_THROW(in.Read(&byte, 1, Yr::kReadSome), Yr::IOException);
}

TEST(BufferedChannelTest, RejectsEmptyRefAndZeroBufferSize) {
    RecordingOBinaryChannel sink;
    EXPECT_THROW(Yr::BufferedIBinaryChannel(Yr::Ref<Yr::IBinaryChannel>(), 8),
                 Yr::IllegalArgumentException);
    EXPECT_THROW(Yr::BufferedOBinaryChannel(Yr::Ref<Yr::OBinaryChannel>(), 8),
                 Yr::IllegalArgumentException);
    EXPECT_THROW(Yr::BufferedOBinaryChannel(sink, 0), Yr::IllegalArgumentException);
}

TEST(BufferedChannelTest, WritesReachInnerInOrderAndInFewCalls) {
    const struct {
        const char* name;
        std::vector<Yr::UInt32> writes;
        std::vector<Yr::UInt32> innerWrites;  // Close included
    } cases[] = {
        {"small writes collect", {5, 5, 5}, {15}},
        {"overflow sends the buffer first", {5, 5, 5, 5}, {15, 5}},
        {"exact fill waits", {16, 1}, {16, 1}},
        {"large write bypasses", {3, 40, 2}, {3, 40, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto inner = Yr::MakeRef<RecordingOBinaryChannel>();
        Yr::BufferedOBinaryChannel out(inner, 16);
        Yr::UInt32 done = 0;
        for (const Yr::UInt32 size : c.writes) {
            out.Write(kData.data() + done, size);
            done += size;
        }
        out.Close();
        EXPECT_EQ(inner->GetBytes(), kData.substr(0, done));
        EXPECT_EQ(inner->GetWriteSizes(), c.innerWrites);
        EXPECT_EQ(inner->GetCloseCount(), 1);
    }
}

TEST(BufferedChannelTest, FlushWritesAndFlushesCloseEndsEvenOnFailure) {
    RecordingOBinaryChannel inner;
    Yr::BufferedOBinaryChannel out(inner, 16);
    out.Write("abc", 3);
    out.Flush();
    EXPECT_EQ(inner.GetBytes(), "abc");
    EXPECT_EQ(inner.GetFlushCount(), 1);
    out.Write("d", 1);
    inner.SetFailing();
    EXPECT_THROW(out.Close(), Yr::IOException);
    EXPECT_EQ(inner.GetCloseCount(), 1);  // no file left open behind a failed write
    out.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);
    EXPECT_THROW(out.Write("e", 1), Yr::IOException);
}

}  // namespace
