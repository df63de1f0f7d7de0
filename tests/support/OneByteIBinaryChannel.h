#pragma once

#include <string>
#include <utility>

#include "Yr/IBinaryChannel.h"

namespace Morvelan::Testing {

// Hands out its bytes one per Read, as a slow pipe or socket may: code that
// assumes one Read fills its buffer fails on it. GetAvailable reports 1 while
// bytes remain, as such a pipe would.
class OneByteIBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit OneByteIBinaryChannel(std::string data) : m_data(std::move(data)) {}

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        if (size == 0 || m_position == m_data.size()) return 0;
        buffer[0] = m_data[m_position++];
        return 1;
    }
    Yr::UInt64 GetAvailable() const override { return m_position < m_data.size() ? 1 : 0; }
    void Close() override { m_closed = true; }

    bool IsClosed() const { return m_closed; }

private:
    std::string m_data;
    std::size_t m_position = 0;
    bool m_closed = false;
};

}  // namespace Morvelan::Testing
