#pragma once

#include <cstddef>
#include <mutex>
#include <typeinfo>
#include <unordered_set>

#include "Common/Extension.h"
#include "Yr/HashTable.h"
#include "Yr/RecursiveLock.h"
#include "Yr/Ref.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

class ExtensionRegistrator;

// The process-wide registry of extensions. An extension is stored under the
// readable name of the extended class's run-time type plus an extension id;
// the id is a string or the readable name of a second type (an interface).
// Every operation may be called from any thread. One re-entrant lock guards
// everything, because registrators applied under it register in turn.
class ExtensionManager {
public:
    static ExtensionManager& GetInstance();

    ExtensionManager(const ExtensionManager&) = delete;
    ExtensionManager& operator=(const ExtensionManager&) = delete;
    ~ExtensionManager();

    // False, keeping the extension already there, when the key is taken.
    bool Register(const std::type_info& extendedType, const std::type_info& id,
                  const Yr::Ref<Extension>& extension);
    bool Register(const std::type_info& extendedType, const Yr::UniString& id,
                  const Yr::Ref<Extension>& extension);
    bool Register(const std::type_info& extendedType, const char* id,
                  const Yr::Ref<Extension>& extension);

    // True when the key was present. References already handed out stay valid.
    bool Revoke(const std::type_info& extendedType, const std::type_info& id);
    bool Revoke(const std::type_info& extendedType, const Yr::UniString& id);
    bool Revoke(const std::type_info& extendedType, const char* id);

    // Applies pending registrators first; null when nothing is registered.
    Yr::Ref<Extension> GetExtension(const std::type_info& extendedType, const std::type_info& id);
    Yr::Ref<Extension> GetExtension(const std::type_info& extendedType, const Yr::UniString& id);
    Yr::Ref<Extension> GetExtension(const std::type_info& extendedType, const char* id);

    // Queue a registrator for the next lookup, or cancel a queued one; false
    // when there is nothing to change.
    bool Register(ExtensionRegistrator& registrator);
    bool Revoke(ExtensionRegistrator& registrator);

    // The demangled name of a type, as keys spell it.
    static Yr::UniString GetTypeName(const std::type_info& type);

private:
    struct Key {
        Yr::UniString typeName;
        Yr::UniString id;
        bool operator==(const Key& other) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    using Registrators = std::unordered_set<ExtensionRegistrator*>;

    ExtensionManager();

    std::unique_lock<Yr::RecursiveLock> Enter();
    bool RegisterKey(const Key& key, const Yr::Ref<Extension>& extension);
    bool RevokeKey(const Key& key);
    Yr::Ref<Extension> Find(const Key& key);
    void ApplyPendingRegistrators();

    Yr::RecursiveLock m_lock;
    Yr::HashTable<Key, Yr::Ref<Extension>, KeyHash> m_extensions;
    Registrators m_pendingRegistrations;
    Registrators m_pendingRevocations;
    Registrators m_appliedRegistrators;
};

}  // namespace Morvelan::Common
