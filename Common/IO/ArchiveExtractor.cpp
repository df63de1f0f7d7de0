#include "Common/IO/ArchiveExtractor.h"

#include "Common/IO/ArchiveException.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/ErrorCodes.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/ArchiveExtractor";

[[noreturn]] void ThrowOutside(const Yr::UniString& entryName, Yr::UInt32 line) {
    throw ArchiveException(Yr::UniString::Printf("Failed to extract archive entry: '%T': the entry "
                                                 "name leads outside the target folder.",
                                                 entryName),
                           kSourceUnit, line, Yr::kIOErrorCode);
}

// The archive's naming rules: one leading slash is dropped and backslashes
// separate names as slashes do.
std::string RelativePathOf(const Yr::UniString& entryName) {
    std::string path = entryName.ToUtf8();
    if (!path.empty() && path.front() == '/') path.erase(0, 1);
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

bool LeadsOutside(const std::string& path) {
    if (path.empty() || path.front() == '/') return true;
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        if (path.compare(start, end - start, "..") == 0) return true;
        start = end + 1;
    }
    return false;
}

std::string PathOf(const ::IO::Location& location) {
    return LocationToPath(location).ToUtf8();
}

}  // namespace

ArchiveExtractor::ArchiveExtractor(const ::IO::Location& folder) : m_folder(folder) {
    CheckLocation(folder, kSourceUnit, __LINE__);
    if (!IsFolder(folder)) CreateFolder(folder);
}

::IO::Location ArchiveExtractor::GetTargetLocation(const Yr::UniString& entryName) {
    const std::string path = RelativePathOf(entryName);
    if (LeadsOutside(path)) ThrowOutside(entryName, __LINE__);
    const ::IO::Location target = LocationFromRelativePath(m_folder, Yr::UniString::FromUtf8(path));
    CheckNoSymbolicLinks(target);
    return target;
}

// A link planted in the folder, or one the archive itself could not create
// but an earlier extraction left, must not carry a file outside.
void ArchiveExtractor::CheckNoSymbolicLinks(const ::IO::Location& target) {
    ::IO::FileSystem& fileSystem = ::IO::FileSystem::Get();
    const std::string folder = PathOf(m_folder);
    const std::string path = PathOf(target);
    for (std::size_t slash = path.find('/', folder.size() + 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        const std::string parent = path.substr(0, slash);
        if (m_checkedFolders.count(parent) != 0) continue;
        ::IO::FileSystem::EntryInfo info;
        if (fileSystem.GetEntryInfo(parent, info) != ::IO::kSuccess || !info.exists) break;
        if (info.isSymbolicLink) ThrowOutside(Yr::UniString::FromUtf8(path), __LINE__);
        m_checkedFolders.insert(parent);
    }
    ::IO::FileSystem::EntryInfo info;
    if (fileSystem.GetEntryInfo(path, info) == ::IO::kSuccess && info.isSymbolicLink)
        ThrowOutside(Yr::UniString::FromUtf8(path), __LINE__);
}

::IO::Location ArchiveExtractor::Extract(const ArchiveEntry& entry, Yr::IBinaryChannel& data) {
    const ::IO::Location target = GetTargetLocation(entry.GetName());
    const std::string parent = PathOf(GetParentLocation(target));
    if (m_checkedFolders.count(parent) == 0) {
        CreateParentFolder(target);
        m_checkedFolders.insert(parent);
    }
    FileOBinaryChannel file(target, false, FileShare::None);
    Yr::BufferedOBinaryChannel buffered(file, kFileBufferSize);
    BinaryChannelUtilities::CopyAll(data, buffered, kCopyPieceSize);
    buffered.Close();
    return target;
}

}  // namespace Morvelan::Common::IO
