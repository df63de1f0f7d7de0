#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>

#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileHandler.h"
#include "InputOutput/Location.h"
#include "Yr/ErrorCodes.h"

namespace Morvelan::Testing {

// A block file in memory that counts its calls and can be made to fail or
// stall a read. Bytes move a 32-bit word at a time with relaxed atomics, so a
// test thread may change a pinned block while another thread flushes it
// without the race detector taking the test's own traffic for the cache's.
// Offsets and sizes must be multiples of 4.
class MemoryBlockFileHandler final : public Common::Containers::BlockFileHandler {
public:
    explicit MemoryBlockFileHandler(Yr::UInt64 capacity)
        : BlockFileHandler(::IO::Location::Parse("/memory/blocks")),
          m_words(new Yr::UInt32[capacity / 4]()),
          m_capacity(capacity) {}

    Yr::UInt64 GetSize() override { return m_size.load(); }
    void SetSize(Yr::UInt64 size) override { m_size = std::min(size, m_capacity); }

    void Write(Yr::UInt64 offset, const void* buffer, Yr::UInt32 size) override {
        ++writes;
        if (failWrites) Fail("Failed to write block to block file. Disk full.");
        Copy(static_cast<const Yr::UInt32*>(buffer), m_words.get() + offset / 4, size);
        Yr::UInt64 end = offset + size;
        Yr::UInt64 known = m_size.load();
        while (known < end && !m_size.compare_exchange_weak(known, end)) {
        }
    }

    void Read(Yr::UInt64 offset, void* buffer, Yr::UInt32 size) override {
        ++reads;
        if (beforeRead) beforeRead(offset);
        if (offset + size > m_size.load()) Fail("Failed read block from block file. End of file.");
        Copy(m_words.get() + offset / 4, static_cast<Yr::UInt32*>(buffer), size);
    }

    void Flush() override { ++flushes; }
    bool IsClosed() override { return false; }
    void Close() override {}

    // The word at a byte offset, as the file holds it now.
    Yr::UInt32 WordAt(Yr::UInt64 offset) const {
        return std::atomic_ref<Yr::UInt32>(m_words[offset / 4]).load(std::memory_order_relaxed);
    }
    void SetWordAt(Yr::UInt64 offset, Yr::UInt32 value) {
        std::atomic_ref<Yr::UInt32>(m_words[offset / 4]).store(value, std::memory_order_relaxed);
    }

    std::atomic<int> reads{0};
    std::atomic<int> writes{0};
    std::atomic<int> flushes{0};
    std::atomic<bool> failWrites{false};
    // Called at the start of every read, outside the cache's lock; may stall
    // or throw. Set it before other threads use the handler.
    std::function<void(Yr::UInt64 offset)> beforeRead;

private:
    [[noreturn]] static void Fail(const char* message) {
        throw Common::Containers::BlockFileException(message, "tests/MemoryBlockFileHandler",
                                                     __LINE__, Yr::kIOErrorCode);
    }

    static void Copy(const Yr::UInt32* from, Yr::UInt32* to, Yr::UInt32 size) {
        for (Yr::UInt32 i = 0; i < size / 4; ++i)
            std::atomic_ref<Yr::UInt32>(to[i]).store(
                std::atomic_ref<Yr::UInt32>(const_cast<Yr::UInt32&>(from[i])).load(std::memory_order_relaxed),
                std::memory_order_relaxed);
    }

    std::unique_ptr<Yr::UInt32[]> m_words;
    const Yr::UInt64 m_capacity;
    std::atomic<Yr::UInt64> m_size{0};
};

}  // namespace Morvelan::Testing
