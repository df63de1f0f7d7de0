#include "Common/IO/JavaDataInputProtocolUtils.h"

#include "Common/IO/BigEndian.h"
#include "Common/IO/JavaDataReading.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/JavaDataInputProtocolUtils";
// The line peers and logs have always seen for a short stream.
constexpr Yr::UInt32 kEndOfInputLine = 36;
// Strings up to this many bytes are read without touching the heap.
constexpr Yr::UInt32 kStackStringBytes = 512;

// Room for a string body and its NUL: on the stack when short, one block
// from the memory manager otherwise.
class BodyBuffer {
public:
    explicit BodyBuffer(Yr::UInt32 count) {
        if (count > kStackStringBytes) {
            m_heap = Yr::AllocateMemoryBlock(count + 1u);
            m_data = m_heap.get();
        }
    }
    BodyBuffer(const BodyBuffer&) = delete;
    BodyBuffer& operator=(const BodyBuffer&) = delete;

    char* Get() { return m_data; }

private:
    char m_stack[kStackStringBytes + 1];
    Yr::MemoryBlock m_heap;
    char* m_data = m_stack;
};

Yr::YrErrCode ReadUTFOrStatus(Yr::IChannel& channel, Yr::UniString& result) {
    char lengthBytes[2];
    if (const Yr::YrErrCode status = JavaDataReading::ReadExactly(channel, lengthBytes, 2))
        return status;
    const auto count = BigEndian::Load<Yr::UInt16>(lengthBytes);
    if (count == 0) {
        result.Clear();
        return 0;
    }
    BodyBuffer buffer(count);
    const Yr::YrErrCode status = JavaDataReading::ReadExactly(channel, buffer.Get(), count);
    buffer.Get()[count] = '\0';
    if (status == 0) result.AssignUtf8(buffer.Get(), count);
    return status;
}

}  // namespace

namespace JavaDataReading {

Yr::YrErrCode ReadExactly(Yr::IChannel& channel, char* buffer, Yr::UInt32 size) {
    Yr::UInt32 delivered = 0;
    const Yr::YrErrCode status = channel.Read(buffer, size, delivered);
    if (status != 0 && delivered > 0) return Yr::IChannel::ConvertObjectReadError(status);
    return status;
}

void ReadExactly(Yr::IBinaryChannel& channel, char* buffer, Yr::UInt32 size, const char* sourceUnit,
                 Yr::UInt32 line) {
    if (Yr::IBinaryChannelUtilities::ReadFully(channel, buffer, size) < size)
        throw Yr::EndOfInputException("End of input reached.", sourceUnit, line,
                                      Yr::kEndOfInputErrorCode);
}

}  // namespace JavaDataReading

Yr::YrErrCode ReadUTF(Yr::IChannel& channel, Yr::UniString& result) {
    try {
        return ReadUTFOrStatus(channel, result);
    } catch (const Yr::YrException&) {
        return Yr::kReadErrorCode;
    }
}

void ReadUTF(Yr::IBinaryChannel& channel, Yr::UniString& result) {
    char lengthBytes[2];
    JavaDataReading::ReadExactly(channel, lengthBytes, 2, kSourceUnit, kEndOfInputLine);
    const auto count = BigEndian::Load<Yr::UInt16>(lengthBytes);
    if (count == 0) {
        result.Clear();
        return;
    }
    BodyBuffer buffer(count);
    JavaDataReading::ReadExactly(channel, buffer.Get(), count, kSourceUnit, kEndOfInputLine);
    buffer.Get()[count] = '\0';
    result.AssignUtf8(buffer.Get(), count);
}

void ReadUTF(Yr::IChannelX& channel, Yr::UniString& result) {
    ReadUTF(channel.GetBinaryChannel(), result);
}

Yr::UniString ReadUTF(Yr::IChannelX& channel) {
    Yr::UniString result;
    ReadUTF(channel.GetBinaryChannel(), result);
    return result;
}

}  // namespace Morvelan::Common::IO
