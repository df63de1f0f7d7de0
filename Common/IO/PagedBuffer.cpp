#include "Common/IO/PagedBuffer.h"

#include <algorithm>
#include <cstring>

#include "Common/StandardMemoryAllocator.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/PagedBuffer";
constexpr Yr::UInt32 kOffsetMask = PagedBuffer::kPageSize - 1;
// Smallest allocation of a first page: tiny buffers stay tiny.
constexpr Yr::UInt32 kMinimumAllocation = 4096;

// A power of two, so that enlarging a last page at least doubles it.
Yr::UInt32 GetAllocationFor(Yr::UInt32 size) {
    Yr::UInt32 allocation = kMinimumAllocation;
    while (allocation < size) allocation <<= 1;
    return std::min(allocation, PagedBuffer::kPageSize);
}
}  // namespace

PagedBuffer::PagedBuffer() = default;

PagedBuffer::~PagedBuffer() {
    Clear();
}

Yr::UInt32 PagedBuffer::GetSize() const {
    return m_size;
}

Yr::UInt64 PagedBuffer::GetCapacity() const {
    Yr::UInt64 capacity = m_first.allocated;
    for (const Page& page : m_rest) capacity += page.allocated;
    return capacity;
}

Yr::UInt32 PagedBuffer::Read(Yr::UInt32 offset, char* buffer, Yr::UInt32 size) const {
    if (offset >= m_size) return 0;
    const Yr::UInt32 count = std::min(size, m_size - offset);
    for (Yr::UInt32 done = 0; done < count;) {
        const Yr::UInt32 position = offset + done;
        const Yr::UInt32 inPage = position & kOffsetMask;
        const Yr::UInt32 piece = std::min(count - done, kPageSize - inPage);
        std::memcpy(buffer + done, GetPage(position >> kPageBits).memory + inPage, piece);
        done += piece;
    }
    return count;
}

void PagedBuffer::Write(Yr::UInt32 offset, const char* data, Yr::UInt32 size) {
    if (size == 0) return;
    const Yr::UInt64 end = Yr::UInt64{offset} + size;
    Reserve(end);
    // Pages reused after Truncate hold old bytes: a gap must be zeroed.
    if (offset > m_size) Put(m_size, nullptr, offset - m_size);
    Put(offset, data, size);
    m_size = std::max(m_size, static_cast<Yr::UInt32>(end));
}

void PagedBuffer::Grow(Yr::UInt32 size) {
    if (size <= m_size) return;
    Reserve(size);
    Put(m_size, nullptr, size - m_size);
    m_size = size;
}

void PagedBuffer::Truncate(Yr::UInt32 size) {
    if (size >= m_size) return;
    m_size = size;
    const Yr::UInt32 count = GetPageCount();
    for (Yr::UInt32 index = 0; index < count; ++index) {
        const Yr::UInt64 start = Yr::UInt64{index} << kPageBits;
        Page& page = GetPage(index);
        page.used = size <= start
                        ? 0
                        : static_cast<Yr::UInt32>(std::min<Yr::UInt64>(size - start, page.used));
    }
}

void PagedBuffer::Clear() {
    for (Page& page : m_rest) StandardMemoryAllocator::Free(page.memory);
    m_rest.Clear();
    StandardMemoryAllocator::Free(m_first.memory);
    m_first = Page{};
    m_size = 0;
}

void PagedBuffer::WriteTo(Yr::OBinaryChannel& output, Yr::UInt32 offset, Yr::UInt32 size) const {
    if (Yr::UInt64{offset} + size > m_size)
        throw Yr::IllegalArgumentException("Invalid range: range is beyond the end of the buffer.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    for (Yr::UInt32 done = 0; done < size;) {
        const Yr::UInt32 position = offset + done;
        const Yr::UInt32 inPage = position & kOffsetMask;
        const Yr::UInt32 piece = std::min(size - done, kPageSize - inPage);
        output.Write(GetPage(position >> kPageBits).memory + inPage, piece);
        done += piece;
    }
}

Yr::UInt32 PagedBuffer::GetPageCount() const {
    return m_first.memory == nullptr ? 0 : static_cast<Yr::UInt32>(1 + m_rest.GetCount());
}

PagedBuffer::Page& PagedBuffer::GetPage(Yr::UInt32 index) {
    return index == 0 ? m_first : m_rest[index - 1];
}

const PagedBuffer::Page& PagedBuffer::GetPage(Yr::UInt32 index) const {
    return index == 0 ? m_first : m_rest[index - 1];
}

void PagedBuffer::Reserve(Yr::UInt64 end) {
    if (end > kMaximumSize)
        throw Yr::OutOfMemoryException("Paged buffer is full.", kSourceUnit, __LINE__,
                                       Yr::kOutOfMemoryErrorCode);
    if (end == 0) return;
    const auto lastIndex = static_cast<Yr::UInt32>((end - 1) >> kPageBits);
    const auto lastSize = static_cast<Yr::UInt32>(end - (Yr::UInt64{lastIndex} << kPageBits));
    Yr::UInt32 count = GetPageCount();
    while (count <= lastIndex) {
        // Only the last page may be short: fill it up before adding one.
        // Only a first page starts short: a buffer past one page is a large
        // one, and enlarging each page in steps would copy most bytes twice.
        if (count > 0) Enlarge(GetPage(count - 1), kPageSize);
        AddPage(lastIndex == 0 ? GetAllocationFor(lastSize) : kPageSize);
        ++count;
    }
    Page& last = GetPage(lastIndex);
    if (last.allocated < lastSize) Enlarge(last, GetAllocationFor(lastSize));
}

void PagedBuffer::AddPage(Yr::UInt32 allocated) {
    Page page{allocated, 0, static_cast<char*>(StandardMemoryAllocator::Allocate(allocated))};
    if (m_first.memory == nullptr)
        m_first = page;
    else
        m_rest.Add(page);
}

void PagedBuffer::Enlarge(Page& page, Yr::UInt32 allocated) {
    if (page.allocated >= allocated) return;
    auto* memory = static_cast<char*>(StandardMemoryAllocator::Allocate(allocated));
    std::memcpy(memory, page.memory, page.used);
    StandardMemoryAllocator::Free(page.memory);
    page.memory = memory;
    page.allocated = allocated;
}

void PagedBuffer::Put(Yr::UInt32 offset, const char* data, Yr::UInt32 size) {
    for (Yr::UInt32 done = 0; done < size;) {
        const Yr::UInt32 position = offset + done;
        const Yr::UInt32 inPage = position & kOffsetMask;
        const Yr::UInt32 piece = std::min(size - done, kPageSize - inPage);
        Page& page = GetPage(position >> kPageBits);
        if (data == nullptr)
            std::memset(page.memory + inPage, 0, piece);
        else
            std::memcpy(page.memory + inPage, data + done, piece);
        page.used = std::max(page.used, inPage + piece);
        done += piece;
    }
}

}  // namespace Morvelan::Common::IO
