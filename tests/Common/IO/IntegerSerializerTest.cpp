#include <gtest/gtest.h>

#include <string>

#include "Common/IO/IntegerSerializer.h"
#include "Common/IO/IntegerSerializerException.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::IntegerSerializer;
using Morvelan::Common::IO::IntegerSerializerException;
using Morvelan::Common::IO::JavaDataInputProtocolX;
using Morvelan::Common::IO::JavaDataOutputProtocolX;

std::string Write(unsigned long long value) {
    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::OChannelX channel(sink, JavaDataOutputProtocolX::GetInstance());
    IntegerSerializer::Write(channel, value);
    return sink.GetBytes();
}

template <class T>
T Read(const std::string& bytes) {
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    Yr::IChannelX channel(source, JavaDataInputProtocolX::GetInstance());
    T value = 0;
    IntegerSerializer::Read(channel, value);
    EXPECT_EQ(source.GetAvailable(), 0u);
    return value;
}

TEST(IntegerSerializerTest, ValuesTakeSevenBitsAByteLowestFirst) {
    const struct {
        unsigned long long value;
        std::string bytes;
    } cases[] = {
        {0, std::string(1, '\0')},
        {127, "\x7F"},
        {128, "\x80\x01"},
        {300, "\xAC\x02"},
        {16384, "\x80\x80\x01"},
        {0xFFFFFFFFull, "\xFF\xFF\xFF\xFF\x0F"},
        {~0ull, std::string(9, '\xFF') + '\x01'},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Write(c.value), c.bytes) << c.value;
        EXPECT_EQ(Read<unsigned long long>(c.bytes), c.value);
    }
    Morvelan::Testing::RecordingOBinaryChannel sink;
    Yr::OChannelX channel(sink, JavaDataOutputProtocolX::GetInstance());
    IntegerSerializer::Write(channel, 300u);
    EXPECT_EQ(sink.GetBytes(), "\xAC\x02");
    EXPECT_EQ(Read<unsigned int>("\xFF\xFF\xFF\xFF\x0F"), 4294967295u);
}

TEST(IntegerSerializerTest, NonMinimalFormsReadAsTheirValue) {
    EXPECT_EQ(Read<unsigned long long>(std::string("\x80\x00", 2)), 0u);
    EXPECT_EQ(Read<unsigned int>(std::string(9, '\x80') + '\0'), 0u);
}

TEST(IntegerSerializerTest, NumbersTooLargeAreRefused) {
    const char* const kTooLarge = "Invalid input: represented number is too large.";
    for (const std::string& bytes :
         {std::string(9, '\xFF') + '\x02', std::string(9, '\x80') + '\x81'}) {
        Morvelan::Testing::ExpectYrException<IntegerSerializerException>(
            [&] { Read<unsigned long long>(bytes); }, kTooLarge, Yr::kIOErrorCode);
    }
    Morvelan::Testing::ExpectYrException<IntegerSerializerException>(
        [] { Read<unsigned int>("\x80\x80\x80\x80\x10"); }, kTooLarge, Yr::kIOErrorCode);
}

TEST(IntegerSerializerTest, ACutOffNumberIsTheChannelsEndOfInput) {
    EXPECT_THROW(Read<unsigned long long>("\x80\x80"), Yr::EndOfInputException);
}

}  // namespace
