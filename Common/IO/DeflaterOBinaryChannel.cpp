#include "Common/IO/DeflaterOBinaryChannel.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/DeflaterOBinaryChannel";
constexpr int kRawWindowBits = -15;
constexpr int kMemoryLevel = 8;

Yr::MemoryBlock Allocate(std::size_t size, const char* message, Yr::UInt32 line) {
    Yr::MemoryBlock block(
        static_cast<char*>(Yr::MemoryManager::Allocate(size, Yr::ExceptionBehaviour::ReturnNull)));
    if (!block)
        throw Yr::OutOfMemoryException(message, kSourceUnit, line, Yr::kOutOfMemoryErrorCode);
    return block;
}

}  // namespace

DeflaterOBinaryChannel::DeflaterOBinaryChannel(Yr::OBinaryChannel& channel, int level,
                                               Yr::UInt32 bufferSize, bool nowrap)
    : FilterOBinaryChannel(channel) {
    Initialize(level, bufferSize, nowrap);
}

DeflaterOBinaryChannel::DeflaterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& channel,
                                               int level, Yr::UInt32 bufferSize, bool nowrap)
    : FilterOBinaryChannel(channel, kSourceUnit, __LINE__) {
    Initialize(level, bufferSize, nowrap);
}

DeflaterOBinaryChannel::~DeflaterOBinaryChannel() = default;

void DeflaterOBinaryChannel::StreamDeleter::operator()(z_stream_s* stream) const {
    deflateEnd(stream);
    Yr::MemoryManager::Free(stream);
}

void DeflaterOBinaryChannel::Initialize(int level, Yr::UInt32 bufferSize, bool nowrap) {
    m_capacity = Yr::CheckBufferSize(bufferSize, kSourceUnit, __LINE__);
    m_input = Allocate(bufferSize, "Failed to allocate input buffer for deflater output channel.",
                       __LINE__);
    m_output = Allocate(bufferSize, "Failed to allocate output buffer for deflater output channel.",
                        __LINE__);
    Yr::MemoryBlock memory = Allocate(sizeof(z_stream), "Failed to allocate deflater.", __LINE__);
    auto* stream = new (memory.get()) z_stream{};
    const int result = nowrap ? deflateInit2(stream, level, Z_DEFLATED, kRawWindowBits,
                                             kMemoryLevel, Z_DEFAULT_STRATEGY)
                              : deflateInit(stream, level);
    if (result != Z_OK)
        throw Yr::IOException("Failed to initialize deflater.", kSourceUnit, __LINE__,
                              Yr::kIOErrorCode);
    // From here on the stream is released with deflateEnd.
    m_stream.reset(stream);
    static_cast<void>(memory.release());
}

void DeflaterOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    EnsureOpened(kSourceUnit, __LINE__);
    if (size == 0) return;
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    while (size > 0) {
        const Yr::UInt32 count = std::min(size, m_capacity - m_fill);
        std::memcpy(m_input.get() + m_fill, buffer, count);
        m_fill += count;
        buffer += count;
        size -= count;
        if (m_fill == m_capacity) FlushBuffer(Z_NO_FLUSH);
    }
}

void DeflaterOBinaryChannel::Flush() {
    EnsureOpened(kSourceUnit, __LINE__);
    FlushBuffer(Z_SYNC_FLUSH);
    m_inner.Flush();
}

void DeflaterOBinaryChannel::Finish() {
    EnsureOpened(kSourceUnit, __LINE__);
    FlushBuffer(Z_FINISH);
}

void DeflaterOBinaryChannel::Close() {
    if (m_closed) return;
    FlushBuffer(Z_FINISH);
    m_inner.Flush();
    m_inner.Close();
    m_closed = true;
}

void DeflaterOBinaryChannel::FlushBuffer(int flushMode) {
    z_stream& stream = *m_stream;
    stream.next_in = reinterpret_cast<Bytef*>(m_input.get());
    stream.avail_in = m_fill;
    for (bool more = true; more;) {
        stream.next_out = reinterpret_cast<Bytef*>(m_output.get());
        stream.avail_out = m_capacity;
        const int result = deflate(&stream, flushMode);
        // No progress with no input left: a flush with nothing pending.
        if (result == Z_BUF_ERROR && stream.avail_in == 0) break;
        if (result != Z_OK && result != Z_STREAM_END)
            throw Yr::IOException(Yr::UniString::Printf("Deflate failed:%s", zError(result)),
                                  kSourceUnit, __LINE__, Yr::kIOErrorCode);
        WriteProduced();
        // A full output buffer may leave output pending inside zlib.
        more = flushMode == Z_FINISH ? result != Z_STREAM_END
                                     : stream.avail_in > 0 || stream.avail_out == 0;
    }
    m_fill = 0;
}

void DeflaterOBinaryChannel::WriteProduced() {
    const Yr::UInt32 produced = m_capacity - m_stream->avail_out;
    if (produced > 0) m_inner.Write(m_output.get(), produced);
}

void DeflaterOBinaryChannel::EnsureOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Deflater output channel closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
