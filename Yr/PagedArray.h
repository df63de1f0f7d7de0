#pragma once

#include <cstddef>
#include <deque>
#include <utility>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Yr {

// A growable array whose elements never move: growth adds blocks instead of
// reallocating, so references and pointers to elements stay valid until the
// array is cleared or destroyed. Indices are checked. One thread at a time.
// `PageBits` names the array type as callers spell it (elements per block as
// a power of two); the deque picks its own block size.
template <class T, unsigned PageBits = 8>
class PagedArray {
public:
    // Appends an element built from `args` and returns it.
    template <class... Args>
    T& Add(Args&&... args) {
        return m_items.emplace_back(std::forward<Args>(args)...);
    }

    T& operator[](std::size_t index) { return m_items[CheckIndex(index)]; }
    const T& operator[](std::size_t index) const { return m_items[CheckIndex(index)]; }

    std::size_t GetCount() const { return m_items.size(); }
    bool IsEmpty() const { return m_items.empty(); }
    void Clear() { m_items.clear(); }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    static constexpr const char* kSourceUnit = "Yr/PagedArray";

    std::size_t CheckIndex(std::size_t index) const {
        if (index >= m_items.size())
            throw IllegalArgumentException("Invalid index: index is out of range.", kSourceUnit,
                                           __LINE__, kIllegalArgumentErrorCode);
        return index;
    }

    std::deque<T> m_items;
};

}  // namespace Yr
