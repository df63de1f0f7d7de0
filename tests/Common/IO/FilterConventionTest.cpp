// The rules every pass-through filter keeps about its inner channel, checked
// over all of them at once.
#include <gtest/gtest.h>
#include <zlib.h>

#include <functional>
#include <memory>
#include <string>

#include "Yr/Exceptions.h"

#include "Common/AbstractProgressMonitor.h"
#include "Common/IO/BoundedIBinaryChannel.h"
#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CRC32OBinaryChannel.h"
#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/CountingOBinaryChannel.h"
#include "Common/IO/NullOBinaryChannel.h"
#include "Common/IO/PushbackIBinaryChannel.h"
#include "Common/IO/RangeIBinaryChannel.h"
#include "Common/IO/RewindableIBinaryChannel.h"
#include "Common/IO/SplitterOBinaryChannel.h"
#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Common/ProgressMonitorOBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common::IO;
using namespace Morvelan::Testing;

// Builds a filter over a borrowed or a shared inner channel of type Channel.
template <class Channel>
struct Filter {
    const char* name;
    std::function<std::unique_ptr<Channel>(Channel&)> borrow;
    std::function<std::unique_ptr<Channel>(const Yr::Ref<Channel>&)> share;
};

template <class Channel, class Made, class... Rest>
Filter<Channel> Make(const char* name, Rest... rest) {
    const auto make = [=](auto& inner) -> std::unique_ptr<Channel> {
        return std::make_unique<Made>(inner, rest...);
    };
    return {name, make, make};
}

NullOBinaryChannel g_discard;
struct : Morvelan::Common::AbstractProgressMonitor {
} g_monitor;

const Filter<Yr::IBinaryChannel> kInputs[] = {
    Make<Yr::IBinaryChannel, CountingIBinaryChannel>("Counting"),
    Make<Yr::IBinaryChannel, CRC32IBinaryChannel>("CRC32"),
    Make<Yr::IBinaryChannel, BoundedIBinaryChannel>("Bounded", Yr::UInt64{99}),
    Make<Yr::IBinaryChannel, RangeIBinaryChannel>("Range", Yr::UInt64{0}, Yr::UInt64{99}),
    Make<Yr::IBinaryChannel, PushbackIBinaryChannel>("Pushback"),
    Make<Yr::IBinaryChannel, PushbackIBinaryChannel>("Pushback fixed", Yr::UInt32{4}),
    Make<Yr::IBinaryChannel, RewindableIBinaryChannel>("Rewindable"),
    Make<Yr::IBinaryChannel, RewindableIBinaryChannel>("Rewindable ring", Yr::UInt32{4}),
    Make<Yr::IBinaryChannel, Morvelan::Common::ProgressMonitorIBinaryChannel>(
        "Progress", std::ref<Morvelan::Common::ProgressMonitor>(g_monitor)),
};

// The splitter passes its first channel for the one under test.
const Filter<Yr::OBinaryChannel> kOutputs[] = {
    Make<Yr::OBinaryChannel, CountingOBinaryChannel>("Counting"),
    Make<Yr::OBinaryChannel, CRC32OBinaryChannel>("CRC32"),
    Make<Yr::OBinaryChannel, SplitterOBinaryChannel>("Splitter",
                                                     std::ref<Yr::OBinaryChannel>(g_discard)),
    Make<Yr::OBinaryChannel, Morvelan::Common::ProgressMonitorOBinaryChannel>(
        "Progress", std::ref<Morvelan::Common::ProgressMonitor>(g_monitor)),
};

TEST(FilterConventionTest, EmptyRefIsRejectedAtConstruction) {
    const auto check = [](const auto& filters, const char* message) {
        for (const auto& filter : filters) {
            SCOPED_TRACE(filter.name);
            ExpectYrException<Yr::IllegalArgumentException>([&] { filter.share(nullptr); }, message,
                                                            -50);
        }
    };
    check(kInputs, "Invalid input channel: channel is null.");
    check(kOutputs, "Invalid output channel: channel is null.");
}

// Close reaches the inner channel in both forms; destroying a borrowing filter
// leaves the inner open and usable; a sharing one keeps it alive.
TEST(FilterConventionTest, CloseClosesTheInnerDestructionDoesNot) {
    char buffer[1];
    for (const auto& filter : kInputs) {
        SCOPED_TRACE(filter.name);
        FailingIBinaryChannel borrowed("abc", 0);
        filter.borrow(borrowed)->Read(buffer, 1, Yr::kReadAll);
        borrowed.Read(buffer, 1, Yr::kReadAll);
        EXPECT_EQ(buffer[0], 'b');
        EXPECT_EQ(borrowed.GetCloseCount(), 0);
        filter.borrow(borrowed)->Close();
        EXPECT_EQ(borrowed.GetCloseCount(), 1);
        // The filter holds the only reference; the sanitizer sees any early free.
        Yr::Ref<FailingIBinaryChannel> shared = Yr::MakeRef<FailingIBinaryChannel>("abc", 0);
        const FailingIBinaryChannel* inner = shared.Get();
        const auto channel = filter.share(shared);
        shared.Reset();
        channel->Read(buffer, 1, Yr::kReadAll);
        channel->Close();
        EXPECT_EQ(buffer[0], 'a');
        EXPECT_EQ(inner->GetCloseCount(), 1);
    }
    for (const auto& filter : kOutputs) {
        SCOPED_TRACE(filter.name);
        RecordingOBinaryChannel borrowed;
        filter.borrow(borrowed)->Write("a", 1);
        borrowed.Write("b", 1);
        EXPECT_EQ(borrowed.GetBytes(), "ab");
        EXPECT_EQ(borrowed.GetCloseCount(), 0);
        filter.borrow(borrowed)->Close();
        EXPECT_EQ(borrowed.GetCloseCount(), 1);
        Yr::Ref<RecordingOBinaryChannel> shared = Yr::MakeRef<RecordingOBinaryChannel>();
        const RecordingOBinaryChannel* inner = shared.Get();
        const auto channel = filter.share(shared);
        shared.Reset();
        channel->Write("a", 1);
        channel->Close();
        EXPECT_EQ(inner->GetBytes(), "a");
        EXPECT_EQ(inner->GetCloseCount(), 1);
    }
}

// The inner channel fails once and recovers: the filter neither counts nor
// checksums the failed call, nor loses its place.
TEST(FilterConventionTest, FailedInnerCallChangesNothing) {
    for (const auto& filter : kInputs) {
        SCOPED_TRACE(filter.name);
        FailingIBinaryChannel inner("abcdef", 2, 2);
        const auto channel = filter.borrow(inner);
        char buffer[6];
        ASSERT_EQ(channel->Read(buffer, 6, Yr::kReadSome), 2u);
        EXPECT_THROW(channel->Read(buffer + 2, 4, Yr::kReadSome), Yr::IOException);
        channel->Read(buffer + 2, 4, Yr::kReadAll);
        EXPECT_EQ(std::string(buffer, 6), "abcdef");
    }
    RecordingOBinaryChannel inner;
    CRC32OBinaryChannel crc(inner);
    CountingOBinaryChannel counting(crc);
    counting.Write("ab", 2);
    inner.SetFailing();
    EXPECT_THROW(counting.Write("XYZ", 3), Yr::IOException);
    inner.SetFailing(false);
    counting.Write("cdef", 4);
    EXPECT_EQ(counting.GetCount(), 6u);
    EXPECT_EQ(crc.GetCRC(), crc32(0, reinterpret_cast<const Bytef*>("abcdef"), 6));
}

}  // namespace
