#include <gtest/gtest.h>

#include "Yr/Exceptions.h"

#include "Common/IO/SplitterOBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::SplitterOBinaryChannel;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::RecordingOBinaryChannel;

// First channel first, and no attempt to keep the two in step: the second
// never sees what the first refused.
TEST(SplitterOBinaryChannelTest, FeedsTheFirstThenTheSecond) {
    RecordingOBinaryChannel first;
    RecordingOBinaryChannel second;
    SplitterOBinaryChannel channel(first, Yr::Ref<Yr::OBinaryChannel>(second, Yr::NotOwned{}));
    channel.Write("ab", 2);
    channel.Flush();
    channel.Close();
    first.SetFailing();
    EXPECT_THROW(channel.Write("xyz", 3), Yr::IOException);
    for (const RecordingOBinaryChannel* output : {&first, &second}) {
        EXPECT_EQ(output->GetBytes(), "ab");
        EXPECT_EQ(output->GetFlushCount(), 1);
        EXPECT_EQ(output->GetCloseCount(), 1);
    }
}

// Unlike the other filters, it refuses empty writes; the source is checked first.
TEST(SplitterOBinaryChannelTest, RejectsNullSourceThenZeroLength) {
    RecordingOBinaryChannel output;
    SplitterOBinaryChannel channel(output, output);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write(nullptr, 0); },
                                                    "Invalid source: source is null.", -50);
    ExpectYrException<Yr::IllegalArgumentException>([&] { channel.Write("abc", 0); },
                                                    "Invalid length: length is 0.", -50);
    EXPECT_TRUE(output.GetWriteSizes().empty());
}

}  // namespace
