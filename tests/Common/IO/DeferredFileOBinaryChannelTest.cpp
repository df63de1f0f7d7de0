#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "Common/IO/DeferredFileOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Common::IO::DeferredFileOBinaryChannel;
using Morvelan::Common::IO::ThresholdingOBinaryChannel;
using Morvelan::Testing::At;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RecordingOBinaryChannel;
using Morvelan::Testing::ScopedTempFolder;

bool IsThere(const std::string& path) {
    return std::ifstream(path).good();
}

std::string Pattern(Yr::UInt32 size) {
    std::string bytes(size, '\0');
    for (Yr::UInt32 i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 1021);
    return bytes;
}

// Records how much its output held when the threshold was reached.
class ProbeChannel final : public ThresholdingOBinaryChannel {
public:
    explicit ProbeChannel(Yr::UInt64 threshold) : ThresholdingOBinaryChannel(threshold) {}
    using ThresholdingOBinaryChannel::CheckThreshold;

    RecordingOBinaryChannel output;
    std::vector<std::size_t> reachedAt;

protected:
    Yr::OBinaryChannel& GetOutputChannel() override { return output; }
    const Yr::OBinaryChannel& GetOutputChannel() const override { return output; }
    void ThresholdReached() override { reachedAt.push_back(output.GetBytes().size()); }
};

TEST(ThresholdingOBinaryChannelTest, CallsOnceBeforeTheCrossingWrite) {
    ProbeChannel channel(5);
    channel.Write("abc", 3);
    channel.CheckThreshold(2);
    channel.Write("de", 2);
    EXPECT_FALSE(channel.IsThresholdExceeded());
    channel.CheckThreshold(1);
    channel.Write("fgh", 3);
    EXPECT_TRUE(channel.IsThresholdExceeded());
    EXPECT_EQ(channel.reachedAt, (std::vector<std::size_t>{5}));
    EXPECT_EQ(channel.GetCount(), 8u);
    channel.Close();
    EXPECT_EQ(channel.output.GetCloseCount(), 1);
    const char* closed = "Thresholding binary output channel is closed.";
    ExpectYrException<Yr::IOException>([&] { channel.Write("a", 1); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { channel.Flush(); }, closed, Yr::kIOErrorCode);
}

TEST(DeferredFileOBinaryChannelTest, StaysInMemoryUpToThreshold) {
    ScopedTempFolder folder;
    const std::string path = folder.PathOf("out");
    DeferredFileOBinaryChannel channel(At(path), 10);
    channel.Write("0123", 4);
    channel.Write("456789", 6);
    channel.Flush();
    EXPECT_FALSE(channel.IsThresholdExceeded());
    EXPECT_FALSE(IsThere(path));
    ExpectYrException<Yr::IOException>(
        [&] {
            RecordingOBinaryChannel output;
            channel.WriteTo(output);
        },
        "Deferred file binary output channel hasn't been closed yet.", Yr::kIOErrorCode);
    channel.Close();
    RecordingOBinaryChannel output;
    channel.WriteTo(output);
    EXPECT_EQ(output.GetBytes(), "0123456789");
    EXPECT_FALSE(IsThere(path));
}

TEST(DeferredFileOBinaryChannelTest, OneMoreByteMovesEverythingToTheFile) {
    ScopedTempFolder folder;
    const std::string path = folder.PathOf("out");
    {
        DeferredFileOBinaryChannel channel(At(path), 10);
        channel.Write("0123456789", 10);
        channel.Write("A", 1);
        EXPECT_TRUE(channel.IsThresholdExceeded());
        EXPECT_EQ(ReadFile(path), "0123456789A");
        channel.Close();
    }
    EXPECT_EQ(ReadFile(path), "0123456789A");
}

// Pieces that cross page and file-buffer sizes on both sides of the switch.
TEST(DeferredFileOBinaryChannelTest, WriteToCopiesFromTheFile) {
    ScopedTempFolder folder;
    const std::string path = folder.PathOf("big");
    const std::string data = Pattern(3 * 524288 + 17);
    DeferredFileOBinaryChannel channel(At(path), 1000000);
    for (std::size_t done = 0; done < data.size(); done += 300001) {
        const auto size =
            static_cast<Yr::UInt32>(std::min<std::size_t>(300001, data.size() - done));
        channel.Write(data.data() + done, size);
    }
    channel.Close();
    channel.Close();
    RecordingOBinaryChannel output;
    channel.WriteTo(output);
    EXPECT_TRUE(output.GetBytes() == data);
    EXPECT_TRUE(ReadFile(path) == data);
}

struct RefusalCase {
    const char* name;
    const char* path;
    Yr::UInt64 threshold;
    const char* message;
};

class DeferredFileRefusalTest : public testing::TestWithParam<RefusalCase> {};

TEST_P(DeferredFileRefusalTest, Throws) {
    const RefusalCase& c = GetParam();
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { DeferredFileOBinaryChannel channel(At(c.path), c.threshold); }, c.message, -50);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DeferredFileRefusalTest,
    testing::Values(RefusalCase{"ZeroThreshold", "/tmp/x", 0, "Invalid threshold: threshold is 0."},
                    RefusalCase{"ThresholdPastUInt32", "/tmp/x", 4294967296ull,
                                "Invalid threshold: threshold is larger than maximum supported "
                                "size."},
                    RefusalCase{"RootLocation", "/", 10, "Invalid location: location is empty."}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DeferredFileOBinaryChannelTest, AcceptsLargestThreshold) {
    DeferredFileOBinaryChannel channel(At("/tmp/never-created"), 4294967295ull);
    EXPECT_EQ(channel.GetThreshold(), 4294967295ull);
    EXPECT_EQ(channel.GetLocation(), At("/tmp/never-created"));
}

}  // namespace
