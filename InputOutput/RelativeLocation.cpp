#include "InputOutput/RelativeLocation.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace IO {

RelativeLocation RelativeLocation::Parse(const Yr::UniString& text) {
    RelativeLocation result;
    const std::string& bytes = text.ToUtf8();
    if ((!bytes.empty() && bytes.front() == '/') || bytes.find('\0') != std::string::npos) {
        result.m_status = kInvalidLocation;
        result.m_unparsedText = text;
        return result;
    }
    std::size_t start = 0;
    while (start < bytes.size()) {
        std::size_t end = bytes.find('/', start);
        if (end == std::string::npos) end = bytes.size();
        if (end > start)
            result.m_names.emplace_back(
                Yr::UniString::FromUtf8(std::string_view(bytes).substr(start, end - start)));
        start = end + 1;
    }
    return result;
}

bool RelativeLocation::IsLegal() const {
    return m_status == kSuccess &&
           std::all_of(m_names.begin(), m_names.end(), [](const Name& n) { return n.IsLegal(); });
}

Status RelativeLocation::GetNameAt(std::size_t index, Name& name) const {
    if (m_status != kSuccess) return m_status;
    if (index >= m_names.size()) return kInvalidLocation;
    name = m_names[index];
    return kSuccess;
}

Status RelativeLocation::RemoveNameAt(std::size_t index) {
    if (m_status != kSuccess) return m_status;
    if (index >= m_names.size()) return kInvalidLocation;
    m_names.erase(m_names.begin() + static_cast<std::ptrdiff_t>(index));
    return kSuccess;
}

bool RelativeLocation::CanBeAppended(const Name& name) {
    const std::string& bytes = name.GetText().ToUtf8();
    return !bytes.empty() && bytes.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

Status RelativeLocation::Append(const Name& name) {
    if (m_status != kSuccess) return m_status;
    if (!CanBeAppended(name)) return kInvalidLocation;
    m_names.push_back(name);
    return kSuccess;
}

Status RelativeLocation::Append(const RelativeLocation& other) {
    if (m_status != kSuccess) return m_status;
    if (other.m_status != kSuccess) return other.m_status;
    m_names.insert(m_names.end(), other.m_names.begin(), other.m_names.end());
    return kSuccess;
}

bool RelativeLocation::IsPrefixOf(const RelativeLocation& other) const {
    return m_names.size() <= other.m_names.size() &&
           std::equal(m_names.begin(), m_names.end(), other.m_names.begin());
}

std::size_t RelativeLocation::GetPathByteCount() const {
    std::size_t count = m_names.empty() ? 0 : m_names.size() - 1;
    for (const Name& name : m_names) count += name.GetText().GetByteCount();
    return count;
}

Yr::UniString RelativeLocation::GetPathText() const {
    Yr::UniString text;
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (i > 0) text.Append("/");
        text.Append(m_names[i].GetText());
    }
    return text;
}

Yr::UniString RelativeLocation::GetDisplayText() const {
    return m_status == kSuccess ? GetPathText() : m_unparsedText;
}

}  // namespace IO
