#pragma once

#include <cstddef>
#include <memory>

#include "Yr/MemoryManager.h"

namespace Yr {

struct MemoryManagerDeleter {
    void operator()(char* block) const { MemoryManager::Free(block); }
};

// A buffer from the memory manager, freed on every path.
using MemoryBlock = std::unique_ptr<char[], MemoryManagerDeleter>;

inline MemoryBlock AllocateMemoryBlock(std::size_t size) {
    return MemoryBlock(static_cast<char*>(MemoryManager::Allocate(size)));
}

}  // namespace Yr
