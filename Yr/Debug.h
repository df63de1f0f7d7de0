#pragma once

#include <string_view>

#include "Yr/UniString.h"

namespace Yr {

// Where debug output goes: standard error unless a test installed another.
class DebugSink {
public:
    virtual ~DebugSink() = default;
    virtual void Write(std::string_view text) = 0;
};

// Installs `sink` (null restores standard error) and returns the previous one.
DebugSink* SetDebugSink(DebugSink* sink);
void WriteDebugText(std::string_view text);

// Formats as UniString::Printf does and writes the text to the debug sink.
template <class... Args>
void DBPrintf(const char* format, const Args&... args) {
    WriteDebugText(UniString::Printf(format, args...).ToUtf8());
}

}  // namespace Yr
