#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"

#include "Common/IO/PushbackIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"

namespace {

using Morvelan::Common::IO::PushbackIBinaryChannel;
using Morvelan::Testing::ExpectYrException;

constexpr Yr::UInt32 kGrowable = 0;
constexpr const char* kFull = "Pushback buffer is full.";

// Runs `script` over "XYZ": "+ab" unreads "ab", "-2" is one Read of up to 2
// bytes; reads of up to 16 then drain the channel. Each Read's bytes end in
// '|', so a read that joins pushed-back and fresh bytes shows; a throw ends
// the result with its message.
std::string RunScript(Yr::UInt32 size, const std::vector<std::string>& script) {
    Yr::MemoryIBinaryChannel inner("XYZ", 3);
    PushbackIBinaryChannel pushback =
        size == kGrowable ? PushbackIBinaryChannel(inner) : PushbackIBinaryChannel(inner, size);
    Yr::IBinaryChannel& channel = pushback;
    std::string result;
    char buffer[16];
    const auto read = [&](Yr::UInt32 wanted) {
        const Yr::UInt32 count = channel.Read(buffer, wanted, Yr::kReadSome);
        result.append(buffer, count) += '|';
        return count;
    };
    try {
        for (const std::string& step : script) {
            if (step[0] == '+')
                pushback.Unread(step.data() + 1, static_cast<Yr::UInt32>(step.size() - 1));
            else
                read(static_cast<Yr::UInt32>(std::stoul(step.substr(1))));
        }
        while (read(sizeof buffer) > 0) continue;
    } catch (const Yr::IOException& e) {
        EXPECT_EQ(e.GetErrorCode(), -7003);
        result += e.what();
    }
    return result;
}

TEST(PushbackIBinaryChannelTest, ReadsUnreadBytesBeforeInnerOnes) {
    const struct {
        Yr::UInt32 size;
        std::vector<std::string> script;
        std::string expected;
    } kCases[] = {
        {kGrowable, {"-1", "+X"}, "X|XYZ||"},
        {4, {"+ab", "+cd"}, "cdabXYZ||"},               // room in front: newest first
        {kGrowable, {"+ab", "+cd"}, "abcdXYZ||"},       // no room in front: behind the pending
        {kGrowable, {"+ab", "-1", "+c"}, "a|cbXYZ||"},  // the consumed byte left room
        {kGrowable, {"+ab", "-1", "+cd"}, "a|bcdXYZ||"},
        {kGrowable, {"+ab", "-4", "-1"}, "abXY|Z||"},  // one read joins both
        {4, {"+abcd", "-4", "+ef", "-1"}, "abcd|e|fXYZ||"},
        {1, {"-3", "+Z"}, "XYZ|Z||"},
        {4, {"+abcde"}, kFull},
        {4, {"+ab", "+cde"}, kFull},
        {4, {"+abcd", "-2", "+abc"}, std::string("ab|") + kFull},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.size << " " << c.expected);
        EXPECT_EQ(RunScript(c.size, c.script), c.expected);
    }
}

TEST(PushbackIBinaryChannelTest, RejectsInvalidArguments) {
    Yr::MemoryIBinaryChannel inner("XYZ", 3);
    PushbackIBinaryChannel pushback(inner, 4);
    Yr::IBinaryChannel& channel = pushback;
    const Yr::Ref<Yr::IBinaryChannel> none;
    char buffer[4];
    const char* const kNoChannel = "Invalid input channel: channel is null.";
    const char* const kNoLength = "Invalid length: length is 0.";
    const struct {
        std::function<void()> action;
        const char* message;
    } kCases[] = {
        {[&] { PushbackIBinaryChannel(inner, 0); }, "Invalid pushback buffer size: size is 0."},
        {[&] { PushbackIBinaryChannel(none, 4); }, kNoChannel},
        {[&] { PushbackIBinaryChannel{none}; }, kNoChannel},
        {[&] { pushback.Unread(nullptr, 1); }, "Invalid source: source is null."},
        {[&] { pushback.Unread("a", 0); }, kNoLength},
        {[&] { channel.Read(nullptr, 1, Yr::kReadSome); },
         "Invalid destination: destination is null."},
        {[&] { channel.Read(buffer, 0, Yr::kReadSome); }, kNoLength},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.message);
        ExpectYrException<Yr::IllegalArgumentException>(c.action, c.message, -50);
    }
}

// Close marks nothing that Read or Unread look at: they go on afterwards.
TEST(PushbackIBinaryChannelTest, SumsAvailableAndKeepsWorkingAfterClose) {
    Morvelan::Testing::FailingIBinaryChannel inner("XYZ", 0, 3);
    PushbackIBinaryChannel pushback(inner);
    Yr::IBinaryChannel& channel = pushback;
    pushback.Unread("ab", 2);
    EXPECT_EQ(channel.GetAvailable(), 5u);
    channel.Close();
    channel.Close();
    EXPECT_EQ(inner.GetCloseCount(), 1);
    pushback.Unread("c", 1);
    char buffer[8];
    ASSERT_EQ(channel.Read(buffer, 8, Yr::kReadSome), 6u);
    EXPECT_EQ(std::string(buffer, 6), "abcXYZ");
}

}  // namespace
