#include "InputOutput/Location.h"

#include <string>
#include <string_view>

#include "InputOutput/FileSystem.h"

namespace IO {

Location Location::Parse(const Yr::UniString& path) {
    Location result;
    const std::string& bytes = path.ToUtf8();
    const std::size_t firstName = bytes.find_first_not_of('/');
    const bool absolute = !bytes.empty() && bytes.front() == '/';
    if (absolute && firstName != std::string::npos)
        result.m_names = RelativeLocation::Parse(
            Yr::UniString::FromUtf8(std::string_view(bytes).substr(firstName)));
    result.m_status = absolute ? result.m_names.GetStatus() : kInvalidLocation;
    if (result.m_status != kSuccess) {
        result.m_names = RelativeLocation();
        result.m_unparsedText = path;
    }
    return result;
}

bool Location::IsLegal() const {
    // The leading slash, then the names and their separators.
    return m_status == kSuccess && m_names.IsLegal() &&
           1 + m_names.GetPathByteCount() <= kMaxPathByteCount;
}

Status Location::GetNameAt(std::size_t index, Name& name) const {
    return m_status != kSuccess ? m_status : m_names.GetNameAt(index, name);
}

Status Location::RemoveNameAt(std::size_t index) {
    return m_status != kSuccess ? m_status : m_names.RemoveNameAt(index);
}

Status Location::GetLastName(Name& name) const {
    if (m_status != kSuccess) return m_status;
    return IsEmpty() ? kInvalidLocation : m_names.GetNameAt(GetNameCount() - 1, name);
}

Status Location::RemoveLastName() {
    if (m_status != kSuccess) return m_status;
    return IsEmpty() ? kInvalidLocation : m_names.RemoveNameAt(GetNameCount() - 1);
}

Status Location::Append(const Name& name) {
    return m_status != kSuccess ? m_status : m_names.Append(name);
}

Status Location::Append(const RelativeLocation& names) {
    return m_status != kSuccess ? m_status : m_names.Append(names);
}

Status Location::GetPath(Yr::UniString& path) const {
    if (m_status != kSuccess) return m_status;
    path = GetPathText();
    return kSuccess;
}

Yr::UniString Location::GetDisplayText() const {
    return m_status == kSuccess ? GetPathText() : m_unparsedText;
}

bool Location::IsAncestorOf(const Location& location) const {
    return m_status == kSuccess && location.m_status == kSuccess &&
           GetNameCount() < location.GetNameCount() && m_names.IsPrefixOf(location.m_names);
}

Status Location::Resolve(Location& resolved) const {
    if (m_status != kSuccess) return m_status;
    std::string resolvedPath;
    const Status status = FileSystem::Get().ResolvePath(GetPathText().ToUtf8(), resolvedPath);
    if (status != kSuccess) return status;
    Location result = Parse(Yr::UniString::FromUtf8Replacing(resolvedPath));
    if (result.m_status != kSuccess) return result.m_status;
    resolved = result;
    return kSuccess;
}

}  // namespace IO
