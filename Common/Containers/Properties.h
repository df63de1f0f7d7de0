#pragma once

#include "Yr/HashTable.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::Containers {

// Named string properties held by value. Keys are never empty; values may be.
// Every operation that takes a key throws IllegalArgumentException for an
// empty one, so an empty key never reaches the table.
class Properties {
public:
    using Table = Yr::HashTable<Yr::UniString, Yr::UniString>;

    Properties();
    Properties(const Properties& other);
    Properties(Properties&& other) noexcept;
    Properties& operator=(const Properties& other);
    Properties& operator=(Properties&& other) noexcept;
    ~Properties();

    // Inserts or replaces.
    void SetProperty(const Yr::UniString& key, const Yr::UniString& value);
    // The value, or an empty string when absent.
    Yr::UniString GetProperty(const Yr::UniString& key) const;
    // The stored value, or `defaultValue` itself when absent: the caller must
    // keep the default alive as long as it uses the result.
    const Yr::UniString& GetProperty(const Yr::UniString& key,
                                     const Yr::UniString& defaultValue) const;
    // True and `value` set when present; `value` untouched when absent.
    bool GetProperty(const Yr::UniString& key, Yr::UniString& value) const;
    bool HasProperty(const Yr::UniString& key) const;
    // Removing an absent key is no error.
    void RemoveProperty(const Yr::UniString& key);
    void Clear();

    unsigned int GetSize() const;
    bool IsEmpty() const { return m_table.GetCount() == 0; }
    void Swap(Properties& other) noexcept;
    // Iteration order is arbitrary.
    const Table& GetProperties() const { return m_table; }

    bool operator==(const Properties& other) const;
    bool operator!=(const Properties& other) const { return !(*this == other); }

private:
    Table m_table;
};

}  // namespace Morvelan::Common::Containers
