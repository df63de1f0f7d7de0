#include "Yr/Debug.h"

#include <atomic>
#include <cstdio>

namespace Yr {
namespace {

class StandardErrorSink final : public DebugSink {
public:
    void Write(std::string_view text) override { std::fwrite(text.data(), 1, text.size(), stderr); }
};

StandardErrorSink g_standardError;
std::atomic<DebugSink*> g_sink{&g_standardError};

}  // namespace

DebugSink* SetDebugSink(DebugSink* sink) {
    return g_sink.exchange(sink ? sink : &g_standardError);
}

void WriteDebugText(std::string_view text) {
    g_sink.load()->Write(text);
}

}  // namespace Yr
