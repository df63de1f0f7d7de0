#pragma once

#include "Yr/PagedArray.h"
#include "Yr/Types.h"

namespace Yr {
class OBinaryChannel;
}

namespace Morvelan::Common::IO {

// A byte store addressed by 32-bit offsets, held in 512 KiB pages so that
// growing never copies earlier pages. Only the last page may be smaller than
// a full page; it is enlarged (copying its bytes) before a page is added.
// Pages come from StandardMemoryAllocator. One thread at a time.
class PagedBuffer final {
public:
    static constexpr Yr::UInt32 kPageBits = 19;
    static constexpr Yr::UInt32 kPageSize = Yr::UInt32{1} << kPageBits;
    // 4 GiB less one page: the largest size a UInt32 offset can address.
    static constexpr Yr::UInt32 kMaximumSize = Yr::UInt32(0) - kPageSize;

    PagedBuffer();
    ~PagedBuffer();
    PagedBuffer(const PagedBuffer&) = delete;
    PagedBuffer& operator=(const PagedBuffer&) = delete;

    Yr::UInt32 GetSize() const;
    // Bytes the allocated pages hold, used or not.
    Yr::UInt64 GetCapacity() const;
    // Copies up to `size` bytes from `offset`; the count copied, 0 at or past the end.
    Yr::UInt32 Read(Yr::UInt32 offset, char* buffer, Yr::UInt32 size) const;
    // Overwrites and extends; a gap between the old end and `offset` reads as
    // zeros. Past kMaximumSize throws Yr::OutOfMemoryException.
    void Write(Yr::UInt32 offset, const char* data, Yr::UInt32 size);
    // Extends to `size` bytes with zeros; a smaller size changes nothing.
    void Grow(Yr::UInt32 size);
    // Drops the bytes from `size` on, keeping the pages.
    void Truncate(Yr::UInt32 size);
    // Releases every page.
    void Clear();
    // Writes `size` bytes from `offset` to `output`, page piece by page piece.
    void WriteTo(Yr::OBinaryChannel& output, Yr::UInt32 offset, Yr::UInt32 size) const;

private:
    struct Page {
        Yr::UInt32 allocated = 0;
        Yr::UInt32 used = 0;
        char* memory = nullptr;
    };

    Yr::UInt32 GetPageCount() const;
    Page& GetPage(Yr::UInt32 index);
    const Page& GetPage(Yr::UInt32 index) const;
    // Makes the pages hold at least `end` bytes.
    void Reserve(Yr::UInt64 end);
    void AddPage(Yr::UInt32 allocated);
    static void Enlarge(Page& page, Yr::UInt32 allocated);
    // Copies `data` (zeros when null) to `offset`; the pages are reserved.
    void Put(Yr::UInt32 offset, const char* data, Yr::UInt32 size);

    Page m_first;                    // most buffers stay within one page
    Yr::PagedArray<Page, 3> m_rest;  // pages from the second on
    Yr::UInt32 m_size = 0;
};

}  // namespace Morvelan::Common::IO
