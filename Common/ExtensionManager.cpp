#include "Common/ExtensionManager.h"

#include <cxxabi.h>

#include <atomic>
#include <cstdlib>
#include <system_error>

#include "Common/ExtensionRegistrator.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/Lock.h"
#include "Yr/SingletonLock.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/ExtensionManager";

// Deletes the instance when the library is unloaded.
struct InstanceHolder {
    ~InstanceHolder() { delete instance.exchange(nullptr); }
    std::atomic<ExtensionManager*> instance{nullptr};
};
constinit InstanceHolder g_holder;

void ThrowInvalidId(const char* message, Yr::UInt32 line) {
    throw Yr::IllegalArgumentException(message, kSourceUnit, line, Yr::kIllegalArgumentErrorCode);
}

const Yr::UniString& CheckId(const Yr::UniString& id) {
    if (id.IsEmpty()) ThrowInvalidId("Invalid extension id: id is empty.", __LINE__);
    return id;
}

Yr::UniString CheckId(const char* id) {
    if (id == nullptr) ThrowInvalidId("Invalid extension id: id is null.", __LINE__);
    return CheckId(Yr::UniString(id));
}

void CheckExtension(const Yr::Ref<Extension>& extension) {
    if (extension.IsNull())
        throw Yr::IllegalArgumentException("Invalid extension: extension is null.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
}

}  // namespace

std::size_t ExtensionManager::KeyHash::operator()(const Key& key) const {
    return (key.typeName.GenerateHashValue() + 629u) * 37u + key.id.GenerateHashValue();
}

ExtensionManager::ExtensionManager() = default;
ExtensionManager::~ExtensionManager() = default;

ExtensionManager& ExtensionManager::GetInstance() {
    ExtensionManager* manager = g_holder.instance.load(std::memory_order_acquire);
    if (manager == nullptr) {
        Yr::Locker<Yr::RecursiveLock> locker(Yr::SingletonLock::GetLock());
        manager = g_holder.instance.load(std::memory_order_relaxed);
        if (manager == nullptr) {
            manager = new ExtensionManager;
            g_holder.instance.store(manager, std::memory_order_release);
        }
    }
    return *manager;
}

Yr::UniString ExtensionManager::GetTypeName(const std::type_info& type) {
    int status = 0;
    char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    // The mangled name is unique too: good enough when demangling fails.
    Yr::UniString name = Yr::UniString::FromUtf8Replacing(status == 0 ? demangled : type.name());
    std::free(demangled);
    return name;
}

bool ExtensionManager::Register(const std::type_info& extendedType, const std::type_info& id,
                                const Yr::Ref<Extension>& extension) {
    CheckExtension(extension);
    return RegisterKey({GetTypeName(extendedType), GetTypeName(id)}, extension);
}

bool ExtensionManager::Register(const std::type_info& extendedType, const Yr::UniString& id,
                                const Yr::Ref<Extension>& extension) {
    CheckExtension(extension);
    return RegisterKey({GetTypeName(extendedType), CheckId(id)}, extension);
}

bool ExtensionManager::Register(const std::type_info& extendedType, const char* id,
                                const Yr::Ref<Extension>& extension) {
    CheckExtension(extension);
    return RegisterKey({GetTypeName(extendedType), CheckId(id)}, extension);
}

bool ExtensionManager::Revoke(const std::type_info& extendedType, const std::type_info& id) {
    return RevokeKey({GetTypeName(extendedType), GetTypeName(id)});
}

bool ExtensionManager::Revoke(const std::type_info& extendedType, const Yr::UniString& id) {
    return RevokeKey({GetTypeName(extendedType), CheckId(id)});
}

bool ExtensionManager::Revoke(const std::type_info& extendedType, const char* id) {
    return RevokeKey({GetTypeName(extendedType), CheckId(id)});
}

Yr::Ref<Extension> ExtensionManager::GetExtension(const std::type_info& extendedType,
                                                  const std::type_info& id) {
    return Find({GetTypeName(extendedType), GetTypeName(id)});
}

Yr::Ref<Extension> ExtensionManager::GetExtension(const std::type_info& extendedType,
                                                  const Yr::UniString& id) {
    return Find({GetTypeName(extendedType), CheckId(id)});
}

Yr::Ref<Extension> ExtensionManager::GetExtension(const std::type_info& extendedType,
                                                  const char* id) {
    return Find({GetTypeName(extendedType), CheckId(id)});
}

bool ExtensionManager::Register(ExtensionRegistrator& registrator) {
    const auto lock = Enter();
    if (m_pendingRegistrations.contains(&registrator)) return false;
    if (m_pendingRevocations.erase(&registrator) != 0) return true;
    if (m_appliedRegistrators.contains(&registrator)) return false;
    m_pendingRegistrations.insert(&registrator);
    return true;
}

bool ExtensionManager::Revoke(ExtensionRegistrator& registrator) {
    const auto lock = Enter();
    if (m_pendingRegistrations.erase(&registrator) != 0) return true;
    if (m_pendingRevocations.contains(&registrator)) return false;
    if (!m_appliedRegistrators.contains(&registrator)) return false;
    m_pendingRevocations.insert(&registrator);
    return true;
}

std::unique_lock<Yr::RecursiveLock> ExtensionManager::Enter() {
    try {
        return std::unique_lock<Yr::RecursiveLock>(m_lock);
    } catch (const std::system_error& error) {
        throw Yr::SynchronizationException(
            "Failed to acquire fast lock: failed to enter critical section.", kSourceUnit, __LINE__,
            error.code().value());
    }
}

bool ExtensionManager::RegisterKey(const Key& key, const Yr::Ref<Extension>& extension) {
    const auto lock = Enter();
    if (m_extensions.Contains(key)) return false;
    return m_extensions.Put(key, extension);
}

bool ExtensionManager::RevokeKey(const Key& key) {
    // The revoked reference is released after the lock: an extension's
    // destructor may itself call the manager.
    Yr::Ref<Extension> revoked;
    const auto lock = Enter();
    if (!m_extensions.TryGet(key, revoked)) return false;
    return m_extensions.Remove(key);
}

Yr::Ref<Extension> ExtensionManager::Find(const Key& key) {
    const auto lock = Enter();
    ApplyPendingRegistrators();
    Yr::Ref<Extension> extension;
    m_extensions.TryGet(key, extension);
    return extension;
}

// Takes one registrator out of its queue before calling it, so a registrator
// that looks up or queues others while being applied is still applied once.
void ExtensionManager::ApplyPendingRegistrators() {
    while (!m_pendingRegistrations.empty()) {
        ExtensionRegistrator* registrator = *m_pendingRegistrations.begin();
        m_pendingRegistrations.erase(m_pendingRegistrations.begin());
        if (registrator->Register(*this)) m_appliedRegistrators.insert(registrator);
    }
    while (!m_pendingRevocations.empty()) {
        ExtensionRegistrator* registrator = *m_pendingRevocations.begin();
        m_pendingRevocations.erase(m_pendingRevocations.begin());
        if (registrator->Revoke(*this)) m_appliedRegistrators.erase(registrator);
    }
}

}  // namespace Morvelan::Common
