#include "cli/FileIBinaryChannel.h"

#include <utility>

#include "InputOutput/FileSystem.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Tool {
namespace {

constexpr const char* kSourceUnit = "cli/FileIBinaryChannel";

const char* Describe(IO::Status status) {
    switch (status) {
        case IO::kFileNotFound:
            return "no such file";
        case IO::kNotFile:
            return "not a file";
        case IO::kNotFolder:
            return "a folder on the path is not a folder";
        case IO::kFileAccessDenied:
            return "access denied";
        default:
            return "system error";
    }
}

}  // namespace

FileIBinaryChannel::FileIBinaryChannel(const std::string& path)
    : m_descriptor(-1), m_name(path), m_owned(true) {
    const IO::Status status =
        IO::FileSystem::Get().Open(path, IO::FileSystem::OpenMode::Read, m_descriptor);
    if (status != IO::kSuccess)
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to open file: '%s': %s.", path, Describe(status)),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
}

FileIBinaryChannel::FileIBinaryChannel(int descriptor, std::string name, bool owned)
    : m_descriptor(descriptor), m_name(std::move(name)), m_owned(owned) {}

FileIBinaryChannel FileIBinaryChannel::StandardInput() {
    return FileIBinaryChannel(0, "-", false);
}

FileIBinaryChannel::FileIBinaryChannel(FileIBinaryChannel&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_name(std::move(other.m_name)),
      m_owned(other.m_owned) {}

FileIBinaryChannel::~FileIBinaryChannel() {
    if (m_owned && m_descriptor >= 0) IO::FileSystem::Get().Close(m_descriptor);
}

Yr::UInt32 FileIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    if (m_descriptor < 0) return 0;
    std::size_t count = 0;
    const IO::Status status = IO::FileSystem::Get().Read(m_descriptor, buffer, size, count);
    if (status != IO::kSuccess)
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to read file: '%s': %s.", m_name, Describe(status)),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    return static_cast<Yr::UInt32>(count);
}

void FileIBinaryChannel::Close() {
    if (m_owned && m_descriptor >= 0) IO::FileSystem::Get().Close(m_descriptor);
    m_descriptor = -1;
}

}  // namespace Morvelan::Tool
