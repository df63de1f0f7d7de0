#include "Common/IO/ArchiveExtractor.h"

#include "Common/IO/ArchiveException.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
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

ArchiveExtractor::Target ArchiveExtractor::Prepare(const Yr::UniString& entryName) {
    const std::string path = RelativePathOf(entryName);
    if (LeadsOutside(path)) ThrowOutside(entryName, __LINE__);
    Target target;
    target.location = LocationFromRelativePath(m_folder, Yr::UniString::FromUtf8(path));
    target.existed = CheckNoSymbolicLinks(target.location);
    const std::string parent = PathOf(GetParentLocation(target.location));
    if (m_checkedFolders.count(parent) == 0) {
        CreateParentFolder(target.location);
        m_checkedFolders.insert(parent);
    }
    return target;
}

// A link planted in the folder, or one the archive itself could not create
// but an earlier extraction left, must not carry a file outside.
bool ArchiveExtractor::CheckNoSymbolicLinks(const ::IO::Location& target) {
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
    if (fileSystem.GetEntryInfo(path, info) != ::IO::kSuccess) return false;
    if (info.isSymbolicLink) ThrowOutside(Yr::UniString::FromUtf8(path), __LINE__);
    return info.exists;
}

::IO::Location ArchiveExtractor::Extract(const ArchiveEntry& entry, Yr::IBinaryChannel& data) {
    const Target target = Prepare(entry.GetName());
    Write(target, data);
    return target.location;
}

// Pieces go from the entry straight into the file: the entry's reader
// buffers already, and one piece serves every file.
void ArchiveExtractor::Write(const Target& target, Yr::IBinaryChannel& data) {
    if (!m_piece) m_piece = Yr::AllocateMemoryBlock(kCopyPieceSize);
    FileOBinaryChannel file(target.location, false, FileShare::None);
    while (const Yr::UInt32 count = data.Read(m_piece.get(), kCopyPieceSize, Yr::kReadSome))
        file.Write(m_piece.get(), count);
    file.Close();
}

}  // namespace Morvelan::Common::IO
