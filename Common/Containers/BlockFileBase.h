#pragma once

#include <memory>

#include "InputOutput/Location.h"
#include "Yr/PagedArray.h"

namespace Morvelan::Common::Containers {

// A file of fixed-size blocks addressed by 32-bit identifiers: block 0 holds
// the header, blocks 1 and up are the client's. Freed blocks are kept on a
// list and handed out again; master blocks are listed in the file so that a
// client finds its roots after reopening. All block I/O goes through a
// write-back cache. One thread at a time. The destructor does not close:
// call Close first, or modified blocks are lost.
class BlockFileBase {
public:
    // Opens the file, or creates it when missing or empty. `cacheSize` is in
    // blocks, at least 16.
    BlockFileBase(const ::IO::Location& location, unsigned int blockSize, unsigned int cacheSize);
    BlockFileBase(const BlockFileBase&) = delete;
    BlockFileBase& operator=(const BlockFileBase&) = delete;
    virtual ~BlockFileBase();

    // A zero-filled block, from the free list when it has one.
    unsigned int AllocateBlock();
    unsigned int AllocateMasterBlock();
    void FreeBlock(unsigned int id);

    // The block's blockSize bytes in the cache. Valid while the block is
    // pinned; an unpinned block may be evicted by any later cache access.
    char* GetBlock(unsigned int id, bool dirty);
    void PinBlock(unsigned int id, bool pin);
    void SetDirty(unsigned int id, bool dirty);
    void Evict(unsigned int id);
    void EvictAll();

    // Writes modified blocks (syncing unless `noSync`) and extends the file
    // to its block count.
    void Flush(bool noSync);
    // Gives the free blocks at the end of the file back to the file system.
    void Compact();
    // A second Close does nothing.
    void Close();

    bool IsClosed() const;
    bool IsMasterBlock(unsigned int id) const;
    // Appends every master block identifier; returns how many.
    unsigned int GetAllocatedMasterBlocks(Yr::PagedArray<unsigned int, 8>& result) const;
    unsigned int GetBlockCount() const;
    unsigned int GetBlockSize() const;
    unsigned int GetFreeBlockCount() const;
    unsigned int GetCacheSize() const;
    void SetCacheSize(unsigned int cacheSize);
    const ::IO::Location& GetLocation() const;
    // Block count × block size, whether or not the file has grown to it yet.
    unsigned long long GetSize() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::Containers
