#pragma once

#include <typeinfo>

#include "Common/Extension.h"
#include "Yr/Ref.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Base of classes that can be extended without being changed. Lookups use the
// run-time type of the object itself, so the most-derived class decides.
class Extensible {
public:
    virtual ~Extensible();

    // The extension registered for this object's class under `id`, or null.
    Yr::Ref<Extension> GetExtension(const std::type_info& id) const;
    Yr::Ref<Extension> GetExtension(const Yr::UniString& id) const;
    Yr::Ref<Extension> GetExtension(const char* id) const;

protected:
    Extensible() = default;
    Extensible(const Extensible&) = default;
    Extensible& operator=(const Extensible&) = default;
};

}  // namespace Morvelan::Common
