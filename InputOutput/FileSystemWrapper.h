#pragma once

#include "InputOutput/FileSystem.h"

namespace IO {

// Forwards every call to a target file system. Tests derive from it and
// override only the calls they want to fail or count. The target is borrowed
// and must outlive the wrapper.
class FileSystemWrapper : public FileSystem {
public:
    explicit FileSystemWrapper(FileSystem& target) : m_target(target) {}
    FileSystemWrapper(const FileSystemWrapper&) = delete;
    FileSystemWrapper& operator=(const FileSystemWrapper&) = delete;

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

protected:
    FileSystem& GetTarget() const { return m_target; }

private:
    FileSystem& m_target;
};

}  // namespace IO
