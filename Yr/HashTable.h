#pragma once

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>

namespace Yr {

// A map from keys to values with the base layer's operation names. Pointers
// returned by Get stay valid until that key is removed or the table cleared;
// iteration order is unspecified. One thread at a time.
template <class Key, class Value, class Hash = std::hash<Key>>
class HashTable {
public:
    using Map = std::unordered_map<Key, Value, Hash>;

    // Inserts or replaces; true when the key was not present before.
    bool Put(const Key& key, Value value) {
        auto [position, inserted] = m_map.try_emplace(key, std::move(value));
        if (!inserted) position->second = std::move(value);
        return inserted;
    }

    // The value stored under `key`, or null.
    Value* Get(const Key& key) {
        const auto position = m_map.find(key);
        return position == m_map.end() ? nullptr : &position->second;
    }
    const Value* Get(const Key& key) const {
        const auto position = m_map.find(key);
        return position == m_map.end() ? nullptr : &position->second;
    }

    // Copies the value stored under `key` into `value`; false, and `value`
    // untouched, when there is none.
    bool TryGet(const Key& key, Value& value) const {
        const Value* found = Get(key);
        if (found == nullptr) return false;
        value = *found;
        return true;
    }

    // True when the key was present.
    bool Remove(const Key& key) { return m_map.erase(key) != 0; }
    bool Contains(const Key& key) const { return m_map.find(key) != m_map.end(); }
    std::size_t GetCount() const { return m_map.size(); }
    void Clear() { m_map.clear(); }

    // Elements are std::pair<const Key, Value>.
    typename Map::iterator begin() { return m_map.begin(); }
    typename Map::iterator end() { return m_map.end(); }
    typename Map::const_iterator begin() const { return m_map.begin(); }
    typename Map::const_iterator end() const { return m_map.end(); }

private:
    Map m_map;
};

}  // namespace Yr
