#pragma once

#include "InputOutput/FileSystem.h"

namespace IO {

// Installs a file system for the current scope and puts the previous one
// back on exit. Scopes nest; they must end in the reverse order they began.
// The installed file system is borrowed and must outlive the scope.
class ScopedFileSystem final {
public:
    explicit ScopedFileSystem(FileSystem& fileSystem)
        : m_previous(FileSystem::Install(&fileSystem)) {}
    ~ScopedFileSystem() { FileSystem::Install(m_previous); }
    ScopedFileSystem(const ScopedFileSystem&) = delete;
    ScopedFileSystem& operator=(const ScopedFileSystem&) = delete;

private:
    FileSystem* m_previous;
};

}  // namespace IO
