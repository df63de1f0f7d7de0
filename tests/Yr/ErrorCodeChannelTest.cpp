#include <gtest/gtest.h>

#include <string>

#include "Yr/BinaryIChannel.h"
#include "Yr/BinaryOChannel.h"
#include "tests/support/FailingIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

TEST(ErrorCodeChannelTest, FailuresBecomeCodesAndShortReadsSayHowMuchCame) {
    // Two bytes a read: a full read must gather, a short one must say how much came.
    Morvelan::Testing::FailingIBinaryChannel source("abcde", 3, 2);
    Yr::BinaryIChannel channel(source);
    char buffer[8];
    Yr::UInt32 delivered = 0;
    EXPECT_EQ(channel.Read(buffer, 4, delivered), 0);
    EXPECT_EQ(delivered, 4u);
    EXPECT_EQ(channel.Read(buffer, 1, delivered), Yr::kIOErrorCode);  // the third read throws
    EXPECT_EQ(channel.Read(buffer, 8, delivered), Yr::kEndOfInputErrorCode);
    EXPECT_EQ(std::string(buffer, delivered), "e");

    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    EXPECT_EQ(output.Write("abc", 3), 0);
    sink.SetFailing();
    EXPECT_EQ(output.Write("d", 1), Yr::kIOErrorCode);
    EXPECT_EQ(Yr::IChannel::ConvertObjectReadError(Yr::kEndOfInputErrorCode),
              Yr::kDataIntegrityErrorCode);
    EXPECT_EQ(Yr::IChannel::ConvertObjectReadError(Yr::kIOErrorCode), Yr::kIOErrorCode);
}

}  // namespace
