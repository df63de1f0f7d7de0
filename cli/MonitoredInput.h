#pragma once

#include <memory>
#include <string>

#include "Common/ProgressMonitor.h"
#include "Yr/BufferedIBinaryChannel.h"

namespace Morvelan::Tool {

// The input named on the command line ("-": standard input), buffered for
// readers that take a few bytes at a time. With a monitor, the bytes read
// so far are reported to it and its IsCanceled is asked before each read.
class MonitoredInput final {
public:
    explicit MonitoredInput(const std::string& argument,
                            Common::ProgressMonitor* monitor = nullptr);

    // The input's size when it is a file, taken before anything is read;
    // 0 for a pipe.
    Yr::UInt64 GetSizeIfKnown() const { return m_size; }
    Yr::IBinaryChannel& GetChannel() { return m_buffered; }

private:
    std::unique_ptr<Yr::IBinaryChannel> m_input;
    Yr::UInt64 m_size;
    // Between the input and the buffer when there is a monitor.
    std::unique_ptr<Yr::IBinaryChannel> m_cancelable;
    std::unique_ptr<Yr::IBinaryChannel> m_monitored;
    Yr::BufferedIBinaryChannel m_buffered;
};

}  // namespace Morvelan::Tool
