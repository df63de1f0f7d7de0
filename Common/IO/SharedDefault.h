#pragma once

#include <atomic>
#include <new>

#include "Yr/Lock.h"
#include "Yr/MemoryManager.h"
#include "Yr/RecursiveLock.h"
#include "Yr/SingletonLock.h"

namespace Morvelan::Common::IO {

// A lazily made, process-wide default value. Made once under the singleton
// lock (tested before and after taking it, so later calls take no lock),
// placed in memory from the base layer's memory manager and released when the
// library is unloaded. Declare instances `constinit` at namespace scope so
// they exist before any other static initializer can ask for them.
template <class Value>
class SharedDefault {
public:
    constexpr SharedDefault() = default;
    SharedDefault(const SharedDefault&) = delete;
    SharedDefault& operator=(const SharedDefault&) = delete;
    ~SharedDefault() { Release(); }

    template <class Make>
    const Value& Get(Make make) {
        const Value* value = m_value.load(std::memory_order_acquire);
        if (value == nullptr) {
            Yr::Locker<Yr::RecursiveLock> locker(Yr::SingletonLock::GetLock());
            value = m_value.load(std::memory_order_relaxed);
            if (value == nullptr) {
                value = Create(make);
                m_value.store(value, std::memory_order_release);
            }
        }
        return *value;
    }

private:
    template <class Make>
    static const Value* Create(Make& make) {
        void* memory = Yr::MemoryManager::Allocate(sizeof(Value));
        try {
            return new (memory) Value(make());
        } catch (...) {
            Yr::MemoryManager::Free(memory);
            throw;
        }
    }

    void Release() {
        const Value* value = m_value.exchange(nullptr);
        if (value != nullptr) {
            value->~Value();
            Yr::MemoryManager::Free(const_cast<Value*>(value));
        }
    }

    std::atomic<const Value*> m_value{nullptr};
};

}  // namespace Morvelan::Common::IO
