#pragma once

#include <string>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Testing {

// The nth Write (from 1) throws IOException as a full disk would; later ones
// succeed again. Keeps the bytes of the writes that succeeded.
class FailingOBinaryChannel final : public Yr::OBinaryChannel {
public:
    explicit FailingOBinaryChannel(int failingWrite) : m_failingWrite(failingWrite) {}

    void Write(const char* buffer, Yr::UInt32 size) override {
        if (++m_writes == m_failingWrite)
            throw Yr::IOException("Disk full.", "tests/FailingOBinaryChannel", __LINE__,
                                  Yr::kIOErrorCode);
        m_bytes.append(buffer, size);
    }
    void Flush() override {}
    void Close() override {}

    const std::string& GetBytes() const { return m_bytes; }

private:
    std::string m_bytes;
    int m_failingWrite;
    int m_writes = 0;
};

}  // namespace Morvelan::Testing
