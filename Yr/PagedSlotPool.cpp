#include "Yr/PagedSlotPool.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Yr {

// Bytes 0-4063: the slots; 4064: first free slot; 4066: free count;
// 4072/4080: neighbours in the list of pages with free slots.
struct PagedSlotPool::Page {
    unsigned char slots[kSlotsPerPage * kSlotSize];
    UInt16 firstFree;
    UInt16 freeCount;
    UInt32 unused;
    Page* previous;
    Page* next;
    UInt64 reserved;

    static void CheckLayout() {
        static_assert(sizeof(Page) == kPageSize);
        static_assert(offsetof(Page, firstFree) == 4064);
        static_assert(offsetof(Page, freeCount) == 4066);
        static_assert(offsetof(Page, previous) == 4072);
        static_assert(offsetof(Page, next) == 4080);
    }
};

namespace {

// A free slot keeps the index of the next free one in its second 16-bit word.
UInt16 NextFree(const unsigned char* slot) {
    UInt16 next;
    std::memcpy(&next, slot + 2, sizeof next);
    return next;
}

void SetNextFree(unsigned char* slot, UInt16 next) {
    std::memcpy(slot + 2, &next, sizeof next);
}

}  // namespace

PagedSlotPool::PagedSlotPool(AllocatePageFunction allocatePage, FreePageFunction freePage,
                             bool keepOneEmptyPage)
    : m_allocatePage(allocatePage), m_freePage(freePage), m_keepOneEmptyPage(keepOneEmptyPage) {}

PagedSlotPool::~PagedSlotPool() {
    for (Page* page = m_firstWithFreeSlots; page != nullptr;) {
        Page* next = page->next;
        if (page->freeCount == kSlotsPerPage) m_freePage(page);
        page = next;
    }
}

void PagedSlotPool::Link(Page* page) {
    page->previous = nullptr;
    page->next = m_firstWithFreeSlots;
    if (m_firstWithFreeSlots) m_firstWithFreeSlots->previous = page;
    m_firstWithFreeSlots = page;
}

void PagedSlotPool::Unlink(Page* page) {
    if (page->previous)
        page->previous->next = page->next;
    else
        m_firstWithFreeSlots = page->next;
    if (page->next) page->next->previous = page->previous;
    page->previous = page->next = nullptr;
}

void* PagedSlotPool::Take() {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_firstWithFreeSlots == nullptr) {
        auto* page = static_cast<Page*>(m_allocatePage());
        for (std::size_t i = 0; i < kSlotsPerPage; ++i)
            SetNextFree(page->slots + i * kSlotSize, static_cast<UInt16>(i + 1));
        page->firstFree = 0;
        page->freeCount = kSlotsPerPage;
        Link(page);
        ++m_pageCount;
    }
    Page* page = m_firstWithFreeSlots;
    unsigned char* slot = page->slots + page->firstFree * kSlotSize;
    page->firstFree = NextFree(slot);
    if (--page->freeCount == 0) Unlink(page);
    return slot;
}

void PagedSlotPool::Return(void* slot) {
    if (slot == nullptr) return;
    auto* page = reinterpret_cast<Page*>(reinterpret_cast<std::uintptr_t>(slot) & ~(kPageSize - 1));
    const auto index =
        static_cast<UInt16>((static_cast<unsigned char*>(slot) - page->slots) / kSlotSize);
    std::lock_guard<std::mutex> guard(m_lock);
    SetNextFree(static_cast<unsigned char*>(slot), page->firstFree);
    page->firstFree = index;
    if (++page->freeCount == 1) Link(page);
    const bool onlyPageWithFreeSlots = page == m_firstWithFreeSlots && page->next == nullptr;
    if (page->freeCount == kSlotsPerPage && !(m_keepOneEmptyPage && onlyPageWithFreeSlots)) {
        Unlink(page);
        m_freePage(page);
        --m_pageCount;
    }
}

std::size_t PagedSlotPool::GetPageCount() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_pageCount;
}

}  // namespace Yr
