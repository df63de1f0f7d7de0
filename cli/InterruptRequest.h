#pragma once

#include <atomic>
#include <csignal>

namespace Morvelan::Tool {

// Turns Ctrl-C (SIGINT) and SIGTERM into a request that the running job
// polls through its progress monitor, so that it stops where it can clean
// up. A second signal ends the process at once, as it would have anyway.
// One at a time; the handlers that were there come back on destruction.
class InterruptRequest final {
public:
    InterruptRequest();
    ~InterruptRequest();
    InterruptRequest(const InterruptRequest&) = delete;
    InterruptRequest& operator=(const InterruptRequest&) = delete;

    const std::atomic<bool>& GetFlag() const;

private:
    struct sigaction m_previousInterrupt {};
    struct sigaction m_previousTerminate {};
};

}  // namespace Morvelan::Tool
