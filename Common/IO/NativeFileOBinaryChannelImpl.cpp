#include "Common/IO/NativeFileOBinaryChannelImpl.h"

#include <cerrno>

#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/DiskFullException.h"
#include "Common/IO/FileAlreadyExistsException.h"
#include "Common/IO/FileShareLock.h"
#include "Common/IO/NotFileException.h"
#include "InputOutput/FileSystem.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using ::IO::FileSystem;
using ::IO::Status;

constexpr const char* kSourceUnit = "Common/IO/NativeFileOBinaryChannelImpl";
constexpr Status kSystemErrorMask = 0xFFFF0000;
constexpr Status kFileExists = ::IO::kSystemErrorBase | EEXIST;

// Messages carry the errno when the seam kept one, else the status itself.
int ErrorNumber(Status status) {
    if ((status & kSystemErrorMask) == ::IO::kSystemErrorBase)
        return static_cast<int>(status & ~kSystemErrorMask);
    return static_cast<int>(status);
}

bool IsDiskFull(Status status) {
    return status == ::IO::kDiskFull || status == ::IO::kFileSystemDiskFull;
}

[[noreturn]] void ThrowOpenFailure(const std::string& path, Status status) {
    const Yr::UniString quoted(path.c_str());
    if (status == ::IO::kFileAccessDenied || status == ::IO::kFileSystemAccessDenied)
        throw AccessDeniedException(
            Yr::UniString::Printf("Access is denied to file: '%T'.", quoted), kSourceUnit, __LINE__,
            Yr::kIOErrorCode);
    if (status == kFileExists)
        throw FileAlreadyExistsException(
            Yr::UniString::Printf("File already exists: '%T'.", quoted), kSourceUnit, __LINE__,
            Yr::kIOErrorCode);
    throw Yr::IOException(
        Yr::UniString::Printf("Open is failed. (Error code: %d)", ErrorNumber(status)), kSourceUnit,
        __LINE__, Yr::kIOErrorCode);
}

void CheckOpenStatus(const std::string& path, Status status) {
    if (status != ::IO::kSuccess) ThrowOpenFailure(path, status);
}

FileSystem::EntryInfo GetEntryInfo(const std::string& path) {
    FileSystem::EntryInfo info;
    CheckOpenStatus(path, FileSystem::Get().GetEntryInfo(path, info));
    return info;
}

void CheckCanOpen(const std::string& path, const FileSystem::EntryInfo& info,
                  const FileOutputOptions& options) {
    const Yr::UniString quoted(path.c_str());
    if (info.exists && info.isFolder)
        throw NotFileException(Yr::UniString::Printf("Not a file: '%T'.", quoted), kSourceUnit,
                               __LINE__, Yr::kIOErrorCode);
    if (info.exists && options.GetCreationMode() == FileCreationMode::CreationNew)
        throw FileAlreadyExistsException(
            Yr::UniString::Printf("File already exists: '%T'.", quoted), kSourceUnit, __LINE__,
            Yr::kIOErrorCode);
}

}  // namespace

NativeFileOBinaryChannelImpl::~NativeFileOBinaryChannelImpl() {
    if (m_opened) FileSystem::Get().Close(m_descriptor);
}

void NativeFileOBinaryChannelImpl::Open(const std::string& path, const FileOutputOptions& options) {
    m_path = path;
    const FileSystem::EntryInfo info = GetEntryInfo(path);
    CheckCanOpen(path, info, options);
    const int descriptor = OpenDescriptor(info.exists, options);
    try {
        Prepare(descriptor, options);
    } catch (...) {
        FileSystem::Get().Close(descriptor);
        throw;
    }
    m_descriptor = descriptor;
    m_opened = true;
}

void NativeFileOBinaryChannelImpl::Adopt(int descriptor) {
    Yr::UInt64 size = 0;
    if (descriptor < 0 || FileSystem::Get().GetSize(descriptor, size) != ::IO::kSuccess)
        throw Yr::IllegalArgumentException("Invalid file descriptor.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const Status status = FileSystem::Get().ResolvePath(link, m_path);
    if (status != ::IO::kSuccess)
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to get file name from file descriptor. (Error code: %d)",
                                  ErrorNumber(status)),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    m_descriptor = descriptor;
    m_opened = true;
}

void NativeFileOBinaryChannelImpl::Write(const char* buffer, Yr::UInt32 size) {
    CheckOpened();
    const Status status = FileSystem::Get().Write(m_descriptor, buffer, size);
    if (status == ::IO::kSuccess) return;
    if (IsDiskFull(status))
        throw DiskFullException("Disk is full.", kSourceUnit, __LINE__, Yr::kIOErrorCode);
    throw Yr::IOException(
        Yr::UniString::Printf("Write is failed. (Error code: %d)", ErrorNumber(status)),
        kSourceUnit, __LINE__, Yr::kIOErrorCode);
}

void NativeFileOBinaryChannelImpl::Sync() {
    CheckOpened();
    const Status status = FileSystem::Get().FlushDescriptor(m_descriptor);
    if (status == ::IO::kSuccess) return;
    if (IsDiskFull(status))
        throw DiskFullException("Disk is full.", kSourceUnit, __LINE__, Yr::kIOErrorCode);
    throw Yr::IOException(
        Yr::UniString::Printf("Sync is failed. (Error code: %d)", ErrorNumber(status)), kSourceUnit,
        __LINE__, Yr::kIOErrorCode);
}

void NativeFileOBinaryChannelImpl::Close() {
    if (!m_opened) return;
    m_opened = false;
    FileSystem::Get().Close(m_descriptor);
}

void NativeFileOBinaryChannelImpl::CheckOpened() const {
    if (!m_opened)
        throw Yr::IOException("Native file output channel is closed.", kSourceUnit, __LINE__,
                              Yr::kIOErrorCode);
}

// A missing file is created exclusively; one that appears meanwhile is
// opened as it is unless the caller insisted on a new file.
int NativeFileOBinaryChannelImpl::OpenDescriptor(bool exists,
                                                 const FileOutputOptions& options) const {
    FileSystem& fileSystem = FileSystem::Get();
    int descriptor = -1;
    Status status = kFileExists;
    if (!exists) status = fileSystem.Open(m_path, FileSystem::OpenMode::WriteNew, descriptor);
    if (status == kFileExists && options.GetCreationMode() != FileCreationMode::CreationNew)
        status = fileSystem.Open(m_path, FileSystem::OpenMode::Write, descriptor);
    CheckOpenStatus(m_path, status);
    return descriptor;
}

// Truncating only once the lock is ours leaves a file someone holds untouched.
void NativeFileOBinaryChannelImpl::Prepare(int descriptor, const FileOutputOptions& options) const {
    FileSystem& fileSystem = FileSystem::Get();
    CheckOpenStatus(m_path, LockForShare(descriptor, options.GetShare()));
    if (options.GetWriteMode() == FileWriteMode::Truncate) {
        CheckOpenStatus(m_path, fileSystem.Truncate(descriptor, 0));
        return;
    }
    Yr::UInt64 end = 0;
    const Status status = fileSystem.Seek(descriptor, 0, FileSystem::SeekOrigin::End, end);
    if (status != ::IO::kSuccess)
        throw Yr::IOException(Yr::UniString::Printf("Set file pointer is failed. (Error code: %d)",
                                                    ErrorNumber(status)),
                              kSourceUnit, __LINE__, Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
