#pragma once

#include <cstddef>

namespace Yr {

enum class ExceptionBehaviour { Throw, ReturnNull };

// Asked by the allocators, when an allocation fails, to release what memory
// it can. Answers whether it released any (the allocation is then retried).
class MemoryAllocationFailureHandler {
public:
    virtual ~MemoryAllocationFailureHandler() = default;
    virtual bool ReleaseMemory(std::size_t requestedSize) = 0;
};

// Where raw memory comes from: the C heap unless a test installs another.
class RawMemorySource {
public:
    virtual ~RawMemorySource() = default;
    // Null on failure. `alignment` is a power of two.
    virtual void* Allocate(std::size_t size, std::size_t alignment) = 0;
    virtual void Free(void* pointer) = 0;
};

// The base layer's raw allocation and its registry of failure handlers.
class MemoryManager {
public:
    // Throwing mode raises OutOfMemoryException; zero bytes gives a valid block.
    static void* Allocate(std::size_t size,
                          ExceptionBehaviour behaviour = ExceptionBehaviour::Throw,
                          bool clear = false);
    static void* AllocateAligned(std::size_t size, std::size_t alignment,
                                 ExceptionBehaviour behaviour = ExceptionBehaviour::Throw);
    // Ignores null.
    static void Free(void* pointer);

    static void RegisterFailureHandler(MemoryAllocationFailureHandler& handler);
    static void UnregisterFailureHandler(MemoryAllocationFailureHandler& handler);
    // Copies up to `capacity` handlers, in registration order, into `target`
    // and returns how many there are in all. A copy, so handlers may
    // unregister themselves while it is walked; into the caller's array, so
    // that a walk on behalf of a failed allocation needs no memory itself.
    static std::size_t CopyFailureHandlers(MemoryAllocationFailureHandler** target,
                                           std::size_t capacity);

    // Installs a source and returns the previous one; null restores the heap.
    // Blocks taken before the switch are freed through the new source, so a
    // test source wraps the previous one and passes frees on to it.
    static RawMemorySource* SetRawMemorySource(RawMemorySource* source);
};

}  // namespace Yr
