#pragma once

#include <concepts>
#include <functional>
#include <vector>

#include "Common/IO/LocationFilter.h"
#include "Common/IO/LocationProcessor.h"
#include "Common/IO/RetryOptions.h"
#include "InputOutput/Location.h"
#include "InputOutput/Status.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

// Whole-entry file-system actions for the rest of the library, and the one
// translation of file-system statuses into exceptions. Changes retry only
// "access denied": `retryCount` + 1 tries with `retryTimeout` milliseconds of
// sleep between them. The Durable... variants also push the result to stable
// storage. Every failure is an exception with error code -7003.
namespace Morvelan::Common::IO {

inline constexpr Yr::UInt32 kDefaultRetryCount = 5;
inline constexpr Yr::UInt32 kDefaultRetryTimeout = 250;

// The exception class follows the status; the message gets the status's
// detail text, or "(Error code: %d)" for a status none of them knows. The
// three differ in which statuses they know: those of file, folder and
// whole-entry operations. Origin is the caller's source unit and line.
[[noreturn]] void ThrowFileError(const Yr::UniString& message, ::IO::Status status,
                                 const char* sourceFile, Yr::UInt32 line);
[[noreturn]] void ThrowFolderError(const Yr::UniString& message, ::IO::Status status,
                                   const char* sourceFile, Yr::UInt32 line);
[[noreturn]] void ThrowFileSystemError(const Yr::UniString& message, ::IO::Status status,
                                       const char* sourceFile, Yr::UInt32 line);
[[noreturn]] void ThrowFileError(const Yr::UniString& message, const Yr::UniString& detail,
                                 ::IO::Status status, const char* sourceFile, Yr::UInt32 line);
[[noreturn]] void ThrowFolderError(const Yr::UniString& message, const Yr::UniString& detail,
                                   ::IO::Status status, const char* sourceFile, Yr::UInt32 line);
[[noreturn]] void ThrowFileSystemError(const Yr::UniString& message, const Yr::UniString& detail,
                                       ::IO::Status status, const char* sourceFile,
                                       Yr::UInt32 line);

// Nothing happens on success.
void CheckFileError(const Yr::UniString& message, ::IO::Status status, const char* sourceFile,
                    Yr::UInt32 line);
void CheckFolderError(const Yr::UniString& message, ::IO::Status status, const char* sourceFile,
                      Yr::UInt32 line);
void CheckFileSystemError(const Yr::UniString& message, ::IO::Status status, const char* sourceFile,
                          Yr::UInt32 line);
void CheckFileError(const Yr::UniString& message, const Yr::UniString& detail, ::IO::Status status,
                    const char* sourceFile, Yr::UInt32 line);
void CheckFolderError(const Yr::UniString& message, const Yr::UniString& detail,
                      ::IO::Status status, const char* sourceFile, Yr::UInt32 line);
void CheckFileSystemError(const Yr::UniString& message, const Yr::UniString& detail,
                          ::IO::Status status, const char* sourceFile, Yr::UInt32 line);

template <class Producer>
concept MessageProducer =
    std::invocable<Producer> && std::convertible_to<std::invoke_result_t<Producer>, Yr::UniString>;

// Producers build the message only when there is a failure to report.
template <MessageProducer Message>
void CheckFileError(Message&& message, ::IO::Status status, const char* sourceFile,
                    Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileError(message(), status, sourceFile, line);
}
template <MessageProducer Message>
void CheckFolderError(Message&& message, ::IO::Status status, const char* sourceFile,
                      Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFolderError(message(), status, sourceFile, line);
}
template <MessageProducer Message>
void CheckFileSystemError(Message&& message, ::IO::Status status, const char* sourceFile,
                          Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileSystemError(message(), status, sourceFile, line);
}
template <MessageProducer Message, MessageProducer Detail>
void CheckFileError(Message&& message, Detail&& detail, ::IO::Status status, const char* sourceFile,
                    Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFileError(message(), detail(), status, sourceFile, line);
}
template <MessageProducer Message, MessageProducer Detail>
void CheckFolderError(Message&& message, Detail&& detail, ::IO::Status status,
                      const char* sourceFile, Yr::UInt32 line) {
    if (status != ::IO::kSuccess) ThrowFolderError(message(), detail(), status, sourceFile, line);
}
template <MessageProducer Message, MessageProducer Detail>
void CheckFileSystemError(Message&& message, Detail&& detail, ::IO::Status status,
                          const char* sourceFile, Yr::UInt32 line) {
    if (status != ::IO::kSuccess)
        ThrowFileSystemError(message(), detail(), status, sourceFile, line);
}

// The location must be valid and name an existing file, respectively folder.
void CheckFile(const ::IO::Location& location, const char* sourceFile, Yr::UInt32 line);
void CheckFolder(const ::IO::Location& location, const char* sourceFile, Yr::UInt32 line);

bool Exists(const ::IO::Location& location);
bool IsFile(const ::IO::Location& location);
bool IsFolder(const ::IO::Location& location);
// Seconds since 1970.
Yr::Int32 GetFileModificationTime(const ::IO::Location& location);
Yr::Int32 GetFileCreationTime(const ::IO::Location& location);
Yr::UInt64 GetFileSize(const ::IO::Location& location);
Yr::UInt64 GetFreeSpace(const ::IO::Location& folder);
Yr::UInt64 GetUsedSpace(const ::IO::Location& folder);
bool IsFlushToDiskSupported();
bool IsEvictFromSystemCacheSupported();
bool IsFlushFolderMetadataToDiskSupported();

void CreateFolder(const ::IO::Location& location);
// Creates the missing ancestors too.
void CreateParentFolder(const ::IO::Location& location);
// Copy and Move replace an existing target file.
void Copy(const ::IO::Location& source, const ::IO::Location& target,
          Yr::UInt32 retryCount = kDefaultRetryCount,
          Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
void Move(const ::IO::Location& source, const ::IO::Location& target,
          Yr::UInt32 retryCount = kDefaultRetryCount,
          Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
// Gives the entry `newName` in the same folder.
void Rename(const ::IO::Location& location, const Yr::UniString& newName,
            Yr::UInt32 retryCount = kDefaultRetryCount,
            Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
// A folder must be empty.
void Delete(const ::IO::Location& location, Yr::UInt32 retryCount = kDefaultRetryCount,
            Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
// Swaps two entries of one folder in one atomic step.
void Exchange(const ::IO::Location& first, const ::IO::Location& second,
              Yr::UInt32 retryCount = kDefaultRetryCount,
              Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
void FlushToDisk(const ::IO::Location& location, Yr::UInt32 retryCount = kDefaultRetryCount,
                 Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
void EvictFromSystemCache(const ::IO::Location& location,
                          Yr::UInt32 retryCount = kDefaultRetryCount,
                          Yr::UInt32 retryTimeout = kDefaultRetryTimeout);
// Makes creations, renames and deletions in the folder survive a crash.
void FlushFolderMetadataToDisk(const ::IO::Location& folder, const RetryOptions& retryOptions);

// The plain change with the options' retries, then its result and the
// folders it touched flushed to stable storage.
void DurableCopy(const ::IO::Location& source, const ::IO::Location& target,
                 const RetryOptions& retryOptions);
void DurableMove(const ::IO::Location& source, const ::IO::Location& target,
                 const RetryOptions& retryOptions);
void DurableExchange(const ::IO::Location& first, const ::IO::Location& second,
                     const RetryOptions& retryOptions);
void DurableRename(const ::IO::Location& location, const Yr::UniString& newName,
                   const RetryOptions& retryOptions);
// The parent folder is flushed with the default retry options, whatever the
// delete itself was given.
void DurableDelete(const ::IO::Location& location, const RetryOptions& retryOptions);

using LocationPredicate = std::function<bool(const ::IO::Location&)>;
using LocationConsumer = std::function<void(const ::IO::Location&)>;

// The direct entries of a folder, in no particular order, all of them or only
// the files or only the folders; each returns how many it delivered.
Yr::UInt32 EnumerateEntries(const ::IO::Location& folder, std::vector<::IO::Location>& result);
Yr::UInt32 EnumerateEntries(const ::IO::Location& folder, LocationFilter& filter,
                            std::vector<::IO::Location>& result);

Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, std::vector<::IO::Location>& result);
Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, LocationProcessor& processor);
Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, const LocationConsumer& consume);
Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, const LocationPredicate& accept,
                          const LocationConsumer& consume);
Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, LocationFilter& filter,
                          std::vector<::IO::Location>& result);
Yr::UInt32 EnumerateFiles(const ::IO::Location& folder, LocationFilter& filter,
                          LocationProcessor& processor);

Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, std::vector<::IO::Location>& result);
Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, LocationProcessor& processor);
Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, const LocationConsumer& consume);
Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, const LocationPredicate& accept,
                            const LocationConsumer& consume);
Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, LocationFilter& filter,
                            std::vector<::IO::Location>& result);
Yr::UInt32 EnumerateFolders(const ::IO::Location& folder, LocationFilter& filter,
                            LocationProcessor& processor);

}  // namespace Morvelan::Common::IO
