#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannel.h"

namespace Morvelan::Testing {

// Serves its bytes, at most `chunk` per Read, but the nth Read (from 1; 0 for
// never) throws IOException as a dropped connection would; later reads go on
// where the stream stood. GetAvailable is exact; Close calls are counted.
class FailingIBinaryChannel final : public Yr::IBinaryChannel {
public:
    FailingIBinaryChannel(std::string data, int failingRead, Yr::UInt32 chunk = 1)
        : m_data(std::move(data)), m_failingRead(failingRead), m_chunk(chunk) {}

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        if (++m_reads == m_failingRead)
            throw Yr::IOException("Connection reset.", "tests/FailingIBinaryChannel", __LINE__,
                                  Yr::kIOErrorCode);
        const auto count = m_data.copy(buffer, std::min<std::size_t>(size, m_chunk), m_position);
        m_position += count;
        return static_cast<Yr::UInt32>(count);
    }
    Yr::UInt64 GetAvailable() const override { return m_data.size() - m_position; }
    void Close() override { ++m_closes; }
    int GetCloseCount() const { return m_closes; }

private:
    std::string m_data;
    std::size_t m_position = 0;
    int m_failingRead;
    Yr::UInt32 m_chunk;
    int m_reads = 0;
    int m_closes = 0;
};

}  // namespace Morvelan::Testing
