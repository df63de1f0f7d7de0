#include "InputOutput/Posix/PosixFileSystem.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>

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
    }
    return O_RDONLY;
}

void FillEntryInfo(const struct stat& status, FileSystem::EntryInfo& info) {
    info.exists = true;
    info.isFolder = S_ISDIR(status.st_mode);
    info.isFile = S_ISREG(status.st_mode);
    info.size = static_cast<Yr::UInt64>(status.st_size);
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

Status PosixFileSystem::Close(int descriptor) {
    // Not retried on EINTR: Linux has released the descriptor already, and a
    // second close could hit one another thread has just opened.
    if (::close(descriptor) < 0 && errno != EINTR) return StatusFromErrno(errno);
    return kSuccess;
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
