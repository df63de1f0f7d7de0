#include "Common/IO/FileOBinaryChannel.h"

#include "Common/IO/IOUtilities.h"
#include "InputOutput/FileSystem.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using ::IO::FileSystem;
using ::IO::Status;

constexpr const char* kSourceUnit = "Common/IO/FileOBinaryChannel";

Yr::UniString Quoted(const char* format, const ::IO::Location& location) {
    return Yr::UniString::Printf(format, location.GetDisplayText());
}

Yr::UniString OpenFailure(const ::IO::Location& location) {
    return Quoted("Failed to create file binary output channel for location: '%T'.", location);
}

auto Detail(const char* text) {
    return [text] { return Yr::UniString(text); };
}

void CheckShare(FileShare share) {
    if (share != FileShare::None)
        throw Yr::IllegalArgumentException("Invalid file share: file share is not supported yet.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
}

void CheckSourceBuffer(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid source buffer: source buffer is null.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid source buffer: buffer size is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
}

// Opens for writing, creating the file when missing, and takes the
// exclusive lock before truncating, so a file someone else holds is refused
// untouched. An empty file is not truncated: on some file systems that makes
// the close write out everything written since. Nothing stays open on failure.
Status OpenLocked(const std::string& path, bool append, int& descriptor) {
    FileSystem& fileSystem = FileSystem::Get();
    int opened = -1;
    Status status = fileSystem.Open(path, FileSystem::OpenMode::WriteCreate, opened);
    if (status != ::IO::kSuccess) return status;
    status = fileSystem.Lock(opened, FileSystem::LockMode::Exclusive);
    Yr::UInt64 size = 0;
    if (status == ::IO::kSuccess && !append) status = fileSystem.GetSize(opened, size);
    if (status == ::IO::kSuccess && size > 0) status = fileSystem.Truncate(opened, 0);
    if (status != ::IO::kSuccess) {
        fileSystem.Close(opened);
        return status;
    }
    descriptor = opened;
    return ::IO::kSuccess;
}

}  // namespace

FileOBinaryChannel::FileOBinaryChannel(const ::IO::Location& location, bool append, FileShare share)
    : m_location(location) {
    CheckShare(share);
    Yr::UniString path;
    CheckFileError([&] { return OpenFailure(m_location); }, Detail("Failed to create file."),
                   m_location.GetPath(path), kSourceUnit, __LINE__);
    Open(path.ToUtf8(), append);
}

FileOBinaryChannel::~FileOBinaryChannel() {
    if (m_opened) FileSystem::Get().Close(m_descriptor);
}

void FileOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    CheckSourceBuffer(buffer, size);
    CheckOpened(kSourceUnit, __LINE__);
    CheckFileError(
        [&] {
            return Quoted("Failed to write to file binary output channel for location: '%T'.",
                          m_location);
        },
        FileSystem::Get().Write(m_descriptor, buffer, size), kSourceUnit, __LINE__);
}

void FileOBinaryChannel::Flush() {
    CheckOpened(kSourceUnit, __LINE__);
}

void FileOBinaryChannel::Close() {
    if (!m_opened) return;
    m_opened = false;
    CheckFileError(
        [&] {
            return Quoted("Failed to close file binary output channel for location: '%T'.",
                          m_location);
        },
        FileSystem::Get().Close(m_descriptor), kSourceUnit, __LINE__);
}

void FileOBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (!m_opened)
        throw Yr::IOException("File binary output channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

void FileOBinaryChannel::Open(const std::string& path, bool append) {
    CheckFileError([&] { return OpenFailure(m_location); }, Detail("Failed to open file."),
                   OpenLocked(path, append, m_descriptor), kSourceUnit, __LINE__);
    m_opened = true;
    if (!append) return;
    Yr::UInt64 end = 0;
    const Status status = FileSystem::Get().Seek(m_descriptor, 0, FileSystem::SeekOrigin::End, end);
    if (status == ::IO::kSuccess) return;
    // The channel is not created, so nothing else would close the file.
    m_opened = false;
    FileSystem::Get().Close(m_descriptor);
    ThrowFileError(OpenFailure(m_location), "Failed to position file pointer to the end of file.",
                   status, kSourceUnit, __LINE__);
}

}  // namespace Morvelan::Common::IO
