#include "Common/IO/ArchiveEntryImpl.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/ArchiveEntryImpl";

void CheckName(const Yr::UniString& name, Yr::UInt32 line) {
    if (name.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid archive entry name: name is empty.",
                                           kSourceUnit, line, Yr::kIllegalArgumentErrorCode);
}

}  // namespace

ArchiveEntryImpl::ArchiveEntryImpl(const Yr::UniString& name, const Headers& headers,
                                   Yr::UInt32 method)
    : m_name(name), m_headers(headers), m_method(method) {
    CheckName(name, __LINE__);
    CheckHeaders(headers, kSourceUnit, __LINE__);
}

ArchiveEntryImpl::ArchiveEntryImpl(const Yr::UniString& name, Yr::UInt32 method)
    : m_name(name), m_method(method) {
    CheckName(name, __LINE__);
}

ArchiveEntryImpl::~ArchiveEntryImpl() = default;

void ArchiveEntryImpl::CheckHeaders(const Headers& headers, const char* sourceFile,
                                    Yr::UInt32 line) {
    if (headers.Contains(Yr::UniString()))
        throw Yr::IllegalArgumentException(
            "Invalid archive entry headers: headers contains header with empty name.", sourceFile,
            line, Yr::kIllegalArgumentErrorCode);
}

Yr::UInt32 ArchiveEntryImpl::GetHeaderCount() const {
    return static_cast<Yr::UInt32>(m_headers.GetCount());
}

bool ArchiveEntryImpl::ContainsHeader(const Yr::UniString& name) const {
    if (name.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid archive entry header name: name is empty.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    return m_headers.Contains(name);
}

bool ArchiveEntryImpl::GetHeader(const Yr::UniString& name, Yr::UniString& value) const {
    return m_headers.TryGet(name, value);
}

bool ArchiveEntryImpl::Equals(const ArchiveEntry& other) const {
    const auto* impl = dynamic_cast<const ArchiveEntryImpl*>(&other);
    if (impl == nullptr) return false;
    if (m_name != impl->m_name || m_method != impl->m_method ||
        m_headers.GetCount() != impl->m_headers.GetCount())
        return false;
    for (const auto& [name, value] : m_headers) {
        const Yr::UniString* theirs = impl->m_headers.Get(name);
        if (theirs == nullptr || *theirs != value) return false;
    }
    if (m_closed && impl->m_closed)
        return m_archivedSize == impl->m_archivedSize && m_size == impl->m_size &&
               m_crc == impl->m_crc;
    return true;
}

void ArchiveEntryImpl::PutHeader(const Yr::UniString& name, const Yr::UniString& value) {
    m_headers.Put(name, value);
}

void ArchiveEntryImpl::Close(Yr::UInt64 archivedSize, Yr::UInt64 size, Yr::UInt32 crc) {
    m_archivedSize = archivedSize;
    m_size = size;
    m_crc = crc;
    m_closed = true;
}

}  // namespace Morvelan::Common::IO
