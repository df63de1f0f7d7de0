#include "Common/Extensible.h"

#include "Common/ExtensionManager.h"

namespace Morvelan::Common {

Extensible::~Extensible() = default;

Yr::Ref<Extension> Extensible::GetExtension(const std::type_info& id) const {
    return ExtensionManager::GetInstance().GetExtension(typeid(*this), id);
}

Yr::Ref<Extension> Extensible::GetExtension(const Yr::UniString& id) const {
    return ExtensionManager::GetInstance().GetExtension(typeid(*this), id);
}

Yr::Ref<Extension> Extensible::GetExtension(const char* id) const {
    return ExtensionManager::GetInstance().GetExtension(typeid(*this), id);
}

}  // namespace Morvelan::Common
