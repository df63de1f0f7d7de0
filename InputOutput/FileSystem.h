#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "InputOutput/Status.h"
#include "Yr/Types.h"

namespace IO {

// The one seam between the library and the operating system: every system
// call goes through the instance Get() returns, so tests can install a
// wrapper that injects faults (ScopedFileSystem) without root or special
// file systems. Failures come back as statuses, never as errno.
class FileSystem {
public:
    // Write opens an existing file as it is, without creating or truncating it.
    // Write needs the file to exist; WriteCreate makes it when missing and
    // leaves an existing one as it is.
    enum class OpenMode { Read, WriteTruncate, WriteNew, ReadWrite, Write, WriteCreate };
    enum class SeekOrigin { Start, Current, End };
    enum class LockMode { Shared, Exclusive };

    // What a location names. A symbolic link reports the type and size of
    // its target; a dangling one exists but is neither file nor folder.
    struct EntryInfo {
        bool exists = false;
        bool isFolder = false;
        bool isFile = false;
        bool isSymbolicLink = false;
        Yr::UInt64 size = 0;
        // Seconds since 1970. Linux keeps no birth time in stat; the last
        // status change stands in for the creation time.
        Yr::Int64 modificationTime = 0;
        Yr::Int64 creationTime = 0;
    };

    // Whole-entry changes report the file-system statuses (kFileSystem...);
    // Exchange and the folder queries report the folder statuses (kFolder...).
    virtual Status CreateFolder(const std::string& path) = 0;
    virtual Status RemoveFile(const std::string& path) = 0;
    // Only an empty folder can go.
    virtual Status RemoveFolder(const std::string& path) = 0;
    // Replaces an existing target file.
    virtual Status Rename(const std::string& source, const std::string& target) = 0;
    // Swaps two entries in one atomic step; both must exist.
    virtual Status Exchange(const std::string& first, const std::string& second) = 0;
    // Copies a file's bytes, replacing an existing target file.
    virtual Status CopyFile(const std::string& source, const std::string& target) = 0;
    // Forces the file's data and metadata to stable storage.
    virtual Status FlushFile(const std::string& path) = 0;
    // The same for a file already open: it stays right when the file has
    // been renamed or replaced since it was opened.
    virtual Status FlushDescriptor(int descriptor) = 0;
    // Forces a folder's entries (creations, renames, deletions) to stable storage.
    virtual Status FlushFolder(const std::string& path) = 0;
    // Drops the file's pages from the system cache.
    virtual Status EvictFromCache(const std::string& path) = 0;
    // The names of the folder's direct entries, without "." and "..".
    virtual Status ListFolder(const std::string& path, std::vector<std::string>& names) = 0;
    // Bytes still free for unprivileged users, and bytes in use, on the folder's device.
    virtual Status GetSpace(const std::string& path, Yr::UInt64& free, Yr::UInt64& used) = 0;

    virtual ~FileSystem() = default;

    virtual Status Open(const std::string& path, OpenMode mode, int& descriptor) = 0;
    // `count` is 0 at the end of the file.
    virtual Status Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) = 0;
    // Writes all `size` bytes or fails.
    virtual Status Write(int descriptor, const void* buffer, std::size_t size) = 0;
    // At `offset`, leaving the file pointer alone, so threads may share the
    // descriptor. ReadAt reads until `size` bytes or the end of the file;
    // WriteAt writes all `size` bytes or fails.
    virtual Status ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                          std::size_t& count) = 0;
    virtual Status WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                           std::size_t size) = 0;
    virtual Status Close(int descriptor) = 0;
    // Moves the file pointer and reports where it now stands.
    virtual Status Seek(int descriptor, Yr::Int64 offset, SeekOrigin origin,
                        Yr::UInt64& position) = 0;
    virtual Status GetSize(int descriptor, Yr::UInt64& size) = 0;
    // Cuts or zero-extends the file to `size` bytes; the file pointer stays.
    virtual Status Truncate(int descriptor, Yr::UInt64 size) = 0;
    // An advisory lock that never waits: one held elsewhere that conflicts
    // gives kFileAccessDenied. Closing the descriptor releases it.
    virtual Status Lock(int descriptor, LockMode mode) = 0;

    // A missing entry is an answer, not a failure: `exists` comes back false.
    virtual Status GetEntryInfo(const std::string& path, EntryInfo& info) = 0;
    // The absolute path of the running program's own file.
    virtual Status GetProgramPath(std::string& path) = 0;
    virtual Status GetWorkingFolder(std::string& path) = 0;
    // The absolute path with every link, "." and ".." resolved; the entry must exist.
    virtual Status ResolvePath(const std::string& path, std::string& resolved) = 0;

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
