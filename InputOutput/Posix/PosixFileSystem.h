#pragma once

#include "InputOutput/FileSystem.h"

namespace IO {

// The library's only door to the operating system: open, read, write, close,
// lseek, fstat, ftruncate, flock, lstat, stat, readlink, getcwd, realpath, mkdir, unlink, rmdir,
// rename, renameat2, copy_file_range, fsync, posix_fadvise, readdir, statvfs, mmap, munmap and
// nanosleep live here and nowhere else. Interrupted calls are retried; errno is turned into a
// Status in one place. Stateless, so one instance may serve every thread.
class PosixFileSystem final : public FileSystem {
public:
    Status Open(const std::string& path, OpenMode mode, int& descriptor) override;
    Status Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) override;
    Status Write(int descriptor, const void* buffer, std::size_t size) override;
    Status ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                  std::size_t& count) override;
    Status WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                   std::size_t size) override;
    Status Close(int descriptor) override;
    Status Seek(int descriptor, Yr::Int64 offset, SeekOrigin origin, Yr::UInt64& position) override;
    Status GetSize(int descriptor, Yr::UInt64& size) override;
    Status Truncate(int descriptor, Yr::UInt64 size) override;
    Status Lock(int descriptor, LockMode mode) override;

    Status GetEntryInfo(const std::string& path, EntryInfo& info) override;
    Status GetProgramPath(std::string& path) override;
    Status GetWorkingFolder(std::string& path) override;
    Status ResolvePath(const std::string& path, std::string& resolved) override;

    Status CreateFolder(const std::string& path) override;
    Status RemoveFile(const std::string& path) override;
    Status RemoveFolder(const std::string& path) override;
    Status Rename(const std::string& source, const std::string& target) override;
    Status Exchange(const std::string& first, const std::string& second) override;
    Status CopyFile(const std::string& source, const std::string& target) override;
    Status FlushFile(const std::string& path) override;
    Status FlushDescriptor(int descriptor) override;
    Status FlushFolder(const std::string& path) override;
    Status EvictFromCache(const std::string& path) override;
    Status ListFolder(const std::string& path, std::vector<std::string>& names) override;
    Status GetSpace(const std::string& path, Yr::UInt64& free, Yr::UInt64& used) override;

    void* MapMemory(std::size_t size) override;
    void UnmapMemory(void* address, std::size_t size) override;

    void Sleep(Yr::UInt32 milliseconds) override;
};

}  // namespace IO
