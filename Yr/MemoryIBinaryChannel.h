#pragma once

#include <string>

#include "Yr/IBinaryChannel.h"

namespace Yr {

// Reads a block of memory. With `copy` the channel keeps its own copy;
// without it the caller keeps `data` alive and unchanged while it reads.
class MemoryIBinaryChannel final : public IBinaryChannel {
public:
    MemoryIBinaryChannel(const char* data, UInt32 size, bool copy = false);

    using IBinaryChannel::Read;
    UInt32 Read(char* buffer, UInt32 size, ReadSomeModeSelector) override;
    UInt64 GetAvailable() const override { return m_size - m_position; }
    // Reading after Close reports the end of the stream.
    void Close() override { m_position = m_size; }

private:
    std::string m_copy;
    const char* m_data;
    UInt32 m_size;
    UInt32 m_position = 0;
};

}  // namespace Yr
