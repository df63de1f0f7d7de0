#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Yr/BufferedIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "tests/support/FailingIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Testing::RecordingOBinaryChannel;

const std::string kData = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";  // 62

TEST(BufferedChannelTest, SmallReadsFillTheBufferLargeOnesBypassIt) {
    Morvelan::Testing::FailingIBinaryChannel inner(kData, 0, 62);  // serves all it is asked
    { Yr::BufferedIBinaryChannel dropped(inner, 16); }
    EXPECT_EQ(inner.GetCloseCount(), 0);  // only Close closes a borrowed channel
    Yr::BufferedIBinaryChannel in(inner, 16);
    char buffer[64];
    ASSERT_EQ(in.Read(buffer, 3, Yr::kReadSome), 3u);
    EXPECT_EQ(in.GetAvailable(), 59u);                   // 13 buffered + 46 inside
    EXPECT_EQ(in.Read(buffer, 40, Yr::kReadSome), 13u);  // the rest of the buffer, no more
    EXPECT_EQ(in.Read(buffer, 40, Yr::kReadSome), 40u);  // straight from the inner channel
    EXPECT_EQ(std::string(buffer, 40), kData.substr(16, 40));
    EXPECT_EQ(in.Read(buffer, 64, Yr::kReadSome), 6u);
    in.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);
    EXPECT_THROW(in.Read(buffer, 1, Yr::kReadSome), Yr::IOException);
}

TEST(BufferedChannelTest, WritesReachInnerInOrderAndInFewCalls) {
    const std::vector<Yr::UInt32> cases[][2] = {
        // writes, then the writes that reach the inner channel by Close
        {{5, 5, 5, 5}, {15, 5}},   // small writes collect; overflow sends the buffer first
        {{16, 1}, {16, 1}},        // an exact fill waits
        {{3, 40, 2}, {3, 40, 2}},  // a large write bypasses
    };
    for (const auto& [writes, innerWrites] : cases) {
        auto inner = Yr::MakeRef<RecordingOBinaryChannel>();
        Yr::BufferedOBinaryChannel out(inner, 16);
        Yr::UInt32 done = 0;
        for (const Yr::UInt32 size : writes)
            out.Write(kData.data() + std::exchange(done, done + size), size);
        out.Close();
        EXPECT_EQ(inner->GetBytes(), kData.substr(0, done));
        EXPECT_EQ(inner->GetWriteSizes(), innerWrites);
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
    out.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);  // closed once, though the last write failed
    EXPECT_THROW(out.Write("e", 1), Yr::IOException);
}

}  // namespace
