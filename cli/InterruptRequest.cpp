#include "cli/InterruptRequest.h"

namespace Morvelan::Tool {
namespace {

// Written from the signal handler: only a lock-free atomic may be.
std::atomic<bool> g_requested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void Request(int) {
    g_requested.store(true, std::memory_order_relaxed);
}

void Install(int signal, struct sigaction& previous) {
    // A signal ignored on purpose (nohup, a background job) stays ignored.
    sigaction(signal, nullptr, &previous);
    if (previous.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = Request;
    sigemptyset(&action.sa_mask);
    // The handler runs once; the next signal gets the default action.
    action.sa_flags = SA_RESETHAND;
    sigaction(signal, &action, &previous);
}

}  // namespace

InterruptRequest::InterruptRequest() {
    g_requested.store(false);
    Install(SIGINT, m_previousInterrupt);
    Install(SIGTERM, m_previousTerminate);
}

InterruptRequest::~InterruptRequest() {
    sigaction(SIGINT, &m_previousInterrupt, nullptr);
    sigaction(SIGTERM, &m_previousTerminate, nullptr);
}

const std::atomic<bool>& InterruptRequest::GetFlag() const {
    return g_requested;
}

}  // namespace Morvelan::Tool
