#include "Common/IO/FileIBinaryChannel.h"

#include "Common/IO/FileShareLock.h"
#include "Common/IO/IOUtilities.h"
#include "InputOutput/FileSystem.h"
#include "Yr/ChannelArguments.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using ::IO::FileSystem;
using ::IO::Status;

constexpr const char* kSourceUnit = "Common/IO/FileIBinaryChannel";

Yr::UniString Quoted(const char* format, const ::IO::Location& location) {
    return Yr::UniString::Printf(format, location.GetDisplayText());
}

Yr::UniString OpenFailure(const ::IO::Location& location) {
    return Quoted("Failed to create file binary input channel for location: '%T'.", location);
}

Status OpenLocked(const std::string& path, FileShare share, int& descriptor) {
    FileSystem& fileSystem = FileSystem::Get();
    int opened = -1;
    Status status = fileSystem.Open(path, FileSystem::OpenMode::Read, opened);
    if (status != ::IO::kSuccess) return status;
    status = LockForShare(opened, share);
    if (status != ::IO::kSuccess) {
        fileSystem.Close(opened);
        return status;
    }
    descriptor = opened;
    return ::IO::kSuccess;
}

}  // namespace

FileIBinaryChannel::FileIBinaryChannel(const ::IO::Location& location, FileShare share)
    : m_location(location) {
    Yr::UniString path;
    CheckFileError([&] { return OpenFailure(m_location); },
                   [] { return Yr::UniString("Failed to create file."); }, m_location.GetPath(path),
                   kSourceUnit, __LINE__);
    CheckFileError([&] { return OpenFailure(m_location); },
                   [] { return Yr::UniString("Failed to open file."); },
                   OpenLocked(path.ToUtf8(), share, m_descriptor), kSourceUnit, __LINE__);
    m_opened = true;
}

FileIBinaryChannel::~FileIBinaryChannel() {
    if (m_opened) FileSystem::Get().Close(m_descriptor);
}

Yr::UInt32 FileIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    CheckOpened(kSourceUnit, __LINE__);
    std::size_t count = 0;
    const Status status = FileSystem::Get().Read(m_descriptor, buffer, size, count);
    // The seam reports the end of the file as success with nothing read.
    if (status == ::IO::kEndOfFile) return static_cast<Yr::UInt32>(count);
    CheckFileError(
        [&] {
            return Quoted("Failed to read from file binary input channel for location: '%T'.",
                          m_location);
        },
        status, kSourceUnit, __LINE__);
    return static_cast<Yr::UInt32>(count);
}

Yr::UInt64 FileIBinaryChannel::GetAvailable() const {
    CheckOpened(kSourceUnit, __LINE__);
    FileSystem& fileSystem = FileSystem::Get();
    Yr::UInt64 size = 0;
    Yr::UInt64 position = 0;
    Status status = fileSystem.GetSize(m_descriptor, size);
    if (status == ::IO::kSuccess)
        status = fileSystem.Seek(m_descriptor, 0, FileSystem::SeekOrigin::Current, position);
    CheckFileError(
        [&] {
            return Quoted(
                "Failed to get available data size of file binary input channel for location: "
                "'%T'.",
                m_location);
        },
        status, kSourceUnit, __LINE__);
    // A file cut short by someone else leaves the position past its end.
    return position < size ? size - position : 0;
}

void FileIBinaryChannel::Close() {
    if (!m_opened) return;
    m_opened = false;
    CheckFileError(
        [&] {
            return Quoted("Failed to close file binary input channel for location: '%T'.",
                          m_location);
        },
        FileSystem::Get().Close(m_descriptor), kSourceUnit, __LINE__);
}

void FileIBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (!m_opened)
        throw Yr::IOException("File binary input channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
