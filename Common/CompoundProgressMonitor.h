#pragma once

#include <cstddef>

#include "Common/ProgressMonitor.h"
#include "Common/ProgressMonitorState.h"
#include "Yr/HashTable.h"

namespace Morvelan::Common {

// Sums what the pieces of one job report and passes each changed sum on to a
// parent monitor. Members report through the two-argument operations
// (usually from a SubProgressMonitor); the single-argument setters of the
// monitor interface are ignored, since the range is the sum of the members'.
// Members are known by address only and are never called after attaching,
// so one that is destroyed while attached merely keeps its share in the sums.
// Used by one thread at a time and keeps no lock: the job's worker reports,
// and readers elsewhere look only at what the parent stores.
class CompoundProgressMonitor : public ProgressMonitor {
public:
    // `parent` may be null; it is not owned and must outlive the compound.
    explicit CompoundProgressMonitor(ProgressMonitor* parent);
    CompoundProgressMonitor(const CompoundProgressMonitor&) = delete;
    CompoundProgressMonitor& operator=(const CompoundProgressMonitor&) = delete;
    ~CompoundProgressMonitor() override;

    // Every member operation throws IllegalArgumentException for a null
    // member. Attaching and detaching leave the sums alone: they follow at
    // the next report of any member.
    // False when `monitor` is already attached; else it joins with progress 0
    // and its current range.
    bool AttachProgressMonitor(ProgressMonitor* monitor);
    // False when `monitor` was not attached.
    bool DetachProgressMonitor(ProgressMonitor* monitor);
    bool IsProgressMonitorAttached(ProgressMonitor* monitor) const;

    // Reports of a member; false, changing nothing, when it is not attached.
    bool SetMaximum(ProgressMonitor* monitor, Yr::UInt64 maximum);
    bool SetMinimum(ProgressMonitor* monitor, Yr::UInt64 minimum);
    bool SetProgress(ProgressMonitor* monitor, Yr::UInt64 progress);
    // A member's lifecycle is noted here only; the job's lifecycle is the
    // owner's to report through Started(), Failed() and Done().
    bool Started(ProgressMonitor* monitor);
    bool Failed(ProgressMonitor* monitor, const Yr::YrException& failure);
    bool Done(ProgressMonitor* monitor);

    // The sums of the members' ranges.
    Yr::UInt64 GetMaximum() const override { return m_maximum; }
    Yr::UInt64 GetMinimum() const override { return m_minimum; }
    // Ignored: see the class comment.
    void SetMaximum(Yr::UInt64) override {}
    void SetMinimum(Yr::UInt64) override {}
    void SetProgress(Yr::UInt64) override {}
    // Passed to the parent; false without one.
    bool IsCanceled() const override;
    void Started() override;
    void Failed(const Yr::YrException& failure) override;
    void Done() override;

private:
    // The upper plus the lower half of the address; the table takes it
    // modulo its bucket count.
    struct AddressHash {
        std::size_t operator()(const ProgressMonitor* monitor) const;
    };

    // The member's state, or null when it is not attached; throws for null.
    ProgressMonitorState* FindState(ProgressMonitor* monitor);
    bool SetStatus(ProgressMonitor* monitor, ProgressMonitorState::Status status);
    Yr::UInt64 Sum(Yr::UInt64 ProgressMonitorState::*value) const;
    void UpdateMaximum();
    void UpdateMinimum();
    void UpdateProgress();

    Yr::HashTable<ProgressMonitor*, ProgressMonitorState, AddressHash> m_states;
    ProgressMonitor* m_parent;
    Yr::UInt64 m_progress = 0;
    Yr::UInt64 m_maximum = 0;
    Yr::UInt64 m_minimum = 0;
};

}  // namespace Morvelan::Common
