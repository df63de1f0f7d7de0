#pragma once

#include <memory>
#include <vector>

#include "Yr/Condition.h"
#include "Yr/Lock.h"
#include "Yr/Types.h"

namespace Morvelan::Common::Containers {

class BlockFileHandler;

// A fixed number of blocks of a block file held in memory: read on demand,
// written back when replaced, evicted or flushed, the least recently used
// unpinned block replaced first. Thread-safe: one lock guards everything and
// is released only while a block is read from the file, other threads asking
// for that block waiting on a condition. Nothing is allocated on the GetBlock
// path; memory changes only in the constructor and SetCacheSize.
//
// Block offsets are computed in 32-bit arithmetic, as the file format has it,
// so a block file cannot reach past 4 GiB.
class BlockCache {
    struct BlockHeader;

public:
    // One pin on a cached block, released with the reference. Move-only.
    class BlockReference {
    public:
        BlockReference() = default;
        BlockReference(BlockReference&& other) noexcept;
        BlockReference& operator=(BlockReference&& other) noexcept;
        BlockReference(const BlockReference&) = delete;
        BlockReference& operator=(const BlockReference&) = delete;
        ~BlockReference() { Release(); }

        char* GetBuffer() const { return m_buffer; }
        Yr::UInt32 GetIdentifier() const { return m_identifier; }
        bool IsEmpty() const { return m_cache == nullptr; }
        // Unpins now, without taking the cache's lock; the buffer must not be
        // used afterwards.
        void Release() noexcept;

    private:
        friend class BlockCache;
        BlockReference(BlockCache* cache, BlockHeader* header);

        BlockCache* m_cache = nullptr;
        BlockHeader* m_header = nullptr;
        Yr::UInt32 m_identifier = 0;
        char* m_buffer = nullptr;
    };

    // The handler stays the caller's. `pageSize` is the bytes of one memory
    // page of slots, at least 16 blocks.
    BlockCache(BlockFileHandler* handler, Yr::UInt32 blockSize, Yr::UInt32 cacheSize,
               Yr::UInt32 pageSize);
    BlockCache(const BlockCache&) = delete;
    BlockCache& operator=(const BlockCache&) = delete;
    // Frees the memory without writing dirty blocks: flush first.
    ~BlockCache();

    // The block's bytes, loaded if needed, pinned while the reference lives.
    // A block the file does not hold whole reads as zeros.
    BlockReference GetBlock(Yr::UInt32 identifier, bool dirty);
    // Adds or takes away one pin of a cached block.
    void Pin(Yr::UInt32 identifier, bool pin);
    void SetDirty(Yr::UInt32 identifier, bool dirty);
    // Writes the block if dirty and frees its slot; not cached is no error.
    void Evict(Yr::UInt32 identifier);
    // Evicts every unpinned block; pinned ones stay.
    void EvictAll();
    // Writes every dirty block, then syncs the file unless `noSync` or
    // nothing was written.
    void Flush(bool noSync);
    // Forgets the blocks past a file that was just shortened.
    void DropBeyondEnd();

    Yr::UInt32 GetCacheSize() const;
    // Grows or shrinks by whole pages; pages with pinned or loading blocks
    // stay, so the cache may end up larger than asked.
    void SetCacheSize(Yr::UInt32 cacheSize);

private:
    class Index;
    struct Page;

    // All three under the lock. DropPin is false when there was no pin.
    static void AddPin(BlockHeader& header);
    static bool DropPin(BlockHeader& header);
    static bool IsPinned(const BlockHeader& header);
    BlockHeader& FindCached(Yr::UInt32 identifier);
    BlockHeader* ChooseVictim();
    void Load(BlockHeader& header);
    void WaitForLoad(BlockHeader& header);
    void WriteIfDirty(BlockHeader& header);
    void Forget(BlockHeader& header);

    // Free slots of a page added later join as least recently used.
    void AddPage(Yr::UInt64 bytes, bool leastRecent);
    // False, changing nothing, when a slot of the page is pinned or loading.
    bool ReleasePage(std::size_t pageIndex);

    void LinkAtTail(BlockHeader& header);
    void LinkAtHead(BlockHeader& header);
    void Unlink(BlockHeader& header);
    void RebuildIndex();

    BlockFileHandler* const m_handler;
    const Yr::UInt32 m_blockSize;
    const Yr::UInt32 m_pageSize;
    Yr::UInt32 m_slotCount = 0;

    std::vector<std::unique_ptr<Page>> m_pages;
    std::unique_ptr<Index> m_index;
    BlockHeader* m_head = nullptr;  // least recently used
    BlockHeader* m_tail = nullptr;  // most recently used

    mutable Yr::Lock m_lock;
    Yr::Condition m_loaded;
};

}  // namespace Morvelan::Common::Containers
