#include "Yr/Debug.h"

#include <atomic>
#include <cstdio>

namespace Yr {
namespace {

class StandardErrorSink final : public DebugSink {
public:
    void Write(std::string_view text) override { std::fwrite(text.data(), 1, text.size(), stderr); }
};

// Never destroyed: static destructors may still print after main.
DebugSink& StandardError() {
    static auto* sink = new StandardErrorSink;
    return *sink;
}

// Null stands for standard error, so that no static has to be built first.
std::atomic<DebugSink*> g_sink{nullptr};

}  // namespace

DebugSink* SetDebugSink(DebugSink* sink) {
    DebugSink* previous = g_sink.exchange(sink);
    return previous ? previous : &StandardError();
}

void WriteDebugText(std::string_view text) {
    DebugSink* sink = g_sink.load();
    (sink ? *sink : StandardError()).Write(text);
}

}  // namespace Yr
