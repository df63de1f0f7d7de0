#pragma once

#include "Common/ProgressMonitor.h"

namespace Morvelan::Common {

// Shields an operation from the monitor it reports to. Every call is passed
// on to the wrapped monitor (if any) and guarded: an OutOfMemoryException is
// swallowed without a word, since printing needs memory; any other
// YrException is printed with DebugPrintEx and swallowed. Getters then answer
// 0 or false. Exceptions from outside the YrException family pass through.
class ProgressMonitorWrapper : public ProgressMonitor {
public:
    // `monitor` may be null (every call then does nothing); it is not owned
    // and must outlive the wrapper.
    explicit ProgressMonitorWrapper(ProgressMonitor* monitor);
    // Copies share the wrapped monitor and the accepted range.
    ProgressMonitorWrapper(const ProgressMonitorWrapper& other);
    ProgressMonitorWrapper(ProgressMonitorWrapper&& other) noexcept;
    ProgressMonitorWrapper& operator=(const ProgressMonitorWrapper& other);
    ProgressMonitorWrapper& operator=(ProgressMonitorWrapper&& other) noexcept;
    ~ProgressMonitorWrapper() override;

    // While `maximum` is not 0, progress values outside [minimum, maximum]
    // are dropped; 0 (the start value) passes everything.
    void SetAcceptedRange(Yr::UInt64 minimum, Yr::UInt64 maximum);

    void SetMaximum(Yr::UInt64 maximum) override;
    Yr::UInt64 GetMaximum() const override;
    void SetMinimum(Yr::UInt64 minimum) override;
    Yr::UInt64 GetMinimum() const override;
    bool IsCanceled() const override;
    void SetProgress(Yr::UInt64 progress) override;
    void Started() override;
    void Failed(const Yr::YrException& failure) override;
    void Done() override;

private:
    ProgressMonitor* m_monitor;
    Yr::UInt64 m_acceptedMaximum = 0;
    Yr::UInt64 m_acceptedMinimum = 0;
};

}  // namespace Morvelan::Common
