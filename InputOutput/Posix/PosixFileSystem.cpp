#include "InputOutput/Posix/PosixFileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <vector>

namespace IO {
namespace {

// Files are created readable and writable by everyone the umask allows.
constexpr mode_t kCreationPermissions = 0666;

Status StatusFromErrno(int error) {
    switch (error) {
        case ENOENT:
            return kFileNotFound;
        case ENOTDIR:
            return kNotFolder;
        case EISDIR:
            return kNotFile;
        case EACCES:
        case EPERM:
        case EBUSY:
        case ETXTBSY:
#if EWOULDBLOCK != EAGAIN
        case EAGAIN:
#endif
        case EWOULDBLOCK:
            return kFileAccessDenied;
        case ENOSPC:
        case EDQUOT:
            return kDiskFull;
        default:
            return kSystemErrorBase | static_cast<Status>(error);
    }
}

// The same failures in the words of whole-entry operations, which cannot
// always tell whether the missing piece was a file or a folder on the way.
Status EntryStatusFromErrno(int error) {
    switch (const Status status = StatusFromErrno(error)) {
        case kFileNotFound:
            return kFileSystemFileNotFound;
        case kNotFolder:
            return kFileSystemNotFolder;
        case kNotFile:
            return kFileSystemNotFile;
        case kFileAccessDenied:
            return kFileSystemAccessDenied;
        case kDiskFull:
            return kFileSystemDiskFull;
        default:
            return status;
    }
}

// And in the words of operations on an opened folder.
Status FolderStatusFromErrno(int error) {
    switch (const Status status = StatusFromErrno(error)) {
        case kFileNotFound:
            return kFolderNotFound;
        case kFileAccessDenied:
            return kFolderAccessDenied;
        case kDiskFull:
            return kFolderDiskFull;
        default:
            return status;
    }
}

int OpenFlags(FileSystem::OpenMode mode) {
    switch (mode) {
        case FileSystem::OpenMode::Read:
            return O_RDONLY;
        case FileSystem::OpenMode::WriteTruncate:
            return O_WRONLY | O_CREAT | O_TRUNC;
        case FileSystem::OpenMode::WriteNew:
            return O_WRONLY | O_CREAT | O_EXCL;
        case FileSystem::OpenMode::ReadWrite:
            return O_RDWR | O_CREAT;
        case FileSystem::OpenMode::Write:
            return O_WRONLY;
        case FileSystem::OpenMode::WriteCreate:
            return O_WRONLY | O_CREAT;
    }
    return O_RDONLY;
}

int SeekWhence(FileSystem::SeekOrigin origin) {
    switch (origin) {
        case FileSystem::SeekOrigin::Start:
            return SEEK_SET;
        case FileSystem::SeekOrigin::Current:
            return SEEK_CUR;
        case FileSystem::SeekOrigin::End:
            return SEEK_END;
    }
    return SEEK_SET;
}

void FillEntryInfo(const struct stat& status, FileSystem::EntryInfo& info) {
    info.exists = true;
    info.isFolder = S_ISDIR(status.st_mode);
    info.isFile = S_ISREG(status.st_mode);
    info.size = static_cast<Yr::UInt64>(status.st_size);
    info.modificationTime = static_cast<Yr::Int64>(status.st_mtime);
    info.creationTime = static_cast<Yr::Int64>(status.st_ctime);
}

int OpenRetrying(const char* path, int flags, mode_t permissions = 0) {
    int result;
    do {
        result = ::open(path, flags | O_CLOEXEC, permissions);
    } while (result < 0 && errno == EINTR);
    return result;
}

// Closes on every path out; a failed close after a successful call is not
// worth failing the call for.
class DescriptorGuard {
public:
    explicit DescriptorGuard(int descriptor) : m_descriptor(descriptor) {}
    ~DescriptorGuard() { ::close(m_descriptor); }
    DescriptorGuard(const DescriptorGuard&) = delete;
    DescriptorGuard& operator=(const DescriptorGuard&) = delete;

private:
    int m_descriptor;
};

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

Status FsyncRetrying(int descriptor) {
    int result;
    do {
        result = ::fsync(descriptor);
    } while (result < 0 && errno == EINTR);
    return result < 0 ? EntryStatusFromErrno(errno) : kSuccess;
}

// The kernel copies without the bytes passing through us; file systems or
// kernels that cannot do that make us copy through a buffer.
bool CopyInKernel(int source, int target, int& error) {
    for (;;) {
        const ssize_t copied =
            ::copy_file_range(source, nullptr, target, nullptr, std::size_t{1} << 30, 0);
        if (copied == 0) return true;
        if (copied > 0) continue;
        if (errno == EINTR) continue;
        error = errno;
        return false;
    }
}

bool CanCopyThroughBuffer(int error) {
    return error == ENOSYS || error == EXDEV || error == EINVAL || error == EOPNOTSUPP;
}

Status CopyThroughBuffer(PosixFileSystem& fileSystem, int source, int target) {
    std::vector<unsigned char> buffer(std::size_t{1} << 16);
    for (;;) {
        std::size_t count = 0;
        Status status = fileSystem.Read(source, buffer.data(), buffer.size(), count);
        if (status == kSuccess && count > 0)
            status = fileSystem.Write(target, buffer.data(), count);
        if (status != kSuccess || count == 0) return status;
    }
}

// A missing entry, or a file where a folder was expected on the way to it.
bool IsAbsence(int error) {
    return error == ENOENT || error == ENOTDIR;
}

}  // namespace

Status PosixFileSystem::Open(const std::string& path, OpenMode mode, int& descriptor) {
    // Descriptors must not leak into programs our callers start.
    const int flags = OpenFlags(mode) | O_CLOEXEC;
    int result;
    do {
        result = ::open(path.c_str(), flags, kCreationPermissions);
    } while (result < 0 && errno == EINTR);
    if (result < 0) return StatusFromErrno(errno);
    descriptor = result;
    return kSuccess;
}

Status PosixFileSystem::Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) {
    ssize_t result;
    do {
        result = ::read(descriptor, buffer, size);
    } while (result < 0 && errno == EINTR);
    if (result < 0) return StatusFromErrno(errno);
    count = static_cast<std::size_t>(result);
    return kSuccess;
}

Status PosixFileSystem::Write(int descriptor, const void* buffer, std::size_t size) {
    const auto* next = static_cast<const unsigned char*>(buffer);
    while (size > 0) {
        const ssize_t result = ::write(descriptor, next, size);
        if (result < 0) {
            if (errno == EINTR) continue;
            return StatusFromErrno(errno);
        }
        // A write that takes nothing would loop for ever; only a full device does that.
        if (result == 0) return StatusFromErrno(ENOSPC);
        next += result;
        size -= static_cast<std::size_t>(result);
    }
    return kSuccess;
}

Status PosixFileSystem::ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                               std::size_t& count) {
    auto* next = static_cast<unsigned char*>(buffer);
    count = 0;
    while (count < size) {
        const ssize_t result =
            ::pread(descriptor, next + count, size - count, static_cast<off_t>(offset + count));
        if (result < 0) {
            if (errno == EINTR) continue;
            return StatusFromErrno(errno);
        }
        if (result == 0) break;
        count += static_cast<std::size_t>(result);
    }
    return kSuccess;
}

Status PosixFileSystem::WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                                std::size_t size) {
    const auto* next = static_cast<const unsigned char*>(buffer);
    while (size > 0) {
        const ssize_t result = ::pwrite(descriptor, next, size, static_cast<off_t>(offset));
        if (result < 0) {
            if (errno == EINTR) continue;
            return StatusFromErrno(errno);
        }
        // As Write: only a full device takes nothing.
        if (result == 0) return StatusFromErrno(ENOSPC);
        next += result;
        offset += static_cast<Yr::UInt64>(result);
        size -= static_cast<std::size_t>(result);
    }
    return kSuccess;
}

Status PosixFileSystem::Close(int descriptor) {
    // Not retried on EINTR: Linux has released the descriptor already, and a
    // second close could hit one another thread has just opened.
    if (::close(descriptor) < 0 && errno != EINTR) return StatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::Seek(int descriptor, Yr::Int64 offset, SeekOrigin origin,
                             Yr::UInt64& position) {
    const off_t result = ::lseek(descriptor, static_cast<off_t>(offset), SeekWhence(origin));
    if (result < 0) return StatusFromErrno(errno);
    position = static_cast<Yr::UInt64>(result);
    return kSuccess;
}

Status PosixFileSystem::GetSize(int descriptor, Yr::UInt64& size) {
    struct stat status {};
    if (::fstat(descriptor, &status) < 0) return StatusFromErrno(errno);
    size = static_cast<Yr::UInt64>(status.st_size);
    return kSuccess;
}

Status PosixFileSystem::Truncate(int descriptor, Yr::UInt64 size) {
    int result;
    do {
        result = ::ftruncate(descriptor, static_cast<off_t>(size));
    } while (result < 0 && errno == EINTR);
    return result < 0 ? StatusFromErrno(errno) : kSuccess;
}

Status PosixFileSystem::Lock(int descriptor, LockMode mode) {
    const int operation = (mode == LockMode::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    int result;
    do {
        result = ::flock(descriptor, operation);
    } while (result < 0 && errno == EINTR);
    return result < 0 ? StatusFromErrno(errno) : kSuccess;
}

Status PosixFileSystem::GetEntryInfo(const std::string& path, EntryInfo& info) {
    info = EntryInfo{};
    struct stat status;
    if (::lstat(path.c_str(), &status) < 0)
        return IsAbsence(errno) ? kSuccess : StatusFromErrno(errno);
    FillEntryInfo(status, info);
    if (!S_ISLNK(status.st_mode)) return kSuccess;
    info.isSymbolicLink = true;
    info.size = 0;
    if (::stat(path.c_str(), &status) == 0) {
        FillEntryInfo(status, info);
        return kSuccess;
    }
    return IsAbsence(errno) ? kSuccess : StatusFromErrno(errno);
}

Status PosixFileSystem::GetProgramPath(std::string& path) {
    // readlink does not say how long the target is; grow until it fits.
    std::string buffer(PATH_MAX, '\0');
    for (;;) {
        const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length < 0) return StatusFromErrno(errno);
        if (static_cast<std::size_t>(length) < buffer.size()) {
            path.assign(buffer.data(), static_cast<std::size_t>(length));
            return kSuccess;
        }
        buffer.resize(buffer.size() * 2);
    }
}

Status PosixFileSystem::GetWorkingFolder(std::string& path) {
    std::string buffer(PATH_MAX, '\0');
    while (::getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) return StatusFromErrno(errno);
        buffer.resize(buffer.size() * 2);
    }
    path.assign(buffer.c_str());
    return kSuccess;
}

Status PosixFileSystem::ResolvePath(const std::string& path, std::string& resolved) {
    const std::unique_ptr<char, decltype(&std::free)> result(::realpath(path.c_str(), nullptr),
                                                             &std::free);
    if (!result) return StatusFromErrno(errno);
    resolved.assign(result.get());
    return kSuccess;
}

Status PosixFileSystem::CreateFolder(const std::string& path) {
    // Folders get every permission the umask leaves, as files do.
    if (::mkdir(path.c_str(), 0777) < 0) return EntryStatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::RemoveFile(const std::string& path) {
    if (::unlink(path.c_str()) < 0) return EntryStatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::RemoveFolder(const std::string& path) {
    if (::rmdir(path.c_str()) < 0) return EntryStatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::Rename(const std::string& source, const std::string& target) {
    if (::rename(source.c_str(), target.c_str()) < 0) return EntryStatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::Exchange(const std::string& first, const std::string& second) {
    if (::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE) < 0)
        return FolderStatusFromErrno(errno);
    return kSuccess;
}

Status PosixFileSystem::CopyFile(const std::string& source, const std::string& target) {
    const int input = OpenRetrying(source.c_str(), O_RDONLY);
    if (input < 0) return EntryStatusFromErrno(errno);
    const DescriptorGuard inputGuard(input);
    struct stat status;
    if (::fstat(input, &status) < 0) return EntryStatusFromErrno(errno);
    if (S_ISDIR(status.st_mode)) return kFileSystemNotFile;
    const int output =
        OpenRetrying(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, kCreationPermissions);
    if (output < 0) return EntryStatusFromErrno(errno);
    const DescriptorGuard outputGuard(output);
    int error = 0;
    if (CopyInKernel(input, output, error)) return kSuccess;
    if (!CanCopyThroughBuffer(error)) return EntryStatusFromErrno(error);
    const Status copied = CopyThroughBuffer(*this, input, output);
    return copied == kDiskFull ? kFileSystemDiskFull : copied;
}

Status PosixFileSystem::FlushFile(const std::string& path) {
    const int descriptor = OpenRetrying(path.c_str(), O_WRONLY);
    if (descriptor < 0) return EntryStatusFromErrno(errno);
    const DescriptorGuard guard(descriptor);
    return FsyncRetrying(descriptor);
}

Status PosixFileSystem::FlushDescriptor(int descriptor) {
    return FsyncRetrying(descriptor);
}

Status PosixFileSystem::FlushFolder(const std::string& path) {
    const int descriptor = OpenRetrying(path.c_str(), O_RDONLY | O_DIRECTORY);
    if (descriptor < 0) return EntryStatusFromErrno(errno);
    const DescriptorGuard guard(descriptor);
    return FsyncRetrying(descriptor);
}

Status PosixFileSystem::EvictFromCache(const std::string& path) {
    const int descriptor = OpenRetrying(path.c_str(), O_RDONLY);
    if (descriptor < 0) return EntryStatusFromErrno(errno);
    const DescriptorGuard guard(descriptor);
    // Dirty pages are not dropped; writing them first lets all of them go.
    if (::fdatasync(descriptor) < 0 && errno != EINVAL) return EntryStatusFromErrno(errno);
    const int error = ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
    return error == 0 ? kSuccess : EntryStatusFromErrno(error);
}

Status PosixFileSystem::ListFolder(const std::string& path, std::vector<std::string>& names) {
    const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.c_str()));
    if (!folder) return FolderStatusFromErrno(errno);
    names.clear();
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder.get());
        if (entry == nullptr) return errno == 0 ? kSuccess : FolderStatusFromErrno(errno);
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
}

Status PosixFileSystem::GetSpace(const std::string& path, Yr::UInt64& free, Yr::UInt64& used) {
    struct statvfs space;
    if (::statvfs(path.c_str(), &space) < 0) return FolderStatusFromErrno(errno);
    free = static_cast<Yr::UInt64>(space.f_bavail) * space.f_frsize;
    used = static_cast<Yr::UInt64>(space.f_blocks - space.f_bfree) * space.f_frsize;
    return kSuccess;
}

void* PosixFileSystem::MapMemory(std::size_t size) {
    void* address =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return address == MAP_FAILED ? nullptr : address;
}

void PosixFileSystem::UnmapMemory(void* address, std::size_t size) {
    if (address != nullptr) ::munmap(address, size);
}

void PosixFileSystem::Sleep(Yr::UInt32 milliseconds) {
    timespec remaining{static_cast<time_t>(milliseconds / 1000),
                       static_cast<long>(milliseconds % 1000) * 1000000L};
    // A signal cuts the sleep short; sleep what is left.
    while (::nanosleep(&remaining, &remaining) < 0 && errno == EINTR) {
    }
}

}  // namespace IO
