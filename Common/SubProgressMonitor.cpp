#include "Common/SubProgressMonitor.h"

#include "Common/CompoundProgressMonitor.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common {
namespace {
constexpr const char* kSourceUnit = "Common/SubProgressMonitor";

CompoundProgressMonitor* RequireCompound(CompoundProgressMonitor* compound) {
    if (compound == nullptr)
        throw Yr::IllegalArgumentException(
            "Invalid compound progress monitor: progress monitor is null.", kSourceUnit, __LINE__,
            Yr::kIllegalArgumentErrorCode);
    return compound;
}

}  // namespace

SubProgressMonitor::SubProgressMonitor(CompoundProgressMonitor* compound)
    : m_compound(RequireCompound(compound)) {
    m_compound->AttachProgressMonitor(this);
}

SubProgressMonitor::SubProgressMonitor(const SubProgressMonitor& other)
    : SubProgressMonitor(other.m_compound) {}

SubProgressMonitor::SubProgressMonitor(SubProgressMonitor&& other)
    : ProgressMonitor(other), m_compound(other.m_compound) {
    TakeOver(other);
}

SubProgressMonitor& SubProgressMonitor::operator=(const SubProgressMonitor& other) {
    if (this == &other) return *this;
    m_compound->DetachProgressMonitor(this);
    m_compound = other.m_compound;
    m_progress = m_maximum = m_minimum = 0;
    Join();
    return *this;
}

SubProgressMonitor& SubProgressMonitor::operator=(SubProgressMonitor&& other) {
    if (this == &other) return *this;
    m_compound->DetachProgressMonitor(this);
    m_compound = other.m_compound;
    TakeOver(other);
    return *this;
}

SubProgressMonitor::~SubProgressMonitor() = default;

void SubProgressMonitor::SetMaximum(Yr::UInt64 maximum) {
    if (maximum == m_maximum) return;
    m_compound->SetMaximum(this, maximum);
    m_maximum = maximum;
}

void SubProgressMonitor::SetMinimum(Yr::UInt64 minimum) {
    if (minimum == m_minimum) return;
    m_compound->SetMinimum(this, minimum);
    m_minimum = minimum;
}

void SubProgressMonitor::SetProgress(Yr::UInt64 progress) {
    if (progress == m_progress) return;
    m_compound->SetProgress(this, progress);
    m_progress = progress;
}

bool SubProgressMonitor::IsCanceled() const {
    return m_compound->IsCanceled();
}

void SubProgressMonitor::Started() {
    m_compound->Started(this);
}

void SubProgressMonitor::Failed(const Yr::YrException& failure) {
    m_compound->Failed(this, failure);
}

void SubProgressMonitor::Done() {
    m_compound->Done(this);
}

void SubProgressMonitor::Join() {
    // Attaching alone leaves the sums as they were; reporting every value
    // recomputes them, and the parent hears only of a sum that changed.
    m_compound->AttachProgressMonitor(this);
    m_compound->SetMaximum(this, m_maximum);
    m_compound->SetMinimum(this, m_minimum);
    m_compound->SetProgress(this, m_progress);
}

void SubProgressMonitor::TakeOver(SubProgressMonitor& other) {
    m_progress = other.m_progress;
    m_maximum = other.m_maximum;
    m_minimum = other.m_minimum;
    if (m_compound->DetachProgressMonitor(&other)) Join();
}

}  // namespace Morvelan::Common
