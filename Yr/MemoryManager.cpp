#include "Yr/MemoryManager.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>

#include "Yr/Exceptions.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/MemoryManager";

class HeapMemorySource final : public RawMemorySource {
public:
    void* Allocate(std::size_t size, std::size_t alignment) override {
        if (size == 0) size = 1;
        if (alignment <= alignof(std::max_align_t)) return std::malloc(size);
        // aligned_alloc wants a multiple of the alignment; rounding a size near
        // the top of the range up would wrap to a tiny block.
        if (size > std::numeric_limits<std::size_t>::max() - (alignment - 1)) return nullptr;
        return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    }
    void Free(void* pointer) override { std::free(pointer); }
};

// Never destroyed: Refs and buffers held by other statics are freed after main.
RawMemorySource& Heap() {
    static auto* heap = new HeapMemorySource;
    return *heap;
}

// Null stands for the heap, so that no static has to be built first.
std::atomic<RawMemorySource*> g_source{nullptr};

RawMemorySource& Source() {
    RawMemorySource* source = g_source.load();
    return source ? *source : Heap();
}

std::mutex& HandlerLock() {
    static std::mutex* lock = new std::mutex;
    return *lock;
}

std::vector<MemoryAllocationFailureHandler*>& Handlers() {
    static auto* handlers = new std::vector<MemoryAllocationFailureHandler*>;
    return *handlers;
}

void* Checked(void* block, ExceptionBehaviour behaviour) {
    if (block == nullptr && behaviour == ExceptionBehaviour::Throw)
        throw OutOfMemoryException("", kSourceUnit, __LINE__, kOutOfMemoryErrorCode);
    return block;
}

}  // namespace

void* MemoryManager::Allocate(std::size_t size, ExceptionBehaviour behaviour, bool clear) {
    void* block = Checked(Source().Allocate(size, alignof(std::max_align_t)), behaviour);
    if (block && clear) std::memset(block, 0, size);
    return block;
}

void* MemoryManager::AllocateAligned(std::size_t size, std::size_t alignment,
                                     ExceptionBehaviour behaviour) {
    return Checked(Source().Allocate(size, alignment), behaviour);
}

void MemoryManager::Free(void* pointer) {
    if (pointer) Source().Free(pointer);
}

void MemoryManager::RegisterFailureHandler(MemoryAllocationFailureHandler& handler) {
    std::lock_guard<std::mutex> guard(HandlerLock());
    Handlers().push_back(&handler);
}

void MemoryManager::UnregisterFailureHandler(MemoryAllocationFailureHandler& handler) {
    std::lock_guard<std::mutex> guard(HandlerLock());
    auto& handlers = Handlers();
    handlers.erase(std::remove(handlers.begin(), handlers.end(), &handler), handlers.end());
}

std::size_t MemoryManager::CopyFailureHandlers(MemoryAllocationFailureHandler** target,
                                               std::size_t capacity) {
    std::lock_guard<std::mutex> guard(HandlerLock());
    const auto& handlers = Handlers();
    std::copy_n(handlers.begin(), std::min(capacity, handlers.size()), target);
    return handlers.size();
}

RawMemorySource* MemoryManager::SetRawMemorySource(RawMemorySource* source) {
    RawMemorySource* previous = g_source.exchange(source);
    return previous ? previous : &Heap();
}

}  // namespace Yr
