#include "Common/Containers/BlockFileBase.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "Common/Containers/BlockCache.h"
#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileFormat.h"
#include "Common/Containers/BlockFileHandler.h"
#include "Common/Containers/BlockNotFoundException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::Containers {
namespace {

namespace Format = BlockFileFormat;
using Yr::UInt32;
using Yr::UInt64;
using BlockReference = BlockCache::BlockReference;

constexpr const char* kSourceUnit = "Common/Containers/BlockFileBase";

// The cache's memory pages hold this many blocks each.
constexpr UInt32 kBlocksPerCachePage = 1024;
// Keeps the cache page size, 1024 blocks, within 32 bits.
constexpr UInt32 kMaxBlockSize = 2u * 1024 * 1024;
// Block offsets are 32-bit, so no block may end past 4 GiB.
constexpr UInt64 kMaxFileSize = UInt64(1) << 32;

[[noreturn]] void Fail(const char* message, UInt32 line) {
    throw BlockFileException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

void CheckBlockSize(UInt32 blockSize) {
    const char* message = nullptr;
    if (blockSize == 0)
        message = "Invalid block size: block size is 0.";
    else if (blockSize < Format::kHeaderSize)
        message = "Invalid block size: block size is less than 36.";
    else if (blockSize > kMaxBlockSize)
        message = "Invalid block size: block size is greater than 2097152.";
    if (message != nullptr)
        throw Yr::IllegalArgumentException(message, kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
}

}  // namespace

class BlockFileBase::Impl {
public:
    Impl(const ::IO::Location& location, UInt32 blockSize, UInt32 cacheSize);

    UInt32 AllocateBlock();
    UInt32 AllocateMasterBlock();
    void FreeBlock(UInt32 id);
    void Compact();
    void Flush(bool noSync);
    void Close();

    void CheckOpen() const;
    void CheckIdentifier(UInt32 id) const;
    UInt64 GetSize() const { return UInt64(m_blockCount) * m_blockSize; }

    // The handler comes before the cache, which writes through it, so that
    // the cache is destroyed first: on a failed construction as later.
    std::unique_ptr<BlockFileHandler> m_handler;
    std::unique_ptr<BlockCache> m_cache;
    UInt32 m_blockSize;
    UInt32 m_blockCount = 0;
    UInt32 m_freeBlockCount = 0;
    std::unordered_set<UInt32> m_masterBlocks;
    // The blocks of the master list itself, so that a damaged free list
    // cannot hand one out.
    std::unordered_set<UInt32> m_listBlocks;
    bool m_closed = false;

private:
    void CreateHeader();
    void ReadHeader();
    void LoadMasterList(UInt32 head);
    // Calls `visit` with each master-list block, pinned, until it returns
    // true; refuses a list that leaves the file, loops or overfills a block.
    void WalkMasterList(UInt32 head, const char* damageMessage, UInt32 line,
                        const std::function<bool(UInt32, char*)>& visit);
    void RemoveFromMasterList(UInt32 id);
    std::vector<UInt32> GatherFreeBlocks(UInt32 head);
    bool IsListed(UInt32 id) const {
        return m_masterBlocks.count(id) != 0 || m_listBlocks.count(id) != 0;
    }
    void ExtendFile();
};

BlockFileBase::Impl::Impl(const ::IO::Location& location, UInt32 blockSize, UInt32 cacheSize)
    : m_blockSize(blockSize) {
    CheckBlockSize(blockSize);
    m_handler.reset(BlockFileHandler::Create(location));
    m_cache = std::make_unique<BlockCache>(m_handler.get(), blockSize, cacheSize,
                                           blockSize * kBlocksPerCachePage);
    if (m_handler->GetSize() == 0)
        CreateHeader();
    else
        ReadHeader();
}

void BlockFileBase::Impl::CreateHeader() {
    BlockReference header = m_cache->GetBlock(0, true);
    char* bytes = header.GetBuffer();
    Format::WriteField(bytes, Format::kMagicOffset, Format::kMagic);
    Format::WriteField(bytes, Format::kMajorVersionOffset, Format::kMajorVersion);
    Format::WriteField(bytes, Format::kMinorVersionOffset, Format::kMinorVersion);
    Format::WriteField(bytes, Format::kMasterListHeadOffset, 0);
    Format::WriteField(bytes, Format::kFreeListHeadOffset, 0);
    Format::WriteField(bytes, Format::kFreeBlockCountOffset, 0);
    Format::WriteField(bytes, Format::kBlockSizeOffset, m_blockSize);
    Format::WriteField(bytes, Format::kBlockCountOffset, 1);
    m_blockCount = 1;
}

void BlockFileBase::Impl::ReadHeader() {
    BlockReference header = m_cache->GetBlock(0, false);
    const char* bytes = header.GetBuffer();
    if (Format::ReadField(bytes, Format::kMagicOffset) != Format::kMagic)
        Fail("Failed to read block file header: invalid block file magic.", __LINE__);
    if (Format::ReadField(bytes, Format::kMajorVersionOffset) != Format::kMajorVersion ||
        Format::ReadField(bytes, Format::kMinorVersionOffset) != Format::kMinorVersion)
        Fail("Failed to read block file header: unsupported block file version.", __LINE__);
    const UInt32 blockCount = Format::ReadField(bytes, Format::kBlockCountOffset);
    const UInt32 blockSize = Format::ReadField(bytes, Format::kBlockSizeOffset);
    // In 64 bits, so that a huge count cannot wrap below the file size; and
    // no further than 32-bit block offsets reach.
    const UInt64 size = UInt64(blockCount) * blockSize;
    if (size > m_handler->GetSize() || size > kMaxFileSize)
        Fail("Failed to read block file header: invalid block count.", __LINE__);
    if (blockSize != m_blockSize)
        Fail("Failed to read block file header: invalid block size.", __LINE__);
    const UInt32 freeBlockCount = Format::ReadField(bytes, Format::kFreeBlockCountOffset);
    if (freeBlockCount >= blockCount)
        Fail("Failed to read block file header: invalid free block count.", __LINE__);
    m_blockCount = blockCount;
    m_freeBlockCount = freeBlockCount;
    LoadMasterList(Format::ReadField(bytes, Format::kMasterListHeadOffset));
}

void BlockFileBase::Impl::LoadMasterList(UInt32 head) {
    const char* const damaged = "Failed to read block file header: invalid master block list.";
    WalkMasterList(head, damaged, __LINE__, [&](UInt32 listBlock, char* bytes) {
        m_listBlocks.insert(listBlock);
        const UInt32 count = Format::ReadField(bytes, Format::kEntryCountOffset);
        for (UInt32 i = 0; i < count; ++i) {
            const UInt32 id = Format::ReadField(bytes, Format::kFirstEntryOffset + 4 * i);
            if (id == 0) continue;
            // A master block outside the file, or listed twice, is damage.
            if (id >= m_blockCount || !m_masterBlocks.insert(id).second) Fail(damaged, __LINE__);
        }
        return false;
    });
    for (UInt32 listBlock : m_listBlocks)
        if (m_masterBlocks.count(listBlock) != 0) Fail(damaged, __LINE__);
}

void BlockFileBase::Impl::WalkMasterList(UInt32 head, const char* damageMessage, UInt32 line,
                                         const std::function<bool(UInt32, char*)>& visit) {
    const UInt32 capacity = Format::MasterListCapacity(m_blockSize);
    // A loop is caught by leaving a marker at steps 1, 2, 4, 8...: once the
    // interval exceeds the loop, the walk comes back to the marker.
    UInt32 marker = 0;
    UInt64 stepsSinceMarker = 0;
    UInt64 interval = 1;
    for (UInt32 listBlock = head; listBlock != 0;) {
        if (listBlock >= m_blockCount || listBlock == marker) Fail(damageMessage, line);
        BlockReference reference = m_cache->GetBlock(listBlock, false);
        char* bytes = reference.GetBuffer();
        if (Format::ReadField(bytes, Format::kEntryCountOffset) > capacity)
            Fail(damageMessage, line);
        if (visit(listBlock, bytes)) return;
        if (++stepsSinceMarker == interval) {
            marker = listBlock;
            stepsSinceMarker = 0;
            interval *= 2;
        }
        listBlock = Format::ReadField(bytes, Format::kNextListBlockOffset);
    }
}

void BlockFileBase::Impl::CheckOpen() const {
    if (m_closed) Fail("Block file is closed.", __LINE__);
}

void BlockFileBase::Impl::CheckIdentifier(UInt32 id) const {
    CheckOpen();
    if (id == 0)
        throw Yr::IllegalArgumentException("Invalid block identifier: block identifier is null.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    if (id >= m_blockCount) {
        const std::string message =
            "Invalid block identifier: " + std::to_string(id) + ": block identifier is not found.";
        throw BlockNotFoundException(message.c_str(), kSourceUnit, __LINE__, Yr::kIOErrorCode);
    }
}

UInt32 BlockFileBase::Impl::AllocateBlock() {
    CheckOpen();
    const char* const damaged = "Failed to allocate block: invalid free block list.";
    BlockReference header = m_cache->GetBlock(0, true);
    char* headerBytes = header.GetBuffer();
    const UInt32 head = Format::ReadField(headerBytes, Format::kFreeListHeadOffset);
    if (head != 0) {
        // A damaged list is refused before anything changes: a head outside
        // the file or on the master list, a count that runs out before the
        // list.
        if (head >= m_blockCount || m_freeBlockCount == 0 || IsListed(head))
            Fail(damaged, __LINE__);
        BlockReference block = m_cache->GetBlock(head, true);
        const UInt32 next = Format::ReadField(block.GetBuffer(), Format::kNextFreeOffset);
        if (next >= m_blockCount || next == head || (next == 0) != (m_freeBlockCount == 1))
            Fail(damaged, __LINE__);
        Format::WriteField(headerBytes, Format::kFreeListHeadOffset, next);
        std::memset(block.GetBuffer(), 0, m_blockSize);
        --m_freeBlockCount;
        Format::WriteField(headerBytes, Format::kFreeBlockCountOffset, m_freeBlockCount);
        return head;
    }
    if (m_freeBlockCount != 0) Fail(damaged, __LINE__);
    const UInt32 id = m_blockCount;
    if ((UInt64(id) + 1) * m_blockSize > kMaxFileSize)
        Fail("Failed to allocate block: block file is full.", __LINE__);
    // The cache may still hold this block from before a Compact, or the file
    // may hold old bytes past its logical end: zero it either way.
    BlockReference block = m_cache->GetBlock(id, true);
    std::memset(block.GetBuffer(), 0, m_blockSize);
    m_blockCount = id + 1;
    Format::WriteField(headerBytes, Format::kBlockCountOffset, m_blockCount);
    return id;
}

UInt32 BlockFileBase::Impl::AllocateMasterBlock() {
    const UInt32 id = AllocateBlock();
    const char* const damaged = "Failed to allocate master block: invalid master block list.";
    BlockReference header = m_cache->GetBlock(0, false);
    UInt32 head = Format::ReadField(header.GetBuffer(), Format::kMasterListHeadOffset);
    if (head == 0) {
        head = AllocateBlock();
        m_listBlocks.insert(head);
        m_cache->SetDirty(0, true);
        Format::WriteField(header.GetBuffer(), Format::kMasterListHeadOffset, head);
    }
    const UInt32 capacity = Format::MasterListCapacity(m_blockSize);
    WalkMasterList(head, damaged, __LINE__, [&](UInt32 listBlock, char* bytes) {
        const UInt32 count = Format::ReadField(bytes, Format::kEntryCountOffset);
        if (count < capacity) {
            Format::WriteField(bytes, Format::kFirstEntryOffset + 4 * count, id);
            Format::WriteField(bytes, Format::kEntryCountOffset, count + 1);
            m_cache->SetDirty(listBlock, true);
            return true;
        }
        if (Format::ReadField(bytes, Format::kNextListBlockOffset) != 0) return false;
        const UInt32 next = AllocateBlock();
        m_listBlocks.insert(next);
        BlockReference nextBlock = m_cache->GetBlock(next, true);
        Format::WriteField(nextBlock.GetBuffer(), Format::kFirstEntryOffset, id);
        Format::WriteField(nextBlock.GetBuffer(), Format::kEntryCountOffset, 1);
        Format::WriteField(bytes, Format::kNextListBlockOffset, next);
        m_cache->SetDirty(listBlock, true);
        return true;
    });
    m_masterBlocks.insert(id);
    return id;
}

void BlockFileBase::Impl::FreeBlock(UInt32 id) {
    CheckIdentifier(id);
    BlockReference header = m_cache->GetBlock(0, true);
    BlockReference block = m_cache->GetBlock(id, true);
    char* headerBytes = header.GetBuffer();
    Format::WriteField(block.GetBuffer(), Format::kNextFreeOffset,
                       Format::ReadField(headerBytes, Format::kFreeListHeadOffset));
    block.Release();
    Format::WriteField(headerBytes, Format::kFreeListHeadOffset, id);
    ++m_freeBlockCount;
    Format::WriteField(headerBytes, Format::kFreeBlockCountOffset, m_freeBlockCount);
    if (m_masterBlocks.count(id) != 0) {
        RemoveFromMasterList(id);
        m_masterBlocks.erase(id);
    }
}

void BlockFileBase::Impl::RemoveFromMasterList(UInt32 id) {
    const char* const damaged = "Failed to free block: invalid master block list.";
    BlockReference header = m_cache->GetBlock(0, false);
    bool removed = false;
    WalkMasterList(Format::ReadField(header.GetBuffer(), Format::kMasterListHeadOffset), damaged,
                   __LINE__, [&](UInt32 listBlock, char* bytes) {
                       const UInt32 count = Format::ReadField(bytes, Format::kEntryCountOffset);
                       for (UInt32 i = 0; i < count; ++i) {
                           const UInt32 offset = Format::kFirstEntryOffset + 4 * i;
                           if (Format::ReadField(bytes, offset) != id) continue;
                           // Order within a list block is not kept: the last
                           // entry fills the hole.
                           const UInt32 last = Format::kFirstEntryOffset + 4 * (count - 1);
                           if (i < count - 1)
                               Format::WriteField(bytes, offset, Format::ReadField(bytes, last));
                           Format::WriteField(bytes, Format::kEntryCountOffset, count - 1);
                           m_cache->SetDirty(listBlock, true);
                           return removed = true;
                       }
                       return false;
                   });
    if (!removed) Fail(damaged, __LINE__);
}

std::vector<UInt32> BlockFileBase::Impl::GatherFreeBlocks(UInt32 head) {
    // The count bounds the walk: a list that loops or runs on past it, leaves
    // the file or takes in a block of the master list is refused.
    const char* const damaged = "Failed to compact block file: invalid free block list.";
    std::vector<UInt32> ids;
    ids.reserve(m_freeBlockCount);
    UInt32 id = head;
    while (id != 0) {
        if (ids.size() == m_freeBlockCount || id >= m_blockCount || IsListed(id))
            Fail(damaged, __LINE__);
        ids.push_back(id);
        BlockReference block = m_cache->GetBlock(id, false);
        id = Format::ReadField(block.GetBuffer(), Format::kNextFreeOffset);
    }
    if (ids.size() != m_freeBlockCount) Fail(damaged, __LINE__);
    return ids;
}

void BlockFileBase::Impl::Compact() {
    CheckOpen();
    BlockReference header = m_cache->GetBlock(0, false);
    char* headerBytes = header.GetBuffer();
    const UInt32 head = Format::ReadField(headerBytes, Format::kFreeListHeadOffset);
    if (head == 0 && m_freeBlockCount == 0) return;
    std::vector<UInt32> ids = GatherFreeBlocks(head);
    std::sort(ids.begin(), ids.end(), std::greater<UInt32>());

    const UInt32 oldCount = m_blockCount;
    UInt32 newCount = oldCount;
    std::size_t dropped = 0;
    while (dropped < ids.size() && ids[dropped] == newCount - 1) {
        ++dropped;
        --newCount;
    }
    m_cache->SetDirty(0, true);

    // Rebuilt in ascending order, so that later allocations fill the file
    // from its start.
    UInt32 next = 0;
    for (std::size_t i = dropped; i < ids.size(); ++i) {
        BlockReference block = m_cache->GetBlock(ids[i], true);
        Format::WriteField(block.GetBuffer(), Format::kNextFreeOffset, next);
        next = ids[i];
    }
    Format::WriteField(headerBytes, Format::kFreeListHeadOffset, next);
    if (newCount == oldCount) return;

    m_handler->SetSize(UInt64(m_blockSize) * newCount);
    m_blockCount = newCount;
    m_freeBlockCount -= oldCount - newCount;
    Format::WriteField(headerBytes, Format::kBlockCountOffset, m_blockCount);
    Format::WriteField(headerBytes, Format::kFreeBlockCountOffset, m_freeBlockCount);
    m_cache->DropBeyondEnd();
    // The cache keeps the block just past the new end; left dirty, it would
    // be written back and grow the file again.
    BlockReference beyondEnd = m_cache->GetBlock(newCount, false);
    m_cache->SetDirty(newCount, false);
}

void BlockFileBase::Impl::ExtendFile() {
    if (m_handler->GetSize() < GetSize()) m_handler->SetSize(GetSize());
}

void BlockFileBase::Impl::Flush(bool noSync) {
    CheckOpen();
    m_cache->Flush(noSync);
    ExtendFile();
}

void BlockFileBase::Impl::Close() {
    if (m_closed) return;
    m_cache->Flush(true);
    ExtendFile();
    m_handler->Close();
    m_closed = true;
}

BlockFileBase::BlockFileBase(const ::IO::Location& location, unsigned int blockSize,
                             unsigned int cacheSize)
    : m_impl(std::make_unique<Impl>(location, blockSize, cacheSize)) {}

BlockFileBase::~BlockFileBase() = default;

unsigned int BlockFileBase::AllocateBlock() {
    return m_impl->AllocateBlock();
}

unsigned int BlockFileBase::AllocateMasterBlock() {
    return m_impl->AllocateMasterBlock();
}

void BlockFileBase::FreeBlock(unsigned int id) {
    m_impl->FreeBlock(id);
}

char* BlockFileBase::GetBlock(unsigned int id, bool dirty) {
    m_impl->CheckIdentifier(id);
    // The pin goes with the reference: the client pins explicitly if it
    // needs the pointer past the next cache access.
    return m_impl->m_cache->GetBlock(id, dirty).GetBuffer();
}

void BlockFileBase::PinBlock(unsigned int id, bool pin) {
    m_impl->CheckIdentifier(id);
    m_impl->m_cache->Pin(id, pin);
}

void BlockFileBase::SetDirty(unsigned int id, bool dirty) {
    m_impl->CheckIdentifier(id);
    m_impl->m_cache->SetDirty(id, dirty);
}

void BlockFileBase::Evict(unsigned int id) {
    m_impl->CheckIdentifier(id);
    m_impl->m_cache->Evict(id);
}

void BlockFileBase::EvictAll() {
    m_impl->CheckOpen();
    m_impl->m_cache->EvictAll();
}

void BlockFileBase::Flush(bool noSync) {
    m_impl->Flush(noSync);
}

void BlockFileBase::Compact() {
    m_impl->Compact();
}

void BlockFileBase::Close() {
    m_impl->Close();
}

bool BlockFileBase::IsClosed() const {
    return m_impl->m_closed;
}

bool BlockFileBase::IsMasterBlock(unsigned int id) const {
    m_impl->CheckIdentifier(id);
    return m_impl->m_masterBlocks.count(id) != 0;
}

unsigned int BlockFileBase::GetAllocatedMasterBlocks(
    Yr::PagedArray<unsigned int, 8>& result) const {
    m_impl->CheckOpen();
    for (UInt32 id : m_impl->m_masterBlocks) result.Add(id);
    return static_cast<unsigned int>(m_impl->m_masterBlocks.size());
}

unsigned int BlockFileBase::GetBlockCount() const {
    m_impl->CheckOpen();
    return m_impl->m_blockCount;
}

unsigned int BlockFileBase::GetBlockSize() const {
    m_impl->CheckOpen();
    return m_impl->m_blockSize;
}

unsigned int BlockFileBase::GetFreeBlockCount() const {
    m_impl->CheckOpen();
    return m_impl->m_freeBlockCount;
}

unsigned int BlockFileBase::GetCacheSize() const {
    m_impl->CheckOpen();
    return m_impl->m_cache->GetCacheSize();
}

void BlockFileBase::SetCacheSize(unsigned int cacheSize) {
    m_impl->CheckOpen();
    m_impl->m_cache->SetCacheSize(cacheSize);
}

const ::IO::Location& BlockFileBase::GetLocation() const {
    m_impl->CheckOpen();
    return m_impl->m_handler->GetLocation();
}

unsigned long long BlockFileBase::GetSize() const {
    m_impl->CheckOpen();
    return m_impl->GetSize();
}

}  // namespace Morvelan::Common::Containers
