#include "Common/IO/IOUtilities.h"

#include <string>

#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/DiskFullException.h"
#include "Common/IO/FileNotFoundException.h"
#include "Common/IO/FolderNotFoundException.h"
#include "Common/IO/LocationUtils.h"
#include "Common/IO/NotFileException.h"
#include "Common/IO/NotFolderException.h"
#include "InputOutput/FileSystem.h"
#include "InputOutput/Folder.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using ::IO::FileSystem;
using ::IO::Location;
using ::IO::Status;
using Yr::UniString;

constexpr const char* kSourceUnit = "Common/IO/IOUtilities";

template <class Exception>
[[noreturn]] void ThrowWithDetail(const UniString& message, const char* detail,
                                  const char* sourceFile, Yr::UInt32 line) {
    throw Exception(message + " " + detail, sourceFile, line, Yr::kIOErrorCode);
}

[[noreturn]] void ThrowUnknown(const UniString& message, Status status, const char* sourceFile,
                               Yr::UInt32 line) {
    // Without a failure there is nothing to add to the message.
    if (status == ::IO::kSuccess)
        throw Yr::IOException(message, sourceFile, line, Yr::kIOErrorCode);
    // Statuses print signed, as the callers' logs always have.
    throw Yr::IOException(
        UniString::Printf("%T (Error code: %d)", message, static_cast<int>(status)), sourceFile,
        line, Yr::kIOErrorCode);
}

std::string PathOf(const Location& location) {
    return LocationToPath(location).ToUtf8();
}

UniString Quoted(const char* format, const Location& location) {
    return UniString::Printf(format, location.GetDisplayText());
}

UniString Quoted(const char* format, const Location& first, const Location& second) {
    return UniString::Printf(format, first.GetDisplayText(), second.GetDisplayText());
}

// Tries until the status is anything but `accessDenied` or the tries are used up.
template <class Operation>
Status RetryWhileAccessDenied(Operation operation, Status accessDenied, Yr::UInt32 retryCount,
                              Yr::UInt32 retryTimeout) {
    for (Yr::UInt32 attempt = 0;; ++attempt) {
        const Status status = operation();
        if (status != accessDenied || attempt == retryCount) return status;
        FileSystem::Get().Sleep(retryTimeout);
    }
}

FileSystem::EntryInfo GetEntryInfo(const Location& location, const char* failure) {
    CheckLocation(location, kSourceUnit, __LINE__);
    FileSystem::EntryInfo info;
    CheckFileError([&] { return Quoted(failure, location); },
                   FileSystem::Get().GetEntryInfo(PathOf(location), info), kSourceUnit, __LINE__);
    return info;
}

// Reports a missing or other entry with the status a file operation would have.
FileSystem::EntryInfo GetFileInfo(const Location& location, const char* failure) {
    const FileSystem::EntryInfo info = GetEntryInfo(location, failure);
    if (!info.isFile)
        ThrowFileError(Quoted(failure, location),
                       info.exists ? ::IO::kNotFile : ::IO::kFileNotFound, kSourceUnit, __LINE__);
    return info;
}

Status RemoveEntry(const std::string& path) {
    FileSystem::EntryInfo info;
    const Status status = FileSystem::Get().GetEntryInfo(path, info);
    if (status != ::IO::kSuccess) return status;
    // A link goes by itself, whatever it points to.
    if (info.isFolder && !info.isSymbolicLink) return FileSystem::Get().RemoveFolder(path);
    return FileSystem::Get().RemoveFile(path);
}

// Creates the missing folders from the top down; the root always exists.
Status CreateFolderIfMissing(const Location& location) {
    if (location.IsEmpty() || IsFolder(location)) return ::IO::kSuccess;
    if (Exists(location)) return ::IO::kFileSystemNotFolder;
    const Status parentStatus = CreateFolderIfMissing(GetParentLocation(location));
    if (parentStatus != ::IO::kSuccess) return parentStatus;
    const Status status = FileSystem::Get().CreateFolder(PathOf(location));
    // Someone else may have made it meanwhile.
    return status == ::IO::kSuccess || IsFolder(location) ? ::IO::kSuccess : status;
}

Yr::UInt64 GetSpace(const Location& folder, bool free, const char* locationFailure,
                    const char* folderFailure) {
    CheckFolder(folder, kSourceUnit, __LINE__);
    ::IO::Folder opened;
    CheckFolderError([&] { return Quoted(locationFailure, folder); },
                     ::IO::Folder::Open(folder, opened), kSourceUnit, __LINE__);
    Yr::UInt64 freeBytes = 0;
    Yr::UInt64 usedBytes = 0;
    CheckFolderError([&] { return Quoted(folderFailure, folder); },
                     FileSystem::Get().GetSpace(PathOf(folder), freeBytes, usedBytes), kSourceUnit,
                     __LINE__);
    return free ? freeBytes : usedBytes;
}

void FlushFileIfSupported(const Location& location, const RetryOptions& options) {
    if (IsFlushToDiskSupported() && IsFile(location))
        FlushToDisk(location, options.GetRetryCount(), options.GetRetryTimeout());
}

void FlushFolderIfSupported(const Location& folder, const RetryOptions& options) {
    if (IsFlushFolderMetadataToDiskSupported()) FlushFolderMetadataToDisk(folder, options);
}

// Flushes the first parent, and the second too when it is another folder.
void FlushParentFolders(const Location& first, const Location& second,
                        const RetryOptions& options) {
    const Location firstParent = GetParentLocation(first);
    const Location secondParent = GetParentLocation(second);
    FlushFolderIfSupported(firstParent, options);
    if (!(secondParent == firstParent)) FlushFolderIfSupported(secondParent, options);
}

enum class EntryKind { Any, File, Folder };

Yr::UInt32 Enumerate(const Location& folder, EntryKind kind, const char* failure,
                     const LocationPredicate& accept, const LocationConsumer& consume) {
    CheckFolder(folder, kSourceUnit, __LINE__);
    std::vector<std::string> names;
    CheckFolderError([&] { return Quoted(failure, folder); },
                     FileSystem::Get().ListFolder(PathOf(folder), names), kSourceUnit, __LINE__);
    Yr::UInt32 delivered = 0;
    for (const std::string& name : names) {
        const Location entry = Concatenate(folder, UniString::FromUtf8Replacing(name));
        if (kind == EntryKind::File && !IsFile(entry)) continue;
        if (kind == EntryKind::Folder && !IsFolder(entry)) continue;
        if (accept && !accept(entry)) continue;
        consume(entry);
        ++delivered;
    }
    return delivered;
}

constexpr const char* kEntriesFailure = "Failed to enumerate entries of folder: '%T'.";
constexpr const char* kFilesFailure = "Failed to enumerate files of folder: '%T'.";
constexpr const char* kFoldersFailure = "Failed to enumerate folders of folder: '%T'.";

LocationConsumer AppendTo(std::vector<Location>& result) {
    return [&result](const Location& entry) { result.push_back(entry); };
}

LocationConsumer ProcessWith(LocationProcessor& processor) {
    return [&processor](const Location& entry) { processor.Process(entry); };
}

LocationPredicate AcceptWith(LocationFilter& filter) {
    return [&filter](const Location& entry) { return filter.Accept(entry); };
}

}  // namespace

void ThrowFileError(const UniString& message, Status status, const char* sourceFile,
                    Yr::UInt32 line) {
    switch (status) {
        case ::IO::kDiskFull:
            ThrowWithDetail<DiskFullException>(message, "Disk is full.", sourceFile, line);
        case ::IO::kFileNotFound:
            ThrowWithDetail<FileNotFoundException>(message, "File is not found.", sourceFile, line);
        case ::IO::kNotFile:
            ThrowWithDetail<NotFileException>(message, "Not a file.", sourceFile, line);
        case ::IO::kFileAccessDenied:
            ThrowWithDetail<AccessDeniedException>(message, "Access is denied.", sourceFile, line);
        default:
            ThrowUnknown(message, status, sourceFile, line);
    }
}

void ThrowFolderError(const UniString& message, Status status, const char* sourceFile,
                      Yr::UInt32 line) {
    switch (status) {
        case ::IO::kFolderNotFound:
            ThrowWithDetail<FolderNotFoundException>(message, "Folder is not found.", sourceFile,
                                                     line);
        case ::IO::kNotFolder:
            ThrowWithDetail<NotFolderException>(message, "Not a folder.", sourceFile, line);
        case ::IO::kFolderAccessDenied:
            ThrowWithDetail<AccessDeniedException>(message, "Access is denied.", sourceFile, line);
        case ::IO::kFolderDiskFull:
            ThrowWithDetail<DiskFullException>(message, "Disk is full.", sourceFile, line);
        default:
            ThrowUnknown(message, status, sourceFile, line);
    }
}

void ThrowFileSystemError(const UniString& message, Status status, const char* sourceFile,
                          Yr::UInt32 line) {
    switch (status) {
        case ::IO::kFileSystemFileNotFound:
            ThrowWithDetail<FileNotFoundException>(message, "File is not found.", sourceFile, line);
        case ::IO::kFileSystemFolderNotFound:
            ThrowWithDetail<FolderNotFoundException>(message, "Folder is not found.", sourceFile,
                                                     line);
        case ::IO::kFileSystemNotFile:
            ThrowWithDetail<NotFileException>(message, "Not a file.", sourceFile, line);
        case ::IO::kFileSystemNotFolder:
            ThrowWithDetail<NotFolderException>(message, "Not a folder.", sourceFile, line);
        case ::IO::kFileSystemAccessDenied:
            ThrowWithDetail<AccessDeniedException>(message, "Access is denied.", sourceFile, line);
        case ::IO::kFileSystemDiskFull:
            ThrowWithDetail<DiskFullException>(message, "Disk is full.", sourceFile, line);
        default:
            ThrowUnknown(message, status, sourceFile, line);
    }
}

void ThrowFileError(const UniString& message, const UniString& detail, Status status,
                    const char* sourceFile, Yr::UInt32 line) {
    ThrowFileError(message + " " + detail, status, sourceFile, line);
}

void ThrowFolderError(const UniString& message, const UniString& detail, Status status,
                      const char* sourceFile, Yr::UInt32 line) {
    ThrowFolderError(message + " " + detail, status, sourceFile, line);
}

void ThrowFileSystemError(const UniString& message, const UniString& detail, Status status,
                          const char* sourceFile, Yr::UInt32 line) {
    ThrowFileSystemError(message + " " + detail, status, sourceFile, line);
}

void CheckFileError(const UniString& message, Status status, const char* sourceFile,
                    Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileError(message, status, sourceFile, line);
}

void CheckFolderError(const UniString& message, Status status, const char* sourceFile,
                      Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFolderError(message, status, sourceFile, line);
}

void CheckFileSystemError(const UniString& message, Status status, const char* sourceFile,
                          Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileSystemError(message, status, sourceFile, line);
}

void CheckFileError(const UniString& message, const UniString& detail, Status status,
                    const char* sourceFile, Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileError(message, detail, status, sourceFile, line);
}

void CheckFolderError(const UniString& message, const UniString& detail, Status status,
                      const char* sourceFile, Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFolderError(message, detail, status, sourceFile, line);
}

void CheckFileSystemError(const UniString& message, const UniString& detail, Status status,
                          const char* sourceFile, Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileSystemError(message, detail, status, sourceFile, line);
}

void CheckFile(const Location& location, const char* sourceFile, Yr::UInt32 line) {
    CheckLocation(location, sourceFile, line);
    const FileSystem::EntryInfo info =
        GetEntryInfo(location, "Failed to determine the type of file system entry: '%T'.");
    if (!info.exists)
        throw FileNotFoundException(Quoted("File is not found: '%T'.", location), sourceFile, line,
                                    Yr::kIOErrorCode);
    if (!info.isFile)
        throw NotFileException(Quoted("Not a file: '%T'.", location), sourceFile, line,
                               Yr::kIOErrorCode);
}

void CheckFolder(const Location& location, const char* sourceFile, Yr::UInt32 line) {
    CheckLocation(location, sourceFile, line);
    const FileSystem::EntryInfo info =
        GetEntryInfo(location, "Failed to determine the type of file system entry: '%T'.");
    if (!info.exists)
        throw FolderNotFoundException(Quoted("Folder is not found: '%T'.", location), sourceFile,
                                      line, Yr::kIOErrorCode);
    if (!info.isFolder)
        throw NotFolderException(Quoted("Not a folder: '%T'.", location), sourceFile, line,
                                 Yr::kIOErrorCode);
}

bool Exists(const Location& location) {
    return GetEntryInfo(location, "Failed to determine the existence of file system entry: '%T'.")
        .exists;
}

bool IsFile(const Location& location) {
    return GetEntryInfo(location, "Failed to determine the type of file system entry: '%T'.")
        .isFile;
}

bool IsFolder(const Location& location) {
    return GetEntryInfo(location, "Failed to determine the type of file system entry: '%T'.")
        .isFolder;
}

Yr::Int32 GetFileModificationTime(const Location& location) {
    return static_cast<Yr::Int32>(
        GetFileInfo(location, "Failed to get modification time of file: '%T'.").modificationTime);
}

Yr::Int32 GetFileCreationTime(const Location& location) {
    return static_cast<Yr::Int32>(
        GetFileInfo(location, "Failed to get creation time of file: '%T'.").creationTime);
}

Yr::UInt64 GetFileSize(const Location& location) {
    return GetFileInfo(location, "Failed to get size of file: '%T'.").size;
}

Yr::UInt64 GetFreeSpace(const Location& folder) {
    return GetSpace(folder, true, "Failed to get free space of location: '%T'.",
                    "Failed to get free space of folder: '%T'.");
}

Yr::UInt64 GetUsedSpace(const Location& folder) {
    return GetSpace(folder, false, "Failed to get used space of location: '%T'.",
                    "Failed to get used space of folder: '%T'.");
}

bool IsFlushToDiskSupported() {
    return true;
}

bool IsEvictFromSystemCacheSupported() {
    return true;
}

bool IsFlushFolderMetadataToDiskSupported() {
    return true;
}

void CreateFolder(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckFileSystemError([&] { return Quoted("Failed to create folder: '%T'.", location); },
                         FileSystem::Get().CreateFolder(PathOf(location)), kSourceUnit, __LINE__);
}

void CreateParentFolder(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckFileSystemError(
        [&] {
            return Quoted("Failed to create parent folder of file system entry: '%T'.", location);
        },
        CreateFolderIfMissing(GetParentLocation(location)), kSourceUnit, __LINE__);
}

void Copy(const Location& source, const Location& target, Yr::UInt32 retryCount,
          Yr::UInt32 retryTimeout) {
    CheckLocation(source, kSourceUnit, __LINE__);
    CheckLocation(target, kSourceUnit, __LINE__);
    const Status status = RetryWhileAccessDenied(
        [&] { return FileSystem::Get().CopyFile(PathOf(source), PathOf(target)); },
        ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    CheckFileSystemError(
        [&] {
            return Quoted("Failed to copy file system entry from: '%T' to: '%T'.", source, target);
        },
        status, kSourceUnit, __LINE__);
}

void Move(const Location& source, const Location& target, Yr::UInt32 retryCount,
          Yr::UInt32 retryTimeout) {
    CheckLocation(source, kSourceUnit, __LINE__);
    CheckLocation(target, kSourceUnit, __LINE__);
    const Status status = RetryWhileAccessDenied(
        [&] { return FileSystem::Get().Rename(PathOf(source), PathOf(target)); },
        ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    // "form" is the wording callers match on; it stays.
    CheckFileSystemError(
        [&] {
            return Quoted("Failed to move file system entry form: '%T' to: '%T'.", source, target);
        },
        status, kSourceUnit, __LINE__);
}

void Rename(const Location& location, const UniString& newName, Yr::UInt32 retryCount,
            Yr::UInt32 retryTimeout) {
    CheckLocation(location, kSourceUnit, __LINE__);
    if (newName.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid name: name is empty.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    const Location renamed = Concatenate(GetParentLocation(location), newName);
    const Status status = RetryWhileAccessDenied(
        [&] { return FileSystem::Get().Rename(PathOf(location), PathOf(renamed)); },
        ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    CheckFileSystemError(
        [&] {
            return Quoted("Failed to rename file system entry from: '%T' to: '%T'.", location,
                          renamed);
        },
        status, kSourceUnit, __LINE__);
}

void Delete(const Location& location, Yr::UInt32 retryCount, Yr::UInt32 retryTimeout) {
    CheckLocation(location, kSourceUnit, __LINE__);
    const std::string path = PathOf(location);
    const Status status = RetryWhileAccessDenied(
        [&] { return RemoveEntry(path); }, ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    CheckFileSystemError(
        [&] { return Quoted("Failed to delete file system entry: '%T'.", location); }, status,
        kSourceUnit, __LINE__);
}

void Exchange(const Location& first, const Location& second, Yr::UInt32 retryCount,
              Yr::UInt32 retryTimeout) {
    CheckLocation(first, kSourceUnit, __LINE__);
    CheckLocation(second, kSourceUnit, __LINE__);
    const UniString failure =
        Quoted("Failed to exchange file system entries: from: '%T' to: '%T'.", first, second);
    const Location parent = GetParentLocation(first);
    // The system swaps names within one folder only.
    if (!(GetParentLocation(second) == parent))
        throw Yr::IOException(failure + " The parents of the specified locations must be the same.",
                              kSourceUnit, __LINE__, Yr::kIOErrorCode);
    ::IO::Folder folder;
    CheckFolderError(failure, ::IO::Folder::Open(parent, folder), kSourceUnit, __LINE__);
    const Status status = RetryWhileAccessDenied(
        [&] { return FileSystem::Get().Exchange(PathOf(first), PathOf(second)); },
        ::IO::kFolderAccessDenied, retryCount, retryTimeout);
    CheckFolderError(failure, status, kSourceUnit, __LINE__);
}

void FlushToDisk(const Location& location, Yr::UInt32 retryCount, Yr::UInt32 retryTimeout) {
    CheckLocation(location, kSourceUnit, __LINE__);
    const Status status =
        RetryWhileAccessDenied([&] { return FileSystem::Get().FlushFile(PathOf(location)); },
                               ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    CheckFileSystemError([&] { return Quoted("Failed to flush file to disk: '%T'.", location); },
                         status, kSourceUnit, __LINE__);
}

void EvictFromSystemCache(const Location& location, Yr::UInt32 retryCount,
                          Yr::UInt32 retryTimeout) {
    CheckLocation(location, kSourceUnit, __LINE__);
    const Status status =
        RetryWhileAccessDenied([&] { return FileSystem::Get().EvictFromCache(PathOf(location)); },
                               ::IO::kFileSystemAccessDenied, retryCount, retryTimeout);
    CheckFileSystemError(
        [&] { return Quoted("Failed to evict file from system cache: '%T'.", location); }, status,
        kSourceUnit, __LINE__);
}

void FlushFolderMetadataToDisk(const Location& folder, const RetryOptions& retryOptions) {
    CheckFolder(folder, kSourceUnit, __LINE__);
    const Status status =
        RetryWhileAccessDenied([&] { return FileSystem::Get().FlushFolder(PathOf(folder)); },
                               ::IO::kFileSystemAccessDenied, retryOptions.GetRetryCount(),
                               retryOptions.GetRetryTimeout());
    CheckFileSystemError(
        [&] { return Quoted("Failed to flush folder metadata to disk: '%T'.", folder); }, status,
        kSourceUnit, __LINE__);
}

void DurableCopy(const Location& source, const Location& target, const RetryOptions& retryOptions) {
    Copy(source, target, retryOptions.GetRetryCount(), retryOptions.GetRetryTimeout());
    FlushFileIfSupported(target, retryOptions);
    FlushFolderIfSupported(GetParentLocation(target), retryOptions);
}

void DurableMove(const Location& source, const Location& target, const RetryOptions& retryOptions) {
    Move(source, target, retryOptions.GetRetryCount(), retryOptions.GetRetryTimeout());
    FlushFileIfSupported(target, retryOptions);
    FlushParentFolders(source, target, retryOptions);
}

void DurableExchange(const Location& first, const Location& second,
                     const RetryOptions& retryOptions) {
    const Yr::UInt32 count = retryOptions.GetRetryCount();
    const Yr::UInt32 timeout = retryOptions.GetRetryTimeout();
    Exchange(first, second, count, timeout);
    // Both or neither: a folder among them has no data of its own to flush.
    if (IsFlushToDiskSupported() && IsFile(first) && IsFile(second)) {
        FlushToDisk(first, count, timeout);
        FlushToDisk(second, count, timeout);
    }
    FlushParentFolders(first, second, retryOptions);
}

void DurableRename(const Location& location, const UniString& newName,
                   const RetryOptions& retryOptions) {
    Rename(location, newName, retryOptions.GetRetryCount(), retryOptions.GetRetryTimeout());
    const Location parent = GetParentLocation(location);
    FlushFileIfSupported(Concatenate(parent, newName), retryOptions);
    FlushFolderIfSupported(parent, retryOptions);
}

void DurableDelete(const Location& location, const RetryOptions& retryOptions) {
    Delete(location, retryOptions.GetRetryCount(), retryOptions.GetRetryTimeout());
    // Callers that give the delete no patience still want the deletion to
    // stick, so the flush waits as long as the defaults allow.
    FlushFolderIfSupported(GetParentLocation(location), RetryOptions::GetDefault());
}

Yr::UInt32 EnumerateEntries(const Location& folder, std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::Any, kEntriesFailure, nullptr, AppendTo(result));
}

Yr::UInt32 EnumerateEntries(const Location& folder, LocationFilter& filter,
                            std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::Any, kEntriesFailure, AcceptWith(filter), AppendTo(result));
}

Yr::UInt32 EnumerateFiles(const Location& folder, std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, nullptr, AppendTo(result));
}

Yr::UInt32 EnumerateFiles(const Location& folder, LocationProcessor& processor) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, nullptr, ProcessWith(processor));
}

Yr::UInt32 EnumerateFiles(const Location& folder, const LocationConsumer& consume) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, nullptr, consume);
}

Yr::UInt32 EnumerateFiles(const Location& folder, const LocationPredicate& accept,
                          const LocationConsumer& consume) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, accept, consume);
}

Yr::UInt32 EnumerateFiles(const Location& folder, LocationFilter& filter,
                          std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, AcceptWith(filter), AppendTo(result));
}

Yr::UInt32 EnumerateFiles(const Location& folder, LocationFilter& filter,
                          LocationProcessor& processor) {
    return Enumerate(folder, EntryKind::File, kFilesFailure, AcceptWith(filter),
                     ProcessWith(processor));
}

Yr::UInt32 EnumerateFolders(const Location& folder, std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, nullptr, AppendTo(result));
}

Yr::UInt32 EnumerateFolders(const Location& folder, LocationProcessor& processor) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, nullptr, ProcessWith(processor));
}

Yr::UInt32 EnumerateFolders(const Location& folder, const LocationConsumer& consume) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, nullptr, consume);
}

Yr::UInt32 EnumerateFolders(const Location& folder, const LocationPredicate& accept,
                            const LocationConsumer& consume) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, accept, consume);
}

Yr::UInt32 EnumerateFolders(const Location& folder, LocationFilter& filter,
                            std::vector<Location>& result) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, AcceptWith(filter),
                     AppendTo(result));
}

Yr::UInt32 EnumerateFolders(const Location& folder, LocationFilter& filter,
                            LocationProcessor& processor) {
    return Enumerate(folder, EntryKind::Folder, kFoldersFailure, AcceptWith(filter),
                     ProcessWith(processor));
}

}  // namespace Morvelan::Common::IO
