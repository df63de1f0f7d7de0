#pragma once

#include <string>
#include <vector>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Testing {

// Keeps what is written and how: the size of each Write, the Flush and Close
// calls. While failing (SetFailing) every Write throws IOException and keeps
// nothing, as a full disk or a broken pipe would; SetFailing(false) recovers.
class RecordingOBinaryChannel final : public Yr::OBinaryChannel {
public:
    void Write(const char* buffer, Yr::UInt32 size) override {
        if (m_failing)
            throw Yr::IOException("Write failed.", "tests/RecordingOBinaryChannel", __LINE__,
                                  Yr::kIOErrorCode);
        m_bytes.append(buffer, size);
        m_writeSizes.push_back(size);
    }
    void Flush() override { ++m_flushes; }
    void Close() override { ++m_closes; }

    void SetFailing(bool failing = true) { m_failing = failing; }
    const std::string& GetBytes() const { return m_bytes; }
    const std::vector<Yr::UInt32>& GetWriteSizes() const { return m_writeSizes; }
    int GetFlushCount() const { return m_flushes; }
    int GetCloseCount() const { return m_closes; }

private:
    std::string m_bytes;
    std::vector<Yr::UInt32> m_writeSizes;
    int m_flushes = 0;
    int m_closes = 0;
    bool m_failing = false;
};

}  // namespace Morvelan::Testing
