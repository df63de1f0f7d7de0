#include "Common/Containers/BlockCache.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileHandler.h"
#include "Common/VirtualMemoryAllocator.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::Containers {
namespace {

constexpr const char* kSourceUnit = "Common/Containers/BlockCache";
constexpr Yr::UInt32 kMinimumCacheSize = 16;

enum : Yr::UInt8 {
    kLoading = 1,  // a read from the file is in progress
    kLoaded = 2,   // the last read completed
    kDirty = 4,
    kInUse = 8,  // holds a block
};

[[noreturn]] void ThrowBlockFileError(const Yr::UniString& message, Yr::UInt32 line) {
    throw BlockFileException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

[[noreturn]] void ThrowIllegalArgument(const char* message, Yr::UInt32 line) {
    throw Yr::IllegalArgumentException(message, kSourceUnit, line,
                                       Yr::kIllegalArgumentErrorCode);
}

void CheckCacheSize(Yr::UInt32 cacheSize) {
    // "case" is the message's own word; callers match it.
    if (cacheSize < kMinimumCacheSize)
        ThrowIllegalArgument("Invalid cache size: case size is less than 16.", __LINE__);
}

}  // namespace

struct BlockCache::BlockHeader {
    // The pin count is pins - unpins. Pins are taken under the lock only and
    // given back by a reference without it, so a hit takes the lock once and
    // one atomic add. Whoever then sees no pin under the lock may reuse the
    // slot: its acquire pairs with the release of the giving back.
    std::atomic<Yr::UInt32> pins{0};
    std::atomic<Yr::UInt32> unpins{0};
    Yr::UInt32 waiterCount = 0;
    Yr::UInt32 identifier = 0;
    char* buffer = nullptr;
    Yr::UInt8 flags = 0;
    BlockHeader* previous = nullptr;
    BlockHeader* next = nullptr;
};

// One run of slots over one region from the virtual memory allocator.
struct BlockCache::Page {
    Page(Yr::UInt32 bytes, Yr::UInt32 blockSize)
        : memory(static_cast<char*>(VirtualMemoryAllocator::Allocate(bytes))),
          bytes(bytes),
          slotCount(bytes / blockSize),
          slots(new BlockHeader[slotCount]) {
        for (Yr::UInt32 i = 0; i < slotCount; ++i) slots[i].buffer = memory + i * blockSize;
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    ~Page() { VirtualMemoryAllocator::Free(memory); }

    char* const memory;
    const Yr::UInt32 bytes;
    const Yr::UInt32 slotCount;
    const std::unique_ptr<BlockHeader[]> slots;
};

// Block identifier to slot, by open addressing with linear probing, sized
// once for the slot count so that lookups, inserts and removals never
// allocate. At most half full, so probe runs stay short.
class BlockCache::Index {
public:
    explicit Index(Yr::UInt32 slotCount)
        : m_bits(std::max(5, static_cast<int>(std::bit_width(std::uint64_t{slotCount})) + 1)),
          m_mask((std::size_t{1} << m_bits) - 1),
          m_entries(m_mask + 1) {}

    BlockHeader* Find(Yr::UInt32 identifier) const {
        for (std::size_t i = Home(identifier);; i = (i + 1) & m_mask) {
            const Entry& entry = m_entries[i];
            if (entry.header == nullptr || entry.identifier == identifier) return entry.header;
        }
    }

    // The identifier must not be present.
    void Insert(BlockHeader* header) {
        std::size_t i = Home(header->identifier);
        while (m_entries[i].header != nullptr) i = (i + 1) & m_mask;
        m_entries[i] = {header->identifier, header};
    }

    void Remove(Yr::UInt32 identifier) {
        std::size_t hole = Home(identifier);
        while (m_entries[hole].header != nullptr && m_entries[hole].identifier != identifier)
            hole = (hole + 1) & m_mask;
        if (m_entries[hole].header == nullptr) return;
        // Shift later entries of the run back so that no lookup stops early.
        for (std::size_t i = (hole + 1) & m_mask; m_entries[i].header != nullptr;
             i = (i + 1) & m_mask) {
            const std::size_t home = Home(m_entries[i].identifier);
            if (((i - home) & m_mask) >= ((i - hole) & m_mask)) {
                m_entries[hole] = m_entries[i];
                hole = i;
            }
        }
        m_entries[hole] = {};
    }

private:
    struct Entry {
        Yr::UInt32 identifier = 0;
        BlockHeader* header = nullptr;
    };

    std::size_t Home(Yr::UInt32 identifier) const {
        return static_cast<std::size_t>((identifier * 0x9E3779B97F4A7C15ull) >> (64 - m_bits));
    }

    const int m_bits;
    const std::size_t m_mask;
    std::vector<Entry> m_entries;
};

BlockCache::BlockReference::BlockReference(BlockCache* cache, BlockHeader* header)
    : m_cache(cache),
      m_header(header),
      m_identifier(header->identifier),
      m_buffer(header->buffer) {}

BlockCache::BlockReference::BlockReference(BlockReference&& other) noexcept
    : m_cache(std::exchange(other.m_cache, nullptr)),
      m_header(std::exchange(other.m_header, nullptr)),
      m_identifier(other.m_identifier),
      m_buffer(std::exchange(other.m_buffer, nullptr)) {}

BlockCache::BlockReference& BlockCache::BlockReference::operator=(
    BlockReference&& other) noexcept {
    if (this != &other) {
        Release();
        m_cache = std::exchange(other.m_cache, nullptr);
        m_header = std::exchange(other.m_header, nullptr);
        m_identifier = other.m_identifier;
        m_buffer = std::exchange(other.m_buffer, nullptr);
    }
    return *this;
}

void BlockCache::BlockReference::Release() noexcept {
    if (m_cache == nullptr) return;
    // The reference's own pin: the count is at least 1.
    m_header->unpins.fetch_add(1, std::memory_order_release);
    m_cache = nullptr;
    m_header = nullptr;
    m_buffer = nullptr;
}

BlockCache::BlockCache(BlockFileHandler* handler, Yr::UInt32 blockSize, Yr::UInt32 cacheSize,
                       Yr::UInt32 pageSize)
    : m_handler(handler), m_blockSize(blockSize), m_pageSize(pageSize) {
    if (handler == nullptr)
        ThrowIllegalArgument("Invalid block file handler: handler is null.", __LINE__);
    if (blockSize == 0) ThrowIllegalArgument("Invalid block size: block size is 0.", __LINE__);
    CheckCacheSize(cacheSize);
    if (pageSize < Yr::UInt64{16} * blockSize)
        ThrowIllegalArgument(
            "Invalid cache page size: cache page size is less than 16 * block size.", __LINE__);
    while (m_slotCount < cacheSize) AddPage(std::min(Yr::UInt64{m_pageSize},
                                                     Yr::UInt64{cacheSize - m_slotCount} * blockSize),
                                            false);
    m_index = std::make_unique<Index>(m_slotCount);
}

BlockCache::~BlockCache() = default;

BlockCache::BlockReference BlockCache::GetBlock(Yr::UInt32 identifier, bool dirty) {
    Yr::Locker locker(m_lock);
    BlockHeader* header = m_index->Find(identifier);
    if (header != nullptr) {
        AddPin(*header);
        if (header->flags & kLoading) WaitForLoad(*header);
    } else {
        header = ChooseVictim();
        if (header->flags & kInUse) {
            // Written before it is forgotten, so a failed write loses nothing.
            WriteIfDirty(*header);
            m_index->Remove(header->identifier);
        }
        header->identifier = identifier;
        header->flags = kInUse;
        // Unpinned, so no reference can give a pin back meanwhile.
        header->unpins.store(0, std::memory_order_relaxed);
        header->pins.store(1, std::memory_order_relaxed);
        m_index->Insert(header);
        Load(*header);
    }
    if (header != m_tail) {
        Unlink(*header);
        LinkAtTail(*header);
    }
    if (dirty) header->flags |= kDirty;
    return BlockReference(this, header);
}

BlockCache::BlockHeader* BlockCache::ChooseVictim() {
    for (BlockHeader* header = m_head; header != nullptr; header = header->next)
        if (!IsPinned(*header) && !(header->flags & kLoading)) return header;
    ThrowBlockFileError("Failed to get block: there is no more free cache blocks.", __LINE__);
}

void BlockCache::Load(BlockHeader& header) {
    // 32-bit on purpose: the format bounds a block file to 4 GiB.
    const Yr::UInt32 offset = header.identifier * m_blockSize;
    if (m_handler->GetSize() < Yr::UInt64{offset} + m_blockSize) {
        // Allocated but never written: the file does not hold it yet.
        std::memset(header.buffer, 0, m_blockSize);
        header.flags |= kLoaded;
        return;
    }
    header.flags |= kLoading;
    m_lock.Release();
    try {
        m_handler->Read(offset, header.buffer, m_blockSize);
    } catch (...) {
        m_lock.Acquire();
        // Out of the index at once so that nobody else finds the slot; it is
        // free again when the last waiter has let go of it.
        m_index->Remove(header.identifier);
        header.flags = 0;
        DropPin(header);
        if (header.waiterCount > 0) m_loaded.Broadcast();
        throw;
    }
    m_lock.Acquire();
    header.flags = (header.flags & ~kLoading) | kLoaded;
    if (header.waiterCount > 0) m_loaded.Broadcast();
}

void BlockCache::WaitForLoad(BlockHeader& header) {
    ++header.waiterCount;
    while (header.flags & kLoading) m_loaded.Wait(m_lock);
    --header.waiterCount;
    if (!(header.flags & kLoaded)) {
        DropPin(header);
        ThrowBlockFileError("Failed to get block: failed to load block.", __LINE__);
    }
}

void BlockCache::AddPin(BlockHeader& header) {
    header.pins.store(header.pins.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

bool BlockCache::DropPin(BlockHeader& header) {
    if (!IsPinned(header)) return false;
    header.unpins.fetch_add(1, std::memory_order_release);
    return true;
}

bool BlockCache::IsPinned(const BlockHeader& header) {
    return header.pins.load(std::memory_order_relaxed) !=
           header.unpins.load(std::memory_order_acquire);
}

BlockCache::BlockHeader& BlockCache::FindCached(Yr::UInt32 identifier) {
    BlockHeader* header = m_index->Find(identifier);
    // The pin operation reports the very same message; callers match it.
    if (header == nullptr) ThrowBlockFileError("Failed to set block dirty: block not found.", __LINE__);
    return *header;
}

void BlockCache::Pin(Yr::UInt32 identifier, bool pin) {
    Yr::Locker locker(m_lock);
    BlockHeader& header = FindCached(identifier);
    if (pin)
        AddPin(header);
    else if (!DropPin(header))
        ThrowBlockFileError(
            Yr::UniString::Printf("Failed to unpin block: %lu: block is not pinned.", identifier),
            __LINE__);
}

void BlockCache::SetDirty(Yr::UInt32 identifier, bool dirty) {
    Yr::Locker locker(m_lock);
    BlockHeader& header = FindCached(identifier);
    if (dirty)
        header.flags |= kDirty;
    else
        header.flags &= ~kDirty;
}

void BlockCache::Evict(Yr::UInt32 identifier) {
    Yr::Locker locker(m_lock);
    BlockHeader* header = m_index->Find(identifier);
    if (header == nullptr) return;
    if (IsPinned(*header))
        ThrowBlockFileError(
            Yr::UniString::Printf("Failed to evict block: %lu: block is pinned.", identifier),
            __LINE__);
    WriteIfDirty(*header);
    Forget(*header);
}

void BlockCache::EvictAll() {
    Yr::Locker locker(m_lock);
    for (const auto& page : m_pages) {
        for (Yr::UInt32 i = 0; i < page->slotCount; ++i) {
            BlockHeader& header = page->slots[i];
            if (!(header.flags & kInUse) || IsPinned(header)) continue;
            WriteIfDirty(header);
            Forget(header);
        }
    }
}

void BlockCache::Flush(bool noSync) {
    Yr::UInt32 written = 0;
    {
        Yr::Locker locker(m_lock);
        for (const auto& page : m_pages) {
            for (Yr::UInt32 i = 0; i < page->slotCount; ++i) {
                BlockHeader& header = page->slots[i];
                // A loading block cannot be dirty from a write yet; its
                // buffer is still being filled.
                if ((header.flags & (kInUse | kDirty | kLoading)) != (kInUse | kDirty)) continue;
                WriteIfDirty(header);
                ++written;
            }
        }
    }
    if (written > 0 && !noSync) m_handler->Flush();
}

void BlockCache::DropBeyondEnd() {
    Yr::Locker locker(m_lock);
    const Yr::UInt64 blockCount = m_handler->GetSize() / m_blockSize;
    for (const auto& page : m_pages) {
        for (Yr::UInt32 i = 0; i < page->slotCount; ++i) {
            BlockHeader& header = page->slots[i];
            // Strictly greater: the block at the new end stays cached.
            if ((header.flags & kInUse) && header.identifier > blockCount) Forget(header);
        }
    }
}

Yr::UInt32 BlockCache::GetCacheSize() const {
    Yr::Locker locker(m_lock);
    return m_slotCount;
}

void BlockCache::SetCacheSize(Yr::UInt32 cacheSize) {
    CheckCacheSize(cacheSize);
    Yr::Locker locker(m_lock);
    if (cacheSize == m_slotCount) return;
    for (std::size_t page = m_pages.size(); page-- > 0;)
        if (m_pages[page]->bytes < m_pageSize) ReleasePage(page);
    for (std::size_t page = m_pages.size(); page-- > 0 && m_slotCount > cacheSize;)
        ReleasePage(page);
    while (m_slotCount < cacheSize)
        AddPage(std::min(Yr::UInt64{m_pageSize}, Yr::UInt64{cacheSize - m_slotCount} * m_blockSize),
                true);
    RebuildIndex();
}

void BlockCache::WriteIfDirty(BlockHeader& header) {
    if (!(header.flags & kDirty)) return;
    m_handler->Write(header.identifier * m_blockSize, header.buffer, m_blockSize);
    header.flags &= ~kDirty;
}

void BlockCache::Forget(BlockHeader& header) {
    m_index->Remove(header.identifier);
    header.flags &= ~(kInUse | kDirty);
    Unlink(header);
    LinkAtHead(header);
}

void BlockCache::AddPage(Yr::UInt64 bytes, bool leastRecent) {
    auto page = std::make_unique<Page>(static_cast<Yr::UInt32>(bytes), m_blockSize);
    if (leastRecent) {
        // Free slots are the first to be taken.
        for (Yr::UInt32 i = page->slotCount; i-- > 0;) LinkAtHead(page->slots[i]);
    } else {
        for (Yr::UInt32 i = 0; i < page->slotCount; ++i) LinkAtTail(page->slots[i]);
    }
    m_slotCount += page->slotCount;
    m_pages.push_back(std::move(page));
}

bool BlockCache::ReleasePage(std::size_t pageIndex) {
    Page& page = *m_pages[pageIndex];
    for (Yr::UInt32 i = 0; i < page.slotCount; ++i)
        if (IsPinned(page.slots[i]) || (page.slots[i].flags & kLoading)) return false;
    // All writes first: if one fails, every block is still cached.
    for (Yr::UInt32 i = 0; i < page.slotCount; ++i)
        if (page.slots[i].flags & kInUse) WriteIfDirty(page.slots[i]);
    for (Yr::UInt32 i = 0; i < page.slotCount; ++i) {
        if (page.slots[i].flags & kInUse) m_index->Remove(page.slots[i].identifier);
        Unlink(page.slots[i]);
    }
    m_slotCount -= page.slotCount;
    m_pages.erase(m_pages.begin() + static_cast<std::ptrdiff_t>(pageIndex));
    return true;
}

void BlockCache::RebuildIndex() {
    auto index = std::make_unique<Index>(m_slotCount);
    for (const auto& page : m_pages)
        for (Yr::UInt32 i = 0; i < page->slotCount; ++i)
            if (page->slots[i].flags & kInUse) index->Insert(&page->slots[i]);
    m_index = std::move(index);
}

void BlockCache::LinkAtTail(BlockHeader& header) {
    header.previous = m_tail;
    header.next = nullptr;
    (m_tail != nullptr ? m_tail->next : m_head) = &header;
    m_tail = &header;
}

void BlockCache::LinkAtHead(BlockHeader& header) {
    header.previous = nullptr;
    header.next = m_head;
    (m_head != nullptr ? m_head->previous : m_tail) = &header;
    m_head = &header;
}

void BlockCache::Unlink(BlockHeader& header) {
    (header.previous != nullptr ? header.previous->next : m_head) = header.next;
    (header.next != nullptr ? header.next->previous : m_tail) = header.previous;
    header.previous = header.next = nullptr;
}

}  // namespace Morvelan::Common::Containers
