#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Common/AbstractProgressMonitor.h"
#include "Common/CompoundProgressMonitor.h"
#include "Common/ProgressMonitorWrapper.h"
#include "Common/SubProgressMonitor.h"
#include "Yr/Exceptions.h"
#include "tests/support/CapturedDebugOutput.h"
#include "tests/support/ExpectYrException.h"

namespace {

using namespace Morvelan::Common;
using namespace Morvelan::Testing;
using Calls = std::vector<std::string>;

// Notes every call as text; `fault`, when set, runs first in each call.
class RecordingMonitor final : public AbstractProgressMonitor {
public:
    void SetMaximum(Yr::UInt64 v) override {
        Note("max " + std::to_string(v));
        AbstractProgressMonitor::SetMaximum(v);
    }
    Yr::UInt64 GetMaximum() const override {
        Fault();
        return AbstractProgressMonitor::GetMaximum();
    }
    void SetMinimum(Yr::UInt64 v) override { Note("min " + std::to_string(v)); }
    bool IsCanceled() const override {
        Fault();
        return canceled;
    }
    void SetProgress(Yr::UInt64 v) override { Note("progress " + std::to_string(v)); }
    void Started() override { Note("started"); }
    void Failed(const Yr::YrException& e) override { Note(std::string("failed ") + e.what()); }
    void Done() override { Note("done"); }

    Calls calls;
    bool canceled = false;
    std::function<void()> fault;

private:
    void Fault() const {
        if (fault) fault();
    }
    void Note(const std::string& call) {
        Fault();
        calls.push_back(call);
    }
};

const Yr::IOException kFailure("Disk gone.", "tests/ProgressMonitorTest", 1, Yr::kIOErrorCode);

const struct {
    const char* name;
    void (ProgressMonitor::*set)(Yr::UInt64);
    bool (CompoundProgressMonitor::*report)(ProgressMonitor*, Yr::UInt64);
} kQuantities[] = {
    {"max", &ProgressMonitor::SetMaximum, &CompoundProgressMonitor::SetMaximum},
    {"min", &ProgressMonitor::SetMinimum, &CompoundProgressMonitor::SetMinimum},
    {"progress", &ProgressMonitor::SetProgress, &CompoundProgressMonitor::SetProgress},
};

TEST(CompoundProgressMonitorTest, ParentHearsEachChangedSumOnce) {
    for (const auto& q : kQuantities) {
        RecordingMonitor parent;
        CompoundProgressMonitor compound(&parent);
        SubProgressMonitor first(&compound), second(&compound);
        for (auto [sub, value] :
             {std::pair{&first, 100}, {&second, 50}, {&second, 50}, {&second, 60}, {&first, 90}})
            (sub->*q.set)(value);
        const std::string n = std::string(q.name) + " ";
        EXPECT_EQ(parent.calls, (Calls{n + "100", n + "150", n + "160", n + "150"})) << q.name;
    }
}

TEST(CompoundProgressMonitorTest, NullMemberIsRejectedEverywhere) {
    CompoundProgressMonitor c(nullptr);
    const std::function<void()> operations[] = {
        [&] { c.AttachProgressMonitor(nullptr); },
        [&] { c.DetachProgressMonitor(nullptr); },
        [&] { c.IsProgressMonitorAttached(nullptr); },
        [&] { c.SetMaximum(nullptr, 1); },
        [&] { c.SetMinimum(nullptr, 1); },
        [&] { c.SetProgress(nullptr, 1); },
        [&] { c.Started(nullptr); },
        [&] { c.Failed(nullptr, kFailure); },
        [&] { c.Done(nullptr); },
    };
    for (const auto& operation : operations)
        ExpectYrException<Yr::IllegalArgumentException>(
            operation, "Invalid progress monitor: progress monitor is null.", -50);
}

// Attaching takes the member's range without recomputing the sums; detaching
// leaves them too; a non-member's reports change nothing.
TEST(CompoundProgressMonitorTest, MembershipAndReportsOfNonMembers) {
    RecordingMonitor parent, member, leaver, stranger;
    CompoundProgressMonitor compound(&parent);
    member.SetMaximum(30);
    EXPECT_TRUE(compound.AttachProgressMonitor(&member));
    EXPECT_FALSE(compound.AttachProgressMonitor(&member));
    EXPECT_EQ(compound.GetMaximum(), 0u);
    compound.AttachProgressMonitor(&leaver);
    EXPECT_TRUE(compound.SetMaximum(&leaver, 10));
    EXPECT_TRUE(compound.DetachProgressMonitor(&leaver));
    EXPECT_FALSE(compound.DetachProgressMonitor(&leaver));
    EXPECT_EQ(compound.GetMaximum(), 40u);
    for (ProgressMonitor* monitor : {&leaver, &stranger}) {
        for (const auto& q : kQuantities) EXPECT_FALSE((compound.*q.report)(monitor, 7));
        EXPECT_FALSE(compound.Started(monitor) || compound.Failed(monitor, kFailure) ||
                     compound.Done(monitor) || compound.IsProgressMonitorAttached(monitor));
    }
    EXPECT_EQ(compound.GetMinimum(), 0u);
    EXPECT_EQ(parent.calls, Calls{"max 40"});
}

TEST(CompoundProgressMonitorTest, OnlyTheCompoundsOwnLifecycleReachesTheParent) {
    RecordingMonitor parent, member;
    CompoundProgressMonitor compound(&parent);
    SubProgressMonitor sub(&compound);
    compound.AttachProgressMonitor(&member);
    EXPECT_TRUE(compound.Started(&member) && compound.Failed(&member, kFailure) &&
                compound.Done(&member));
    ProgressMonitor* const both[] = {&sub, &compound};
    for (ProgressMonitor* monitor : both) {
        monitor->Started();
        monitor->Failed(kFailure);
        monitor->Done();
    }
    for (const auto& q : kQuantities) (compound.*q.set)(5);
    EXPECT_EQ(parent.calls, (Calls{"started", "failed Disk gone.", "done"}));
    EXPECT_FALSE(sub.IsCanceled());
    parent.canceled = true;
    EXPECT_TRUE(compound.IsCanceled() && sub.IsCanceled());

    CompoundProgressMonitor orphan(nullptr);
    SubProgressMonitor(&orphan).SetMaximum(3);
    orphan.Started();
    EXPECT_FALSE(orphan.IsCanceled());
    EXPECT_EQ(orphan.GetMaximum(), 3u);
}

// A copy is a new piece starting at 0; a move hands its place over unnoticed
// by the parent; assignment leaves the old place first.
TEST(SubProgressMonitorTest, ConstructionCopyAndMove) {
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { SubProgressMonitor sub(nullptr); },
        "Invalid compound progress monitor: progress monitor is null.", -50);
    RecordingMonitor parent;
    CompoundProgressMonitor compound(&parent);
    SubProgressMonitor first(&compound);
    first.SetMaximum(100);
    first.SetProgress(40);
    SubProgressMonitor copy(first);
    EXPECT_EQ(copy.GetMaximum(), 0u);
    copy.SetMaximum(10);
    SubProgressMonitor moved(std::move(first));
    EXPECT_FALSE(compound.IsProgressMonitorAttached(&first));
    EXPECT_EQ(moved.GetMaximum(), 100u);
    moved.SetProgress(50);
    copy = moved;
    EXPECT_EQ(parent.calls, (Calls{"max 100", "progress 40", "max 110", "progress 50", "max 100"}));
}

TEST(ProgressMonitorWrapperTest, NullMonitorAndAcceptedRange) {
    ProgressMonitorWrapper empty(nullptr);
    empty.SetProgress(1);
    empty.Failed(kFailure);
    EXPECT_EQ(empty.GetMaximum() + empty.GetMinimum(), 0u);
    EXPECT_FALSE(empty.IsCanceled());

    RecordingMonitor monitor;
    ProgressMonitorWrapper open(&monitor), bounded(&monitor), assigned(nullptr);
    bounded.SetAcceptedRange(10, 20);
    ProgressMonitorWrapper copy(bounded);
    assigned = bounded;
    for (ProgressMonitorWrapper* wrapper : {&open, &bounded, &copy, &assigned})
        for (Yr::UInt64 value : {9, 10, 20, 21}) wrapper->SetProgress(value);
    EXPECT_EQ(monitor.calls,
              (Calls{"progress 9", "progress 10", "progress 20", "progress 21", "progress 10",
                     "progress 20", "progress 10", "progress 20", "progress 10", "progress 20"}));
}

// Out-of-memory is swallowed unprinted, other Yr failures printed; getters
// answer 0 and false; foreign exceptions pass.
TEST(ProgressMonitorWrapperTest, FaultyMonitorDoesNotInterruptTheCaller) {
    const struct {
        std::function<void()> fault;
        bool printed;
    } cases[] = {
        {[] { throw Yr::IOException("Monitor broke.", "tests/Monitor", 7, Yr::kIOErrorCode); },
         true},
        {[] { throw Yr::OutOfMemoryException("", "tests/Monitor", 8, -108); }, false},
    };
    for (const auto& c : cases) {
        RecordingMonitor monitor;
        monitor.canceled = true;
        monitor.fault = c.fault;
        ProgressMonitorWrapper wrapper(&monitor);
        CapturedDebugOutput output;
        wrapper.SetProgress(1);
        wrapper.Done();
        EXPECT_EQ(wrapper.GetMaximum(), 0u);
        EXPECT_FALSE(wrapper.IsCanceled());
        EXPECT_EQ(output.GetText().find("Monitor broke.") != std::string::npos, c.printed);
        EXPECT_EQ(output.GetText().empty(), !c.printed);
    }
    RecordingMonitor monitor;
    monitor.fault = [] { throw std::runtime_error("not ours"); };
    EXPECT_THROW(ProgressMonitorWrapper(&monitor).SetProgress(1), std::runtime_error);
}

}  // namespace
