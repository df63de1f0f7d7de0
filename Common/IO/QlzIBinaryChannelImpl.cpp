#include "Common/IO/QlzIBinaryChannelImpl.h"

#include <algorithm>
#include <cstring>

#include "Common/IO/QlzOBinaryChannel.h"
#include "Common/IO/QlzStreamHeader.h"
#include "Common/IO/QuickLZCompressor.h"
#include "Common/IO/QuickLZDecompressor.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/QlzIBinaryChannel";

[[noreturn]] void ThrowPacketError(const char* message, Yr::UInt32 line) {
    throw Yr::IOException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

}  // namespace

QlzIBinaryChannelImpl::QlzIBinaryChannelImpl(Yr::IBinaryChannel& inner)
    : FilterIBinaryChannel(inner) {}

QlzIBinaryChannelImpl::QlzIBinaryChannelImpl(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__) {}

QlzIBinaryChannelImpl::~QlzIBinaryChannelImpl() = default;

void QlzIBinaryChannelImpl::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("QuickLZ binary input channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

Yr::UInt32 QlzIBinaryChannelImpl::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    CheckOpened(kSourceUnit, __LINE__);
    if (!m_headerRead) ReadHeader();
    // Packets never decompress to nothing, but loop all the same, so that 0
    // only ever means the end.
    while (m_position == m_fill) {
        const Yr::UInt32 length = ReadPacket();
        if (length == 0) return 0;
        // A packet the caller's buffer holds whole goes straight there, so
        // reading in large pieces copies no decompressed byte. The capacity
        // stays the packet size, so a block claiming more fails as below.
        if (FitsWhole(length, size))
            if (const Yr::UInt32 count = m_decompressor->Decompress(
                    m_compressed.get(), length, buffer, std::min(size, m_packetSize)))
                return count;
        if (!m_decompressed) m_decompressed = Yr::AllocateMemoryBlock(m_packetSize);
        m_fill = m_decompressor->Decompress(m_compressed.get(), length, m_decompressed.get(),
                                            m_packetSize);
    }
    const Yr::UInt32 count = std::min(size, m_fill - m_position);
    std::memcpy(buffer, m_decompressed.get() + m_position, count);
    m_position += count;
    return count;
}

Yr::UInt64 QlzIBinaryChannelImpl::GetAvailable() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_fill - m_position;
}

void QlzIBinaryChannelImpl::Close() {
    if (m_closed) return;
    m_closed = true;
    m_inner.Close();
}

void QlzIBinaryChannelImpl::ReadHeader() {
    const QlzStreamHeader header =
        QlzStreamHeader::Read(m_inner, QlzOBinaryChannel::MaximumPacketSize);
    m_packetSize = header.packetSize;
    // An incompressible packet comes out a few bytes longer than itself.
    m_compressed = Yr::AllocateMemoryBlock(m_packetSize + QuickLZCompressor::kMaxExpansion);
    m_decompressor = std::make_unique<QuickLZDecompressor>();
    m_headerRead = true;
}

bool QlzIBinaryChannelImpl::FitsWhole(Yr::UInt32 length, Yr::UInt32 size) const {
    const char* block = m_compressed.get();
    return length >= QuickLZDecompressor::GetHeaderSize(block[0]) &&
           QuickLZDecompressor::GetDecompressedSize(block) <= size;
}

Yr::UInt32 QlzIBinaryChannelImpl::ReadPacket() {
    char lengthBytes[4];
    const Yr::UInt32 got = Yr::IBinaryChannelUtilities::ReadFully(m_inner, lengthBytes, 4);
    if (got == 0) return 0;
    if (got < 4) ThrowPacketError("Failed to read packet.", __LINE__);
    Yr::UInt32 length = 0;
    for (int i = 3; i >= 0; --i)
        length = (length << 8) | static_cast<unsigned char>(lengthBytes[i]);
    if (length == 0 || length > m_packetSize + QuickLZCompressor::kMaxExpansion)
        ThrowPacketError("Failed to read packet: invalid packet size.", __LINE__);
    if (Yr::IBinaryChannelUtilities::ReadFully(m_inner, m_compressed.get(), length) < length)
        ThrowPacketError("Failed to read packet.", __LINE__);
    m_position = 0;
    m_fill = 0;
    return length;
}

}  // namespace Morvelan::Common::IO
