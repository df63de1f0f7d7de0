#pragma once

#include <type_traits>
#include <utility>

#include "Yr/AtomicCounter.h"

namespace Yr {

[[noreturn]] void ThrowNullReference(const char* sourceFile, UInt32 line);

// Tag for a Ref that refers to an object without owning it.
struct NotOwned {
    explicit NotOwned() = default;
};

// Shared ownership of a heap object through a separately allocated counter,
// updated atomically so a Ref may be released from any thread. The last
// owner deletes the object. A Ref made with NotOwned has no counter and
// never deletes: it lends an object that its caller keeps alive to code that
// takes Refs. Dereferencing an empty Ref throws NullReferenceException.
template <class T, class Counter = AtomicCounter>
class Ref {
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept {}  // NOLINT: an empty Ref is spelt nullptr
    // Takes ownership; if the counter cannot be allocated the object is deleted.
    explicit Ref(T* object) : m_object(object) {
        if (object == nullptr) return;
        try {
            m_counter = new Counter(1);
        } catch (...) {
            delete object;
            throw;
        }
    }
    Ref(T& object, NotOwned) noexcept : m_object(&object) {}

    Ref(const Ref& other) noexcept : m_object(other.m_object), m_counter(other.m_counter) {
        Acquire();
    }
    Ref(Ref&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr)),
          m_counter(std::exchange(other.m_counter, nullptr)) {}
    template <class U, std::enable_if_t<std::is_convertible_v<U*, T*>, int> = 0>
    Ref(const Ref<U, Counter>& other) noexcept  // NOLINT: upcasts are implicit, as for pointers
        : m_object(other.m_object), m_counter(other.m_counter) {
        Acquire();
    }
    template <class U, std::enable_if_t<std::is_convertible_v<U*, T*>, int> = 0>
    Ref(Ref<U, Counter>&& other) noexcept  // NOLINT
        : m_object(std::exchange(other.m_object, nullptr)),
          m_counter(std::exchange(other.m_counter, nullptr)) {}

    ~Ref() { Release(); }

    Ref& operator=(Ref other) noexcept {
        Swap(other);
        return *this;
    }

    void Swap(Ref& other) noexcept {
        std::swap(m_object, other.m_object);
        std::swap(m_counter, other.m_counter);
    }
    void Reset() noexcept { Ref().Swap(*this); }

    T* Get() const noexcept { return m_object; }
    bool IsNull() const noexcept { return m_object == nullptr; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    // False for a Ref made with NotOwned.
    bool IsOwning() const noexcept { return m_counter != nullptr; }

    T& operator*() const {
        if (m_object == nullptr) ThrowNullReference("Yr/Ref", __LINE__);
        return *m_object;
    }
    T* operator->() const { return &**this; }

    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.m_object == b.m_object; }

private:
    template <class, class>
    friend class Ref;

    void Acquire() noexcept {
        if (m_counter) m_counter->Increment();
    }
    void Release() noexcept {
        if (m_counter && m_counter->Decrement() == 0) {
            delete m_object;
            delete m_counter;
        }
        m_object = nullptr;
        m_counter = nullptr;
    }

    T* m_object = nullptr;
    Counter* m_counter = nullptr;
};

// Builds an owned object in place.
template <class T, class... Args>
Ref<T> MakeRef(Args&&... args) {
    return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace Yr
