#include "Common/Containers/Properties.h"

#include <utility>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::Containers {
namespace {

constexpr const char* kSourceUnit = "Common/Containers/Properties";

void CheckKey(const Yr::UniString& key, Yr::UInt32 line) {
    if (key.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid key.", kSourceUnit, line,
                                           Yr::kIllegalArgumentErrorCode);
}

}  // namespace

Properties::Properties() = default;
Properties::Properties(const Properties& other) = default;
Properties::Properties(Properties&& other) noexcept = default;
Properties& Properties::operator=(const Properties& other) = default;
Properties& Properties::operator=(Properties&& other) noexcept = default;
Properties::~Properties() = default;

void Properties::SetProperty(const Yr::UniString& key, const Yr::UniString& value) {
    CheckKey(key, __LINE__);
    m_table.Put(key, value);
}

Yr::UniString Properties::GetProperty(const Yr::UniString& key) const {
    CheckKey(key, __LINE__);
    const Yr::UniString* found = m_table.Get(key);
    return found == nullptr ? Yr::UniString() : *found;
}

const Yr::UniString& Properties::GetProperty(const Yr::UniString& key,
                                             const Yr::UniString& defaultValue) const {
    CheckKey(key, __LINE__);
    const Yr::UniString* found = m_table.Get(key);
    return found == nullptr ? defaultValue : *found;
}

bool Properties::GetProperty(const Yr::UniString& key, Yr::UniString& value) const {
    CheckKey(key, __LINE__);
    const Yr::UniString* found = m_table.Get(key);
    if (found == nullptr) return false;
    value = *found;
    return true;
}

bool Properties::HasProperty(const Yr::UniString& key) const {
    CheckKey(key, __LINE__);
    return m_table.Contains(key);
}

void Properties::RemoveProperty(const Yr::UniString& key) {
    CheckKey(key, __LINE__);
    m_table.Remove(key);
}

void Properties::Clear() {
    m_table.Clear();
}

unsigned int Properties::GetSize() const {
    return static_cast<unsigned int>(m_table.GetCount());
}

void Properties::Swap(Properties& other) noexcept {
    using std::swap;
    swap(m_table, other.m_table);
}

bool Properties::operator==(const Properties& other) const {
    if (this == &other) return true;
    if (m_table.GetCount() != other.m_table.GetCount()) return false;
    // Equal counts make one-way inclusion enough.
    for (const auto& [key, value] : m_table) {
        const Yr::UniString* theirs = other.m_table.Get(key);
        if (theirs == nullptr || *theirs != value) return false;
    }
    return true;
}

}  // namespace Morvelan::Common::Containers
