#pragma once

#include <cstddef>
#include <string>

#include "InputOutput/Status.h"
#include "Yr/Types.h"

namespace IO {

// The one seam between the library and the operating system: every system
// call goes through the instance Get() returns, so tests can install a
// wrapper that injects faults (ScopedFileSystem) without root or special
// file systems. Failures come back as statuses, never as errno.
class FileSystem {
public:
    enum class OpenMode { Read, WriteTruncate, WriteNew, ReadWrite };

    virtual ~FileSystem() = default;

    virtual Status Open(const std::string& path, OpenMode mode, int& descriptor) = 0;
    // `count` is 0 at the end of the file.
    virtual Status Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) = 0;
    // Writes all `size` bytes or fails.
    virtual Status Write(int descriptor, const void* buffer, std::size_t size) = 0;
    virtual Status Close(int descriptor) = 0;

    // Anonymous read-write pages; null when the system has none to give.
    virtual void* MapMemory(std::size_t size) = 0;
    virtual void UnmapMemory(void* address, std::size_t size) = 0;

    virtual void Sleep(Yr::UInt32 milliseconds) = 0;

    // The POSIX file system unless a test installed another.
    static FileSystem& Get();
    // Installs `fileSystem` (null restores POSIX) and returns the previous one.
    static FileSystem* Install(FileSystem* fileSystem);
};

}  // namespace IO
