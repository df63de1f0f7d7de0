#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <variant>

#include "Common/IO/JavaDataInputProtocol.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/JavaDataOutputProtocol.h"
#include "Common/IO/JavaDataOutputProtocolUtils.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Yr/BinaryIChannel.h"
#include "Yr/BinaryOChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/Object.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"
#include "tests/support/JavaDataValue.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;
using Morvelan::Testing::BytesFromHex;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::Hex;
using Morvelan::Testing::OneByteIBinaryChannel;
using Morvelan::Testing::RecordingOBinaryChannel;

using Value = Morvelan::Testing::JavaDataValue;
using Morvelan::Testing::SameValue;

const Yr::Guid kGuid{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};

std::string WriteX(const Value& value) {
    RecordingOBinaryChannel sink;
    std::visit([&](const auto& v) { JavaDataOutputProtocolX::GetInstance().Write(sink, v); },
               value);
    return sink.GetBytes();
}

std::string WriteWithCodes(const Value& value) {
    RecordingOBinaryChannel sink;
    Yr::BinaryOChannel channel(sink);
    std::visit(
        [&](const auto& v) {
            EXPECT_EQ(JavaDataOutputProtocol::GetInstance().Write(channel, v), 0);
        },
        value);
    return sink.GetBytes();
}

// Reads a value of the same type as `like`, one byte a read, so that every
// reader must gather its bytes.
Value ReadX(const std::string& bytes, Value like) {
    OneByteIBinaryChannel source(bytes);
    std::visit([&](auto& v) { JavaDataInputProtocolX::GetInstance().Read(source, v); }, like);
    EXPECT_EQ(source.GetAvailable(), 0u);
    return like;
}

Value ReadWithCodes(const std::string& bytes, Value like) {
    OneByteIBinaryChannel source(bytes);
    Yr::BinaryIChannel channel(source);
    std::visit(
        [&](auto& v) { EXPECT_EQ(JavaDataInputProtocol::GetInstance().Read(channel, v), 0); },
        like);
    return like;
}

struct LayoutCase {
    Value value;
    const char* bytes;
};

const LayoutCase kLayouts[] = {
    {char('A'), "41"},
    {true, "01"},
    {false, "00"},
    {short(-2), "FF FE"},
    {std::numeric_limits<short>::min(), "80 00"},
    {static_cast<unsigned short>(65535), "FF FF"},
    {0x01020304, "01 02 03 04"},
    {std::numeric_limits<int>::min(), "80 00 00 00"},
    {std::numeric_limits<Yr::Int64>::min(), "80 00 00 00 00 00 00 00"},
    {Yr::Int64(-1), "FF FF FF FF FF FF FF FF"},
    {1.0f, "3F 80 00 00"},
    {-std::numeric_limits<float>::infinity(), "FF 80 00 00"},
    {-0.0, "80 00 00 00 00 00 00 00"},
    {std::numeric_limits<double>::infinity(), "7F F0 00 00 00 00 00 00"},
    {std::numeric_limits<float>::quiet_NaN(), "7F C0 00 00"},
    {kGuid, "00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF"},
    {Yr::UniString(""), "00 00"},
    {Yr::UniString("\xC3\xA9"), "00 02 C3 A9"},
    {Yr::UniString("ab"), "00 02 61 62"},
};

TEST(JavaDataProtocolTest, BothFlavoursWriteAndReadJavasLayout) {
    for (const LayoutCase& layout : kLayouts) {
        SCOPED_TRACE(layout.bytes);
        EXPECT_EQ(Hex(WriteX(layout.value)), layout.bytes);
        EXPECT_EQ(Hex(WriteWithCodes(layout.value)), layout.bytes);
        EXPECT_TRUE(SameValue(ReadX(BytesFromHex(layout.bytes), layout.value), layout.value));
        EXPECT_TRUE(
            SameValue(ReadWithCodes(BytesFromHex(layout.bytes), layout.value), layout.value));
    }
}

TEST(JavaDataProtocolTest, NaNIsCanonicalOnWritingAndKeptOnReading) {
    const float floatNaN = std::bit_cast<float>(0xFFC01234u);
    const double doubleNaN = std::bit_cast<double>(0x7FF0000000000001ull);
    EXPECT_EQ(Hex(WriteX(floatNaN)), "7F C0 00 00");
    EXPECT_EQ(Hex(WriteWithCodes(doubleNaN)), "7F F8 00 00 00 00 00 00");
    RecordingOBinaryChannel sink;
    JavaDataOutputProtocolX::GetInstance().Write(sink, static_cast<long double>(doubleNaN));
    EXPECT_EQ(Hex(sink.GetBytes()), "7F F8 00 00 00 00 00 00");

    const Value read = ReadX(BytesFromHex("7F C0 00 01"), 0.0f);
    EXPECT_EQ(std::bit_cast<Yr::UInt32>(std::get<float>(read)), 0x7FC00001u);
}

TEST(JavaDataProtocolTest, OnlyTheByteOneReadsAsTrue) {
    for (const char* byte : {"02", "FF", "80"}) {
        EXPECT_FALSE(std::get<bool>(ReadX(BytesFromHex(byte), true))) << byte;
        EXPECT_FALSE(std::get<bool>(ReadWithCodes(BytesFromHex(byte), true))) << byte;
    }
}

TEST(JavaDataProtocolTest, OptimizedGuidIsItsMemoryOnThisMachine) {
    static_assert(std::endian::native == std::endian::little);
    RecordingOBinaryChannel sink;
    JavaDataOutputProtocolX::GetOptimizedInstance().Write(sink, kGuid);
    EXPECT_EQ(Hex(sink.GetBytes()), "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF");
    Yr::MemoryIBinaryChannel source(sink.GetBytes().data(), 16);
    Yr::Guid read{};
    JavaDataInputProtocolX::GetOptimizedInstance().Read(source, read);
    EXPECT_EQ(read, kGuid);
}

Yr::UniString Repeated(const char* utf8, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += utf8;
    return Yr::UniString::FromUtf8(text);
}

TEST(JavaDataProtocolTest, StringsRoundTripOnEitherSideOfTheStackBufferAndAtTheLimit) {
    for (const std::size_t count : {511u, 512u, 513u, 4096u, 65535u}) {
        const Yr::UniString text = Repeated("x", count);
        const std::string wire = WriteX(text);
        ASSERT_EQ(wire.size(), count + 2);
        EXPECT_EQ(std::get<Yr::UniString>(ReadX(wire, Yr::UniString("stale"))), text);
        EXPECT_EQ(std::get<Yr::UniString>(ReadWithCodes(wire, Yr::UniString())), text);
    }
}

TEST(JavaDataProtocolTest, OverLongStringsAreRefusedWithNothingWritten) {
    // The limit counts UTF-8 bytes: 30,000 three-byte characters are 90,000.
    for (const Yr::UniString& text : {Repeated("x", 65536), Repeated("\xE2\x82\xAC", 30000)}) {
        RecordingOBinaryChannel sink;
        ExpectYrException<Yr::DataIntegrityException>([&] { WriteUTF(sink, text); },
                                                      "String length exceeds limit.",
                                                      Yr::kDataIntegrityErrorCode);
        Yr::BinaryOChannel channel(sink);
        EXPECT_EQ(WriteUTF(channel, text), Yr::kWriteErrorCode);
        EXPECT_TRUE(sink.GetBytes().empty());
    }
}

TEST(JavaDataProtocolTest, TheStringEndsAtItsFirstNul) {
    Yr::UniString text("ab");
    text.Append(U'\0').Append("cd");
    EXPECT_EQ(Hex(WriteX(text)), "00 02 61 62");
}

TEST(JavaDataProtocolTest, ShortInputThrowsEndOfInputOrReturnsTheStatus) {
    struct ShortCase {
        const char* bytes;
        Value like;
        int status;  // of the error-code flavour: cut-off values are damaged data
    };
    const ShortCase cases[] = {
        {"", 0, Yr::kEndOfInputErrorCode},
        {"01 02 03", 0, Yr::kDataIntegrityErrorCode},
        {"00", Yr::UniString(), Yr::kDataIntegrityErrorCode},
        {"00 03 61", Yr::UniString(), Yr::kDataIntegrityErrorCode},
        {"00 01", Yr::UniString(), Yr::kEndOfInputErrorCode},
        {"00 11 22", kGuid, Yr::kDataIntegrityErrorCode},
    };
    for (const ShortCase& c : cases) {
        SCOPED_TRACE(c.bytes);
        Value value = c.like;
        ExpectYrException<Yr::EndOfInputException>([&] { ReadX(BytesFromHex(c.bytes), value); },
                                                   "End of input reached.",
                                                   Yr::kEndOfInputErrorCode);
        OneByteIBinaryChannel source(BytesFromHex(c.bytes));
        Yr::BinaryIChannel channel(source);
        std::visit(
            [&](auto& v) {
                EXPECT_EQ(JavaDataInputProtocol::GetInstance().Read(channel, v), c.status);
            },
            value);
    }
}

TEST(JavaDataProtocolTest, ErrorCodeFlavourTurnsExceptionsInsideIntoStatuses) {
    // C0 80 is Java's form of U+0000, not standard UTF-8.
    OneByteIBinaryChannel source(BytesFromHex("00 02 C0 80"));
    Yr::BinaryIChannel input(source);
    Yr::UniString text;
    EXPECT_EQ(ReadUTF(input, text), Yr::kReadErrorCode);

    RecordingOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    EXPECT_EQ(JavaDataOutputProtocol::GetInstance().Write(output, "\xC3"), Yr::kWriteErrorCode);
    sink.SetFailing();
    EXPECT_EQ(JavaDataOutputProtocol::GetInstance().Write(output, kGuid), Yr::kIOErrorCode);
}

TEST(JavaDataProtocolTest, NarrowTextIsUtf8) {
    RecordingOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    EXPECT_EQ(JavaDataOutputProtocol::GetInstance().Write(output, "\xC3\xA9t\xC3\xA9"), 0);
    EXPECT_EQ(Hex(sink.GetBytes()), "00 05 C3 A9 74 C3 A9");

    OneByteIBinaryChannel source(sink.GetBytes());
    Yr::BinaryIChannel input(source);
    char buffer[8];
    std::fill(std::begin(buffer), std::end(buffer), 'z');
    EXPECT_EQ(JavaDataInputProtocol::GetInstance().Read(input, buffer), 0);
    EXPECT_STREQ(buffer, "\xC3\xA9t\xC3\xA9");
}

// A type the protocol does not know reads and writes itself through it.
struct Point final : Yr::Object {
    int x = 0;
    int y = 0;
    Yr::YrErrCode Read(Yr::IChannel& channel, Yr::IProtocol& protocol) override {
        if (const Yr::YrErrCode status = protocol.Read(channel, x)) return status;
        return protocol.Read(channel, y);
    }
    Yr::YrErrCode Write(Yr::OChannel& channel, Yr::OProtocol& protocol) const override {
        if (const Yr::YrErrCode status = protocol.Write(channel, x)) return status;
        return protocol.Write(channel, y);
    }
};

TEST(JavaDataProtocolTest, ObjectsUseTheProtocolForTheirFields) {
    Point point;
    point.x = 1;
    point.y = -1;
    RecordingOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    EXPECT_EQ(
        JavaDataOutputProtocol::GetInstance().Write(output, static_cast<const Yr::Object&>(point)),
        0);
    EXPECT_EQ(Hex(sink.GetBytes()), "00 00 00 01 FF FF FF FF");

    OneByteIBinaryChannel source(sink.GetBytes());
    Yr::BinaryIChannel input(source);
    Point read;
    EXPECT_EQ(JavaDataInputProtocol::GetInstance().Read(input, static_cast<Yr::Object&>(read)), 0);
    EXPECT_EQ(read.x, 1);
    EXPECT_EQ(read.y, -1);
}

}  // namespace
