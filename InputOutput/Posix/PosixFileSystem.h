#pragma once

#include "InputOutput/FileSystem.h"

namespace IO {

// The library's only door to the operating system: open, read, write, close,
// lstat, stat, readlink, getcwd, realpath, mmap, munmap and nanosleep live
// here and nowhere else. Interrupted calls are retried; errno is turned into
// a Status in one place. Stateless, so one instance may serve every thread.
class PosixFileSystem final : public FileSystem {
public:
    Status Open(const std::string& path, OpenMode mode, int& descriptor) override;
    Status Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) override;
    Status Write(int descriptor, const void* buffer, std::size_t size) override;
    Status Close(int descriptor) override;

    Status GetEntryInfo(const std::string& path, EntryInfo& info) override;
    Status GetProgramPath(std::string& path) override;
    Status GetWorkingFolder(std::string& path) override;
    Status ResolvePath(const std::string& path, std::string& resolved) override;

    void* MapMemory(std::size_t size) override;
    void UnmapMemory(void* address, std::size_t size) override;

    void Sleep(Yr::UInt32 milliseconds) override;
};

}  // namespace IO
