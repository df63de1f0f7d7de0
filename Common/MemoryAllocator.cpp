#include "Common/StandardMemoryAllocator.h"
#include "Common/VirtualMemoryAllocator.h"

#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "Common/ExceptionPrinting.h"
#include "InputOutput/FileSystem.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"
#include "Yr/PagedSlotPool.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/MemoryAllocator";

// Handlers copied onto the stack before the walk; more than this spill to
// the heap, which is then all the more likely to fail.
constexpr std::size_t kInlineHandlers = 10;

// Asks the registered handlers, in order, to release memory for a request of
// `size` bytes; true when one did. The walk is over a copy of the list, so a
// handler may unregister itself meanwhile. A handler that fails in the base
// layer's way is only logged: the others may still help.
bool ReleaseMemory(std::size_t size) {
    Yr::MemoryAllocationFailureHandler* inlineHandlers[kInlineHandlers];
    std::vector<Yr::MemoryAllocationFailureHandler*> spilled;
    std::span<Yr::MemoryAllocationFailureHandler*> handlers(inlineHandlers);
    std::size_t count = Yr::MemoryManager::CopyFailureHandlers(handlers.data(), handlers.size());
    // Handlers registered meanwhile may ask for another round.
    while (count > handlers.size()) {
        spilled.resize(count);
        handlers = spilled;
        count = Yr::MemoryManager::CopyFailureHandlers(handlers.data(), handlers.size());
    }
    for (Yr::MemoryAllocationFailureHandler* handler : handlers.first(count)) {
        try {
            if (handler->ReleaseMemory(size)) return true;
        } catch (const Yr::YrException& exception) {
            DebugPrintEx(exception);
        }
    }
    return false;
}

// `tryAllocate` returns null on failure. Loops for as long as some handler
// reports having released memory.
template <class TryAllocate>
void* AllocateWithRecovery(std::size_t size, TryAllocate tryAllocate) {
    for (;;) {
        if (void* block = tryAllocate()) return block;
        if (!ReleaseMemory(size))
            throw Yr::OutOfMemoryException("", kSourceUnit, __LINE__, Yr::kOutOfMemoryErrorCode);
    }
}

// The word at the start of the header page: the size of the whole mapping.
using RegionSize = std::size_t;

void* MapRegion(std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - VirtualMemoryAllocator::kHeaderSize)
        return nullptr;
    const std::size_t regionSize = size + VirtualMemoryAllocator::kHeaderSize;
    auto* region = static_cast<unsigned char*>(::IO::FileSystem::Get().MapMemory(regionSize));
    if (region == nullptr) return nullptr;
    std::memcpy(region, &regionSize, sizeof regionSize);
    return region + VirtualMemoryAllocator::kHeaderSize;
}

}  // namespace

void* StandardMemoryAllocator::Allocate(std::size_t size) {
    return AllocateWithRecovery(size, [size] {
        return Yr::MemoryManager::Allocate(size, Yr::ExceptionBehaviour::ReturnNull);
    });
}

void* StandardMemoryAllocator::Allocate(std::size_t size, std::size_t alignment) {
    return AllocateWithRecovery(size, [size, alignment] {
        return Yr::MemoryManager::AllocateAligned(size, alignment,
                                                  Yr::ExceptionBehaviour::ReturnNull);
    });
}

void StandardMemoryAllocator::Free(void* pointer) {
    Yr::MemoryManager::Free(pointer);
}

Yr::PagedSlotPool& StandardMemoryAllocator::CreatePagedSlotPool() {
    // Pages aligned to their size, so a slot finds its page with a mask.
    constexpr auto allocatePage = [] {
        return Allocate(Yr::PagedSlotPool::kPageSize, Yr::PagedSlotPool::kPageSize);
    };
    return *new Yr::PagedSlotPool(allocatePage, &Free);
}

void* VirtualMemoryAllocator::Allocate(std::size_t size) {
    return AllocateWithRecovery(size, [size] { return MapRegion(size); });
}

void VirtualMemoryAllocator::Free(void* pointer) {
    if (pointer == nullptr) return;
    unsigned char* region = static_cast<unsigned char*>(pointer) - kHeaderSize;
    RegionSize regionSize;
    std::memcpy(&regionSize, region, sizeof regionSize);
    ::IO::FileSystem::Get().UnmapMemory(region, regionSize);
}

}  // namespace Morvelan::Common
