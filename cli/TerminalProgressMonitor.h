#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

#include "Common/AbstractProgressMonitor.h"

namespace Morvelan::Tool {

// Draws progress as one line on a terminal: bytes done, the total when it
// is known, a bar, the rate and the time left. The line is redrawn in place
// at most five times a second, so a fast job spends nothing on it. Cancel
// requests come from a flag the caller sets (a signal handler).
class TerminalProgressMonitor final : public Common::AbstractProgressMonitor {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    static constexpr std::chrono::milliseconds kRedrawInterval{200};

    // Draws on `stream` only when `enabled`; `canceled` must outlive the monitor.
    TerminalProgressMonitor(std::FILE* stream, bool enabled, const std::atomic<bool>& canceled,
                            Clock clock = std::chrono::steady_clock::now);

    bool IsCanceled() const override;
    void SetProgress(Yr::UInt64 progress) override;
    void Started() override;
    // Leaves the last state on its line and moves below it.
    void Done() override;
    // Takes the bar away, so that the failure is reported on a clean line.
    void Failed(const Yr::YrException& failure) override;
    // Takes the bar away before other text goes to the terminal; the next
    // redraw puts it back.
    void Clear();

    // The line for `progress` of `maximum` bytes (0: unknown) after `elapsed`.
    static std::string FormatLine(Yr::UInt64 progress, Yr::UInt64 maximum,
                                  std::chrono::steady_clock::duration elapsed);

private:
    void Draw(std::chrono::steady_clock::time_point now);

    std::FILE* m_stream;
    bool m_enabled;
    const std::atomic<bool>& m_canceled;
    Clock m_clock;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_lastDraw;
    bool m_drawn = false;  // a bar is on the line now
};

}  // namespace Morvelan::Tool
