#include "Common/IO/Inflater.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "Common/IO/InflaterException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/Inflater";
constexpr int kWrappedWindowBits = 15;

// `format` takes zlib's code and its text.
[[noreturn]] void ThrowZlibFailure(const char* format, int code, Yr::UInt32 line) {
    throw InflaterException(Yr::UniString::Printf(format, code, zError(code)), kSourceUnit, line,
                            Yr::kIOErrorCode);
}

void CheckBuffer(const char* buffer, std::size_t size, const char* name, Yr::UInt32 line) {
    const char* fault = buffer == nullptr                               ? "null"
                        : size == 0                                     ? "empty"
                        : size > std::numeric_limits<Yr::UInt32>::max() ? "too large"
                                                                        : nullptr;
    if (fault)
        throw Yr::IllegalArgumentException(
            Yr::UniString::Printf("Invalid %s buffer: buffer is %s.", name, fault), kSourceUnit,
            line, Yr::kIllegalArgumentErrorCode);
}

// A vector's bytes for the pointer overloads: never null, so that an empty
// vector is reported as empty rather than as null.
const char* BytesOf(const std::vector<char>& buffer) {
    return buffer.empty() ? "" : buffer.data();
}

Bytef* AsBytes(const char* data) {
    return reinterpret_cast<Bytef*>(const_cast<char*>(data));
}

}  // namespace

Inflater::Inflater(bool nowrap) {
    void* memory =
        Yr::MemoryManager::Allocate(sizeof(z_stream), Yr::ExceptionBehaviour::ReturnNull);
    if (memory == nullptr)
        throw Yr::OutOfMemoryException("Failed to allocate inflater.", kSourceUnit, __LINE__,
                                       Yr::kOutOfMemoryErrorCode);
    auto* stream = new (memory) z_stream{};
    const int result = inflateInit2(stream, nowrap ? -kWrappedWindowBits : kWrappedWindowBits);
    if (result != Z_OK) {
        Yr::MemoryManager::Free(memory);
        ThrowZlibFailure("Failed to create inflater. (Error code: %d, error message: %s)", result,
                         __LINE__);
    }
    m_stream.reset(stream);
}

Inflater::~Inflater() = default;

void Inflater::StreamDeleter::operator()(z_stream_s* stream) const {
    inflateEnd(stream);
    Yr::MemoryManager::Free(stream);
}

void Inflater::SetInput(const char* data, Yr::UInt32 size) {
    CheckBuffer(data, size, "input", __LINE__);
    ReserveInput(size);
    std::memcpy(m_input.get(), data, size);
    m_size = size;
    m_offset = 0;
}

void Inflater::SetInput(const std::vector<char>& data) {
    CheckBuffer(BytesOf(data), data.size(), "input", __LINE__);
    SetInput(data.data(), static_cast<Yr::UInt32>(data.size()));
}

Yr::UInt32 Inflater::Inflate(char* out, Yr::UInt32 size) {
    CheckBuffer(out, size, "inflated", __LINE__);
    z_stream& stream = *m_stream;
    stream.next_in = AsBytes(m_input.get()) + m_offset;
    stream.avail_in = m_size - m_offset;
    stream.next_out = AsBytes(out);
    stream.avail_out = size;
    const int result = inflate(&stream, Z_PARTIAL_FLUSH);
    switch (result) {
        case Z_BUF_ERROR:  // no progress was possible; nothing was consumed
            return 0;
        case Z_NEED_DICT:
            m_offset = m_size - stream.avail_in;
            m_needsDictionary = true;
            return 0;
        case Z_STREAM_END:
            m_finished = true;
            [[fallthrough]];
        case Z_OK:
            m_offset = m_size - stream.avail_in;
            return size - stream.avail_out;
        default:
            ThrowZlibFailure("Failed to inflate input. (Error code: %d, error message: %s)", result,
                             __LINE__);
    }
}

Yr::UInt32 Inflater::Inflate(std::vector<char>& out) {
    CheckBuffer(BytesOf(out), out.size(), "inflated", __LINE__);
    return Inflate(out.data(), static_cast<Yr::UInt32>(out.size()));
}

void Inflater::SetDictionary(const char* data, Yr::UInt32 size) {
    CheckBuffer(data, size, "dictionary", __LINE__);
    const int result = inflateSetDictionary(m_stream.get(), AsBytes(data), size);
    if (result != Z_OK)
        ThrowZlibFailure("Failed to set dictionary. (Error code: %d, error message: %s)", result,
                         __LINE__);
    m_needsDictionary = false;
}

void Inflater::SetDictionary(const std::vector<char>& data) {
    CheckBuffer(BytesOf(data), data.size(), "dictionary", __LINE__);
    SetDictionary(data.data(), static_cast<Yr::UInt32>(data.size()));
}

void Inflater::Reset() {
    const int result = inflateReset(m_stream.get());
    if (result != Z_OK)
        ThrowZlibFailure("Failed to reset inflater. (Error code: %d, error message: %s)", result,
                         __LINE__);
    m_needsDictionary = false;
    m_finished = false;
    m_size = 0;
    m_offset = 0;
}

Yr::UInt32 Inflater::GetRemainingInput(char* out, Yr::UInt32 size) const {
    CheckBuffer(out, size, "remaining", __LINE__);
    const Yr::UInt32 remaining = GetRemainingCount();
    if (remaining > 0) std::memcpy(out, m_input.get() + m_offset, std::min(size, remaining));
    return remaining;
}

Yr::UInt32 Inflater::GetRemainingInput(std::vector<char>& out) const {
    CheckBuffer(BytesOf(out), out.size(), "remaining", __LINE__);
    return GetRemainingInput(out.data(), static_cast<Yr::UInt32>(out.size()));
}

Yr::UInt64 Inflater::GetTotalInputCount() const {
    return m_stream->total_in;
}

Yr::UInt64 Inflater::GetTotalOutputCount() const {
    return m_stream->total_out;
}

Yr::UInt32 Inflater::GetAddler32() const {
    return static_cast<Yr::UInt32>(m_stream->adler);
}

void Inflater::ReserveInput(Yr::UInt32 size) {
    if (size <= m_capacity) return;
    Yr::MemoryBlock block(
        static_cast<char*>(Yr::MemoryManager::Allocate(size, Yr::ExceptionBehaviour::ReturnNull)));
    if (!block)
        throw Yr::OutOfMemoryException("Failed to allocate input buffer for inflater.", kSourceUnit,
                                       __LINE__, Yr::kOutOfMemoryErrorCode);
    m_input = std::move(block);
    m_capacity = size;
}

}  // namespace Morvelan::Common::IO
