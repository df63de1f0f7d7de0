#include "InputOutput/FileSystem.h"

#include <atomic>

#include "InputOutput/Posix/PosixFileSystem.h"

namespace IO {
namespace {

// Never destroyed: statics of other units may still do I/O after main.
FileSystem& DefaultFileSystem() {
    static FileSystem* fileSystem = new PosixFileSystem;
    return *fileSystem;
}

// Null until a test installs one; constant-initialised, so safe before main.
std::atomic<FileSystem*> g_installed{nullptr};

}  // namespace

FileSystem& FileSystem::Get() {
    FileSystem* installed = g_installed.load(std::memory_order_acquire);
    return installed ? *installed : DefaultFileSystem();
}

FileSystem* FileSystem::Install(FileSystem* fileSystem) {
    FileSystem* previous = g_installed.exchange(fileSystem, std::memory_order_acq_rel);
    return previous ? previous : &DefaultFileSystem();
}

}  // namespace IO
