#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <string>
#include <vector>

#include "Yr/BinProtocolX.h"
#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/IChannelX.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/OChannelX.h"
#include "Yr/UniString.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Bytes = std::vector<unsigned char>;
const Yr::Guid kGuid{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};

TEST(ProtocolXTest, WritesLittleEndianBytes) {
    const Yr::OProtocolX& p = Yr::GetBinOProtocolX();
    const struct {
        const char* name;
        std::function<void(Yr::OBinaryChannel&)> write;
        Bytes bytes;
    } cases[] = {
        {"bool", [&](auto& c) { p.Write(c, true); }, {0x01}},
        {"short", [&](auto& c) { p.Write(c, short{-2}); }, {0xFE, 0xFF}},
        {"int", [&](auto& c) { p.Write(c, 0x01020304); }, {0x04, 0x03, 0x02, 0x01}},
        {"Int64",
         [&](auto& c) { p.Write(c, Yr::Int64{-2}); },
         {0xFE, 255, 255, 255, 255, 255, 255, 255}},
        {"float", [&](auto& c) { p.Write(c, 1.0f); }, {0x00, 0x00, 0x80, 0x3F}},
        {"long double", [&](auto& c) { p.Write(c, -2.0L); }, {0, 0, 0, 0, 0, 0, 0x00, 0xC0}},
        {"string",
         [&](auto& c) { p.Write(c, Yr::UniString("\xC3\xA9")); },
         {2, 0, 0, 0, 0xC3, 0xA9}},
        {"guid",
         [&](auto& c) { p.Write(c, kGuid); },
         {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE,
          0xFF}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Morvelan::Testing::RecordingOBinaryChannel out;
        c.write(out);
        EXPECT_EQ(out.GetBytes(), std::string(c.bytes.begin(), c.bytes.end()));
    }
}

TEST(ProtocolXTest, ReadsBackThroughTypedChannelsOneByteAtATime) {
    const Yr::UniString text("h\xC3\xA9llo \xF0\x9F\x99\x82");
    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::OChannelX out(sink, Yr::GetBinOProtocolX());
    out.Write(std::bit_cast<float>(0x7FC00001u));
    out.Write(kGuid);
    out.Write(text);
    out.Write(false);

    Morvelan::Testing::OneByteIBinaryChannel source(sink.GetBytes() + '\x02');
    Yr::IChannelX in(source, Yr::GetBinIProtocolX());
    float f;
    Yr::Guid g;
    Yr::UniString t;
    bool zero = true, two = true;
    in.Read(f);
    in.Read(g);
    in.Read(t);
    in.Read(zero);
    in.Read(two);
    EXPECT_EQ(std::bit_cast<Yr::UInt32>(f), 0x7FC00001u);  // NaN bits kept as they are
    EXPECT_EQ(g, kGuid);
    EXPECT_EQ(t, text);
    EXPECT_FALSE(zero);
    EXPECT_FALSE(two);  // only 1 reads as true
}

TEST(ProtocolXTest, RefusesShortInputAndHugeStrings) {
    const Yr::IProtocolX& p = Yr::GetBinIProtocolX();
    int number;
    Yr::UniString text;
    Yr::MemoryIBinaryChannel cutInt("\x01\x02\x03", 3);
    EXPECT_THROW(p.Read(cutInt, number), Yr::EndOfInputException);
    // 64 MiB promised, one byte there: read as it comes, so it fails without the 64 MiB.
    Yr::MemoryIBinaryChannel cutBody(
        "\0\0\0\x04"
        "a",
        5);
    EXPECT_THROW(p.Read(cutBody, text), Yr::EndOfInputException);
    Yr::MemoryIBinaryChannel huge(
        "\x01\0\0\x04"
        "a",
        5);
    try {
        p.Read(huge, text);
        FAIL() << "accepted";
    } catch (const Yr::IOException& e) {
        EXPECT_EQ(e.GetErrorCode(), Yr::kIOErrorCode);
        EXPECT_EQ(huge.GetAvailable(), 1u);  // refused before the body
    }
}

}  // namespace
