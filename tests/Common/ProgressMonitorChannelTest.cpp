#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Common/AbstractProgressMonitor.h"
#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Common/ProgressMonitorOBinaryChannel.h"
#include "Yr/Exceptions.h"
#include "tests/support/CapturedDebugOutput.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/FailingIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using namespace Morvelan::Common;
using namespace Morvelan::Testing;
using Values = std::vector<Yr::UInt64>;

// Keeps every progress value; `fault`, when set, throws instead. Channels
// leave range and lifecycle to their caller.
class ProgressRecorder final : public AbstractProgressMonitor {
public:
    void SetProgress(Yr::UInt64 progress) override {
        if (fault) fault();
        values.push_back(progress);
    }
    void SetMaximum(Yr::UInt64) override { ADD_FAILURE() << "SetMaximum"; }
    void Started() override { ADD_FAILURE() << "Started"; }
    void Done() override { ADD_FAILURE() << "Done"; }

    Values values;
    std::function<void()> fault;
};

TEST(ProgressMonitorChannelTest, ReportRunningTotals) {
    FailingIBinaryChannel source("0123456789", 0, 4);
    ProgressRecorder reads;
    ProgressMonitorIBinaryChannel input(source, reads);
    char buffer[8];
    while (input.Read(buffer, sizeof buffer, Yr::kReadSome) != 0) {
    }
    EXPECT_EQ(input.Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    EXPECT_EQ(reads.values, (Values{4, 8, 10}));

    // Nothing is reported for a write the inner channel refused.
    RecordingOBinaryChannel target;
    ProgressRecorder writes;
    ProgressMonitorOBinaryChannel output(target, writes);
    output.Write("abc", 3);
    target.SetFailing();
    EXPECT_THROW(output.Write("x", 1), Yr::IOException);
    target.SetFailing(false);
    output.Write("de", 2);
    EXPECT_EQ(target.GetBytes(), "abcde");
    EXPECT_EQ(writes.values, (Values{3, 5}));
}

// Only out-of-memory goes unprinted.
TEST(ProgressMonitorChannelTest, FaultyMonitorDoesNotStopACopy) {
    const struct {
        std::function<void()> fault;
        bool printed;
    } cases[] = {
        {[] { throw Yr::IOException("Monitor broke.", "tests/Monitor", 3, Yr::kIOErrorCode); },
         true},
        {[] { throw Yr::OutOfMemoryException("", "tests/Monitor", 4, -108); }, false},
    };
    for (const auto& c : cases) {
        ProgressRecorder monitor;
        monitor.fault = c.fault;
        FailingIBinaryChannel source("0123456789", 0, 3);
        RecordingOBinaryChannel target;
        ProgressMonitorIBinaryChannel input(source, monitor);
        ProgressMonitorOBinaryChannel output(target, monitor);
        CapturedDebugOutput debug;
        char buffer[8];
        while (const Yr::UInt32 count = input.Read(buffer, sizeof buffer, Yr::kReadSome))
            output.Write(buffer, count);
        EXPECT_EQ(target.GetBytes(), "0123456789");
        EXPECT_EQ(debug.GetText().find("Monitor broke.") != std::string::npos, c.printed);
        EXPECT_EQ(debug.GetText().empty(), !c.printed);
    }
}

TEST(ProgressMonitorChannelTest, ArgumentsAreChecked) {
    FailingIBinaryChannel source("abc", 0);
    RecordingOBinaryChannel target;
    ProgressRecorder monitor;
    ProgressMonitorIBinaryChannel input(source, monitor);
    ProgressMonitorOBinaryChannel output(target, monitor);
    char buffer[1];
    const struct {
        std::function<void()> action;
        const char* message;
    } cases[] = {
        {[&] { input.Read(nullptr, 1, Yr::kReadSome); },
         "Invalid target buffer: target buffer is null."},
        {[&] { input.Read(buffer, 0, Yr::kReadSome); }, "Invalid target buffer: buffer size is 0."},
        {[&] { output.Write(nullptr, 1); }, "Invalid source buffer: source buffer is null."},
        {[&] { output.Write("x", 0); }, "Invalid source buffer: buffer size is 0."},
        {[&] {
             ProgressMonitorIBinaryChannel{Yr::Ref<Yr::IBinaryChannel>(), monitor};
         },
         "Invalid input channel: channel is null."},
        {[&] {
             ProgressMonitorOBinaryChannel{Yr::Ref<Yr::OBinaryChannel>(), monitor};
         },
         "Invalid output channel: channel is null."},
    };
    for (const auto& c : cases)
        ExpectYrException<Yr::IllegalArgumentException>(c.action, c.message, -50);
    EXPECT_TRUE(monitor.values.empty() && target.GetWriteSizes().empty());
}

TEST(ProgressMonitorChannelTest, CloseClosesTheInnerInBothForms) {
    ProgressRecorder monitor;
    FailingIBinaryChannel borrowedSource("", 0);
    RecordingOBinaryChannel borrowedTarget;
    const auto sharedSource = Yr::MakeRef<FailingIBinaryChannel>("", 0);
    const auto sharedTarget = Yr::MakeRef<RecordingOBinaryChannel>();
    ProgressMonitorIBinaryChannel(borrowedSource, monitor).Close();
    ProgressMonitorOBinaryChannel(borrowedTarget, monitor).Close();
    ProgressMonitorIBinaryChannel(sharedSource, monitor).Close();
    ProgressMonitorOBinaryChannel(sharedTarget, monitor).Close();
    EXPECT_EQ(borrowedSource.GetCloseCount() + borrowedTarget.GetCloseCount(), 2);
    EXPECT_EQ(sharedSource->GetCloseCount() + sharedTarget->GetCloseCount(), 2);
}

}  // namespace
