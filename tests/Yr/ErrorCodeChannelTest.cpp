#include <gtest/gtest.h>

#include <string>

#include "Yr/BinProtocolX.h"
#include "Yr/BinaryIChannel.h"
#include "Yr/BinaryOChannel.h"
#include "Yr/ChunkedIBinarySubChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

TEST(ErrorCodeChannelTest, InputReportsStatusAndDeliveredCount) {
    const struct {
        Yr::UInt32 size;
        Yr::YrErrCode status;
        Yr::UInt32 delivered;
    } cases[] = {{5, 0, 5}, {2, 0, 2}, {8, Yr::kEndOfInputErrorCode, 5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        Morvelan::Testing::OneByteIBinaryChannel source("abcde");
        Yr::BinaryIChannel channel(source);
        char buffer[8];
        Yr::UInt32 delivered = 99;
        EXPECT_EQ(channel.Read(buffer, c.size, delivered), c.status);
        EXPECT_EQ(std::string(buffer, delivered), std::string("abcde").substr(0, c.delivered));
    }
}

TEST(ErrorCodeChannelTest, ExceptionsBecomeTheirCodes) {
    Morvelan::Testing::OneByteIBinaryChannel source("");
    Yr::ChunkedIBinarySubChannel closed(source, Yr::GetBinIProtocolX());
    closed.Close();  // reading it now throws IOException
    Yr::BinaryIChannel input(closed);
    char buffer[1];
    Yr::UInt32 delivered;
    EXPECT_EQ(input.Read(buffer, 1, delivered), Yr::kIOErrorCode);

    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    EXPECT_EQ(output.Write("abc", 3), 0);
    sink.SetFailing();
    EXPECT_EQ(output.Write("d", 1), Yr::kIOErrorCode);
    EXPECT_EQ(sink.GetBytes(), "abc");
}

TEST(ErrorCodeChannelTest, ObjectReadErrorKeepsCutObjectsAnError) {
    EXPECT_EQ(Yr::IChannel::ConvertObjectReadError(0), 0);
    EXPECT_EQ(Yr::IChannel::ConvertObjectReadError(Yr::kEndOfInputErrorCode),
              Yr::kDataIntegrityErrorCode);
    EXPECT_EQ(Yr::IChannel::ConvertObjectReadError(Yr::kIOErrorCode), Yr::kIOErrorCode);
}

}  // namespace
