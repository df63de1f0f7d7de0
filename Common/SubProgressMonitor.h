#pragma once

#include "Common/ProgressMonitor.h"

namespace Morvelan::Common {

class CompoundProgressMonitor;

// One piece of a job watched by a CompoundProgressMonitor: it attaches itself
// at construction and reports every change of its values to the compound,
// which knows it by address. Destruction does not detach: the compound's
// owner decides when a piece leaves the sums.
//
// Copying and moving keep "one address, one member":
// - a copy is one more piece of the same job: it attaches itself and starts
//   at 0 as a newly constructed one does (copying the values would count the
//   source's work twice);
// - a move hands the source's place over: the source is detached and the
//   target joins with the source's values, so the sums stay as they were (a
//   source that was not attached hands nothing over);
// - assignment first leaves the target's own compound, then does as the
//   matching construction.
class SubProgressMonitor : public ProgressMonitor {
public:
    // `compound` is not owned and must outlive the sub-monitor; null throws
    // IllegalArgumentException.
    explicit SubProgressMonitor(CompoundProgressMonitor* compound);
    SubProgressMonitor(const SubProgressMonitor& other);
    SubProgressMonitor(SubProgressMonitor&& other);
    SubProgressMonitor& operator=(const SubProgressMonitor& other);
    SubProgressMonitor& operator=(SubProgressMonitor&& other);
    ~SubProgressMonitor() override;

    // Each reports to the compound only when the value changes.
    void SetMaximum(Yr::UInt64 maximum) override;
    Yr::UInt64 GetMaximum() const override { return m_maximum; }
    void SetMinimum(Yr::UInt64 minimum) override;
    Yr::UInt64 GetMinimum() const override { return m_minimum; }
    void SetProgress(Yr::UInt64 progress) override;
    bool IsCanceled() const override;
    void Started() override;
    void Failed(const Yr::YrException& failure) override;
    void Done() override;

private:
    // Attaches this and brings the compound's sums in line with its values.
    void Join();
    // Takes the values and, if it was attached, the place of `other`.
    void TakeOver(SubProgressMonitor& other);

    CompoundProgressMonitor* m_compound;
    Yr::UInt64 m_progress = 0;
    Yr::UInt64 m_maximum = 0;
    Yr::UInt64 m_minimum = 0;
};

}  // namespace Morvelan::Common
