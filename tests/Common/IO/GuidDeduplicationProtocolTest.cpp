#include <gtest/gtest.h>

#include <string>

#include "Common/IO/GuidDeduplicationIProtocolX.h"
#include "Common/IO/GuidDeduplicationOProtocolX.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::GuidDeduplicationIProtocolX;
using Morvelan::Common::IO::GuidDeduplicationOProtocolX;
using Morvelan::Common::IO::JavaDataInputProtocolX;
using Morvelan::Common::IO::JavaDataOutputProtocolX;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::RecordingOBinaryChannel;

const Yr::Guid kFirst{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};
const Yr::Guid kSecond{0xFFEEDDCC, 0xBBAA, 0x9988, {7, 6, 5, 4, 3, 2, 1, 0}};

std::string Full(const Yr::Guid& guid) {
    RecordingOBinaryChannel sink;
    JavaDataOutputProtocolX::GetInstance().Write(sink, guid);
    return '\x01' + sink.GetBytes();
}

const std::string kRepeatOfFirst("\x02\x00\x00\x00\x00", 5);

TEST(GuidDeduplicationProtocolTest, RepeatsTravelAsSequenceIdsAndReadBack) {
    GuidDeduplicationOProtocolX writer(JavaDataOutputProtocolX::GetInstance());
    RecordingOBinaryChannel sink;
    for (const Yr::Guid& guid : {kFirst, kSecond, kFirst, kFirst}) writer.Write(sink, guid);
    writer.Write(sink, 7);  // other values pass through
    EXPECT_EQ(sink.GetBytes(), Full(kFirst) + Full(kSecond) + kRepeatOfFirst + kRepeatOfFirst +
                                   std::string("\0\0\0\x07", 4));

    GuidDeduplicationIProtocolX reader(JavaDataInputProtocolX::GetInstance());
    Yr::MemoryIBinaryChannel source(sink.GetBytes().data(),
                                    static_cast<Yr::UInt32>(sink.GetBytes().size()));
    for (const Yr::Guid& expected : {kFirst, kSecond, kFirst, kFirst}) {
        Yr::Guid read{};
        reader.Read(source, read);
        EXPECT_EQ(read, expected);
    }
    int number = 0;
    reader.Read(source, number);
    EXPECT_EQ(number, 7);
}

TEST(GuidDeduplicationProtocolTest, BadSelectorsAndIdsAreRefusedAndTheTableKept) {
    struct BadCase {
        std::string bytes;
        const char* message;
    };
    const BadCase cases[] = {
        {kRepeatOfFirst.substr(0, 4) + '\x05', "Failed to read Guid: invalid sequence id."},
        {std::string("\x02\x00\x00\x00\x01", 5), "Failed to read Guid: invalid sequence id."},
        {std::string(1, '\0'), "Failed to read Guid: invalid selector."},
        {"\x03", "Failed to read Guid: invalid selector."},
    };
    for (const BadCase& c : cases) {
        GuidDeduplicationIProtocolX reader(JavaDataInputProtocolX::GetInstance());
        // One GUID known, so id 0 is valid and id 1 is not.
        const std::string stream = Full(kFirst) + c.bytes + kRepeatOfFirst;
        Yr::MemoryIBinaryChannel source(stream.data(), static_cast<Yr::UInt32>(stream.size()));
        Yr::Guid read{};
        reader.Read(source, read);
        ExpectYrException<Yr::IOException>([&] { reader.Read(source, read); }, c.message,
                                           Yr::kIOErrorCode);
        reader.Read(source, read);
        EXPECT_EQ(read, kFirst);
    }
}

TEST(GuidDeduplicationProtocolTest, AGuidCutOffIsNotNumbered) {
    GuidDeduplicationIProtocolX reader(JavaDataInputProtocolX::GetInstance());
    const std::string cut = Full(kFirst).substr(0, 9);
    Yr::MemoryIBinaryChannel source(cut.data(), static_cast<Yr::UInt32>(cut.size()));
    Yr::Guid read{};
    EXPECT_THROW(reader.Read(source, read), Yr::EndOfInputException);

    Yr::MemoryIBinaryChannel repeat(kRepeatOfFirst.data(), 5);
    ExpectYrException<Yr::IOException>([&] { reader.Read(repeat, read); },
                                       "Failed to read Guid: invalid sequence id.",
                                       Yr::kIOErrorCode);
}

TEST(GuidDeduplicationProtocolTest, AFailedWriteLeavesTheGuidNew) {
    GuidDeduplicationOProtocolX writer(JavaDataOutputProtocolX::GetInstance());
    RecordingOBinaryChannel sink;
    writer.Write(sink, kSecond);
    sink.SetFailing();
    EXPECT_THROW(writer.Write(sink, kFirst), Yr::IOException);
    sink.SetFailing(false);
    writer.Write(sink, kFirst);
    writer.Write(sink, kFirst);
    // The retried GUID is sent in full and takes id 1, the id a reader gives it.
    EXPECT_EQ(sink.GetBytes(), Full(kSecond) + Full(kFirst) + std::string("\x02\0\0\0\x01", 5));
}

TEST(GuidDeduplicationProtocolTest, CopiesCarryTheTable) {
    GuidDeduplicationOProtocolX writer(JavaDataOutputProtocolX::GetInstance());
    RecordingOBinaryChannel sink;
    writer.Write(sink, kFirst);
    const GuidDeduplicationOProtocolX copy(writer);
    RecordingOBinaryChannel copySink;
    copy.Write(copySink, kFirst);
    EXPECT_EQ(copySink.GetBytes(), kRepeatOfFirst);
}

}  // namespace
