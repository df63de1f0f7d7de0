#pragma once

#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

// Counts the bytes written and tells the derived class, once, when a write
// is about to take the count past the threshold, before that write reaches
// GetOutputChannel(). The derived class may then switch the output channel.
class ThresholdingOBinaryChannel : public Yr::OBinaryChannel {
public:
    void Write(const char* buffer, Yr::UInt32 size) override;
    void Flush() override;
    void Close() override;
    ~ThresholdingOBinaryChannel() override;

    Yr::UInt64 GetThreshold() const { return m_threshold; }
    Yr::UInt64 GetCount() const { return m_count; }
    bool IsThresholdExceeded() const { return m_thresholdExceeded; }

protected:
    // A threshold of 0 throws IllegalArgumentException.
    explicit ThresholdingOBinaryChannel(Yr::UInt64 threshold);
    ThresholdingOBinaryChannel(const ThresholdingOBinaryChannel& other);
    ThresholdingOBinaryChannel& operator=(const ThresholdingOBinaryChannel& other);

    // The channel that currently receives the data.
    virtual Yr::OBinaryChannel& GetOutputChannel() = 0;
    virtual const Yr::OBinaryChannel& GetOutputChannel() const = 0;
    // Called once, when the count is about to pass the threshold.
    virtual void ThresholdReached() = 0;

    // Calls ThresholdReached() if `count` more bytes would pass the threshold.
    void CheckThreshold(Yr::UInt64 count);
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    bool IsClosed() const { return m_closed; }

private:
    bool m_thresholdExceeded = false;
    Yr::UInt64 m_threshold;
    Yr::UInt64 m_count = 0;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
