#include "InputOutput/FileSystemWrapper.h"

namespace IO {

Status FileSystemWrapper::Open(const std::string& path, OpenMode mode, int& descriptor) {
    return m_target.Open(path, mode, descriptor);
}

Status FileSystemWrapper::Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) {
    return m_target.Read(descriptor, buffer, size, count);
}

Status FileSystemWrapper::Write(int descriptor, const void* buffer, std::size_t size) {
    return m_target.Write(descriptor, buffer, size);
}

Status FileSystemWrapper::ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                                 std::size_t& count) {
    return m_target.ReadAt(descriptor, offset, buffer, size, count);
}

Status FileSystemWrapper::WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                                  std::size_t size) {
    return m_target.WriteAt(descriptor, offset, buffer, size);
}

Status FileSystemWrapper::Close(int descriptor) {
    return m_target.Close(descriptor);
}

Status FileSystemWrapper::Seek(int descriptor, Yr::Int64 offset, SeekOrigin origin,
                               Yr::UInt64& position) {
    return m_target.Seek(descriptor, offset, origin, position);
}

Status FileSystemWrapper::GetSize(int descriptor, Yr::UInt64& size) {
    return m_target.GetSize(descriptor, size);
}

Status FileSystemWrapper::Truncate(int descriptor, Yr::UInt64 size) {
    return m_target.Truncate(descriptor, size);
}

Status FileSystemWrapper::Lock(int descriptor, LockMode mode) {
    return m_target.Lock(descriptor, mode);
}

Status FileSystemWrapper::GetEntryInfo(const std::string& path, EntryInfo& info) {
    return m_target.GetEntryInfo(path, info);
}

Status FileSystemWrapper::GetProgramPath(std::string& path) {
    return m_target.GetProgramPath(path);
}

Status FileSystemWrapper::GetWorkingFolder(std::string& path) {
    return m_target.GetWorkingFolder(path);
}

Status FileSystemWrapper::ResolvePath(const std::string& path, std::string& resolved) {
    return m_target.ResolvePath(path, resolved);
}

Status FileSystemWrapper::CreateFolder(const std::string& path) {
    return m_target.CreateFolder(path);
}

Status FileSystemWrapper::RemoveFile(const std::string& path) {
    return m_target.RemoveFile(path);
}

Status FileSystemWrapper::RemoveFolder(const std::string& path) {
    return m_target.RemoveFolder(path);
}

Status FileSystemWrapper::Rename(const std::string& source, const std::string& target) {
    return m_target.Rename(source, target);
}

Status FileSystemWrapper::Exchange(const std::string& first, const std::string& second) {
    return m_target.Exchange(first, second);
}

Status FileSystemWrapper::CopyFile(const std::string& source, const std::string& target) {
    return m_target.CopyFile(source, target);
}

Status FileSystemWrapper::FlushFile(const std::string& path) {
    return m_target.FlushFile(path);
}

Status FileSystemWrapper::FlushDescriptor(int descriptor) {
    return m_target.FlushDescriptor(descriptor);
}

Status FileSystemWrapper::FlushFolder(const std::string& path) {
    return m_target.FlushFolder(path);
}

Status FileSystemWrapper::EvictFromCache(const std::string& path) {
    return m_target.EvictFromCache(path);
}

Status FileSystemWrapper::ListFolder(const std::string& path, std::vector<std::string>& names) {
    return m_target.ListFolder(path, names);
}

Status FileSystemWrapper::GetSpace(const std::string& path, Yr::UInt64& free, Yr::UInt64& used) {
    return m_target.GetSpace(path, free, used);
}

void* FileSystemWrapper::MapMemory(std::size_t size) {
    return m_target.MapMemory(size);
}

void FileSystemWrapper::UnmapMemory(void* address, std::size_t size) {
    m_target.UnmapMemory(address, size);
}

void FileSystemWrapper::Sleep(Yr::UInt32 milliseconds) {
    m_target.Sleep(milliseconds);
}

}  // namespace IO
