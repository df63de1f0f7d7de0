#pragma once

#include "Common/IO/FileShare.h"
#include "InputOutput/FileSystem.h"

namespace Morvelan::Common::IO {

// Advisory locks stand in for sharing: an exclusive lock keeps every other
// locker out, a shared one lets readers in, and sharing writes needs no lock.
inline ::IO::Status LockForShare(int descriptor, FileShare share) {
    using ::IO::FileSystem;
    if (share == FileShare::None)
        return FileSystem::Get().Lock(descriptor, FileSystem::LockMode::Exclusive);
    if (share == FileShare::Read)
        return FileSystem::Get().Lock(descriptor, FileSystem::LockMode::Shared);
    return ::IO::kSuccess;
}

}  // namespace Morvelan::Common::IO
