#include "Common/CompoundProgressMonitor.h"

#include <cstdint>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common {
namespace {
constexpr const char* kSourceUnit = "Common/CompoundProgressMonitor";

void CheckMember(const ProgressMonitor* monitor) {
    if (monitor == nullptr)
        throw Yr::IllegalArgumentException("Invalid progress monitor: progress monitor is null.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
}

}  // namespace

std::size_t CompoundProgressMonitor::AddressHash::operator()(const ProgressMonitor* monitor) const {
    const auto address = static_cast<Yr::UInt64>(reinterpret_cast<std::uintptr_t>(monitor));
    return static_cast<std::size_t>((address >> 32) + (address & 0xFFFFFFFFu));
}

CompoundProgressMonitor::CompoundProgressMonitor(ProgressMonitor* parent) : m_parent(parent) {}

CompoundProgressMonitor::~CompoundProgressMonitor() = default;

bool CompoundProgressMonitor::AttachProgressMonitor(ProgressMonitor* monitor) {
    CheckMember(monitor);
    if (m_states.Contains(monitor)) return false;
    ProgressMonitorState state;
    state.maximum = monitor->GetMaximum();
    state.minimum = monitor->GetMinimum();
    return m_states.Put(monitor, state);
}

bool CompoundProgressMonitor::DetachProgressMonitor(ProgressMonitor* monitor) {
    CheckMember(monitor);
    return m_states.Remove(monitor);
}

bool CompoundProgressMonitor::IsProgressMonitorAttached(ProgressMonitor* monitor) const {
    CheckMember(monitor);
    return m_states.Contains(monitor);
}

bool CompoundProgressMonitor::SetMaximum(ProgressMonitor* monitor, Yr::UInt64 maximum) {
    ProgressMonitorState* state = FindState(monitor);
    if (state == nullptr) return false;
    state->maximum = maximum;
    UpdateMaximum();
    return true;
}

bool CompoundProgressMonitor::SetMinimum(ProgressMonitor* monitor, Yr::UInt64 minimum) {
    ProgressMonitorState* state = FindState(monitor);
    if (state == nullptr) return false;
    state->minimum = minimum;
    UpdateMinimum();
    return true;
}

bool CompoundProgressMonitor::SetProgress(ProgressMonitor* monitor, Yr::UInt64 progress) {
    ProgressMonitorState* state = FindState(monitor);
    if (state == nullptr) return false;
    state->progress = progress;
    UpdateProgress();
    return true;
}

bool CompoundProgressMonitor::Started(ProgressMonitor* monitor) {
    return SetStatus(monitor, ProgressMonitorState::Status::kStarted);
}

bool CompoundProgressMonitor::Failed(ProgressMonitor* monitor, const Yr::YrException&) {
    return SetStatus(monitor, ProgressMonitorState::Status::kFailed);
}

bool CompoundProgressMonitor::Done(ProgressMonitor* monitor) {
    return SetStatus(monitor, ProgressMonitorState::Status::kDone);
}

bool CompoundProgressMonitor::IsCanceled() const {
    return m_parent != nullptr && m_parent->IsCanceled();
}

void CompoundProgressMonitor::Started() {
    if (m_parent != nullptr) m_parent->Started();
}

void CompoundProgressMonitor::Failed(const Yr::YrException& failure) {
    if (m_parent != nullptr) m_parent->Failed(failure);
}

void CompoundProgressMonitor::Done() {
    if (m_parent != nullptr) m_parent->Done();
}

ProgressMonitorState* CompoundProgressMonitor::FindState(ProgressMonitor* monitor) {
    CheckMember(monitor);
    return m_states.Get(monitor);
}

bool CompoundProgressMonitor::SetStatus(ProgressMonitor* monitor,
                                        ProgressMonitorState::Status status) {
    ProgressMonitorState* state = FindState(monitor);
    if (state == nullptr) return false;
    state->status = status;
    return true;
}

Yr::UInt64 CompoundProgressMonitor::Sum(Yr::UInt64 ProgressMonitorState::*value) const {
    Yr::UInt64 sum = 0;
    for (const auto& entry : m_states) sum += entry.second.*value;
    return sum;
}

// Each Update recomputes over all members rather than adjusting by the
// difference, so a detached member's share drops out at the next report.
void CompoundProgressMonitor::UpdateMaximum() {
    const Yr::UInt64 maximum = Sum(&ProgressMonitorState::maximum);
    if (maximum == m_maximum) return;
    m_maximum = maximum;
    if (m_parent != nullptr) m_parent->SetMaximum(maximum);
}

void CompoundProgressMonitor::UpdateMinimum() {
    const Yr::UInt64 minimum = Sum(&ProgressMonitorState::minimum);
    if (minimum == m_minimum) return;
    m_minimum = minimum;
    if (m_parent != nullptr) m_parent->SetMinimum(minimum);
}

void CompoundProgressMonitor::UpdateProgress() {
    const Yr::UInt64 progress = Sum(&ProgressMonitorState::progress);
    if (progress == m_progress) return;
    m_progress = progress;
    if (m_parent != nullptr) m_parent->SetProgress(progress);
}

}  // namespace Morvelan::Common
