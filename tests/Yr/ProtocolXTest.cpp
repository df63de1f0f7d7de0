#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <string>
#include <utility>

#include "Yr/BinProtocolX.h"
#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/IChannelX.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/OChannelX.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

const Yr::Guid kGuid{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};

TEST(ProtocolXTest, WritesLittleEndianBytes) {
    const Yr::OProtocolX& p = Yr::GetBinOProtocolX();
    const std::pair<std::function<void(Yr::OBinaryChannel&)>, std::string> cases[] = {
        {[&](auto& c) { p.Write(c, true); }, "\x01"},
        {[&](auto& c) { p.Write(c, 0x01020304); }, "\x04\x03\x02\x01"},
        {[&](auto& c) { p.Write(c, Yr::Int64{-2}); }, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {[&](auto& c) { p.Write(c, 1.0f); }, std::string("\0\0\x80\x3F", 4)},
        {[&](auto& c) { p.Write(c, -2.0L); }, std::string("\0\0\0\0\0\0\0\xC0", 8)},
        {[&](auto& c) { p.Write(c, Yr::UniString("\xC3\xA9")); },
         std::string("\2\0\0\0\xC3\xA9", 6)},
        {[&](auto& c) { p.Write(c, kGuid); },
         std::string("\x33\x22\x11\0\x55\x44\x77\x66\x88\x99\xAA\xBB\xCC\xDD\xEE\xFF", 16)},
    };
    for (const auto& [write, bytes] : cases) {
        Morvelan::Testing::RecordingOBinaryChannel out;
        write(out);
        EXPECT_EQ(out.GetBytes(), bytes);
    }
}

TEST(ProtocolXTest, ReadsBackThroughTypedChannelsOneByteAtATime) {
    const Yr::UniString text("h\xC3\xA9llo \xF0\x9F\x99\x82");
    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::OChannelX out(sink, Yr::GetBinOProtocolX());
    out.Write(std::bit_cast<float>(0x7FC00001u));
    out.Write(kGuid);
    out.Write(text);
    Morvelan::Testing::OneByteIBinaryChannel source(sink.GetBytes() + '\x02');
    Yr::IChannelX in(source, Yr::GetBinIProtocolX());
    float f;
    Yr::Guid g;
    Yr::UniString t;
    bool two = true;
    in.Read(f);
    in.Read(g);
    in.Read(t);
    in.Read(two);
    EXPECT_EQ(std::bit_cast<Yr::UInt32>(f), 0x7FC00001u);  // NaN bits kept as they are
    EXPECT_EQ(g, kGuid);
    EXPECT_EQ(t, text);
    EXPECT_FALSE(two);  // only 1 reads as true
}

TEST(ProtocolXTest, RefusesShortInputAndHugeStrings) {
    const Yr::IProtocolX& p = Yr::GetBinIProtocolX();
    int number;
    Yr::UniString text;
    Yr::MemoryIBinaryChannel cutInt("\x01\x02\x03", 3);
    EXPECT_THROW(p.Read(cutInt, number), Yr::EndOfInputException);
    // 64 MiB promised, one byte there: read as it comes, so it fails without the 64 MiB.
    Yr::MemoryIBinaryChannel cutBody("\0\0\0\x04z", 5);
    EXPECT_THROW(p.Read(cutBody, text), Yr::EndOfInputException);
    Yr::MemoryIBinaryChannel huge("\x01\0\0\x04z", 5);
    EXPECT_THROW(p.Read(huge, text), Yr::IOException);
    EXPECT_EQ(huge.GetAvailable(), 1u);  // refused before the body
}

}  // namespace
