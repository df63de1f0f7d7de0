#pragma once

namespace Morvelan::Common {

class ExtensionManager;

// Makes a set of registrations on behalf of its owner. Handed to the manager
// early (even during static initialisation, before the extensions can be
// built) and applied at the manager's next lookup. The manager keeps only a
// pointer: a registrator must outlive its registration with the manager.
class ExtensionRegistrator {
public:
    virtual ~ExtensionRegistrator();

    // Registers this registrator's extensions; true when it now counts as applied.
    virtual bool Register(ExtensionManager& manager) = 0;
    // Revokes them again; true when it no longer counts as applied.
    virtual bool Revoke(ExtensionManager& manager) = 0;

protected:
    ExtensionRegistrator() = default;
    ExtensionRegistrator(const ExtensionRegistrator&) = default;
    ExtensionRegistrator& operator=(const ExtensionRegistrator&) = default;
};

}  // namespace Morvelan::Common
