#pragma once

namespace Morvelan::Common {

// Base of the behaviour attached to a class through the ExtensionManager.
// Extensions are shared through Yr::Ref<Extension>, so the destructor is virtual.
class Extension {
public:
    virtual ~Extension();

protected:
    Extension() = default;
    Extension(const Extension&) = default;
    Extension& operator=(const Extension&) = default;
};

}  // namespace Morvelan::Common
