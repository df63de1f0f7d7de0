#pragma once

#include <string>
#include <string_view>

#include "Yr/Debug.h"

namespace Morvelan::Testing {

// Collects the debug output of its lifetime, then puts the previous sink back.
class CapturedDebugOutput final : public Yr::DebugSink {
public:
    CapturedDebugOutput() : m_previous(Yr::SetDebugSink(this)) {}
    ~CapturedDebugOutput() override { Yr::SetDebugSink(m_previous); }
    void Write(std::string_view text) override { m_text.append(text); }
    const std::string& GetText() const { return m_text; }

private:
    Yr::DebugSink* m_previous;
    std::string m_text;
};

}  // namespace Morvelan::Testing
