#include <gtest/gtest.h>

#include "Yr/Exceptions.h"

#include "Common/IO/SplitterOBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingOBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::SplitterOBinaryChannel;
using Morvelan::Testing::RecordingOBinaryChannel;

TEST(SplitterOBinaryChannelTest, EveryMixOfBorrowedAndSharedFeedsBoth) {
    RecordingOBinaryChannel first;
    RecordingOBinaryChannel second;
    const Yr::Ref<Yr::OBinaryChannel> firstRef(first, Yr::NotOwned{});
    const Yr::Ref<Yr::OBinaryChannel> secondRef(second, Yr::NotOwned{});
    SplitterOBinaryChannel(first, second).Write("1", 1);
    SplitterOBinaryChannel(first, secondRef).Flush();
    SplitterOBinaryChannel(firstRef, second).Write("23", 2);
    SplitterOBinaryChannel(firstRef, secondRef).Close();
    for (const RecordingOBinaryChannel* output : {&first, &second}) {
        EXPECT_EQ(output->GetBytes(), "123");
        EXPECT_EQ(output->GetFlushCount(), 1);
        EXPECT_EQ(output->GetCloseCount(), 1);
    }
}

TEST(SplitterOBinaryChannelTest, RejectsNullSourceThenZeroLength) {
    const struct {
        const char* source;
        Yr::UInt32 size;
        const char* message;
    } kCases[] = {{nullptr, 3, "Invalid source: source is null."},
                  {nullptr, 0, "Invalid source: source is null."},
                  {"abc", 0, "Invalid length: length is 0."}};
    RecordingOBinaryChannel output;
    SplitterOBinaryChannel channel(output, output);
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.size);
        Morvelan::Testing::ExpectYrException<Yr::IllegalArgumentException>(
            [&] { channel.Write(c.source, c.size); }, c.message, Yr::kIllegalArgumentErrorCode);
    }
    EXPECT_TRUE(output.GetWriteSizes().empty());
}

// No attempt to keep the two in step: the second never sees what the first
// refused.
TEST(SplitterOBinaryChannelTest, FailureOfFirstLeavesSecondUntouched) {
    Morvelan::Testing::FailingOBinaryChannel first(2);
    RecordingOBinaryChannel second;
    SplitterOBinaryChannel channel(first, second);
    channel.Write("ab", 2);
    EXPECT_THROW(channel.Write("xyz", 3), Yr::IOException);
    EXPECT_EQ(second.GetBytes(), "ab");
}

}  // namespace
