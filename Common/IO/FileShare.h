#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// What others may do with a file while it is open.
class FileShare {
public:
    // Write-only is 3, after read-write: the values are not bit flags.
    enum Value : Yr::UInt32 { None = 0, Read = 1, ReadWrite = 2, Write = 3 };

    FileShare() = default;
    FileShare(Value value) : m_value(value) {}  // NOLINT: enumerators stand in for instances

    bool operator==(const FileShare&) const = default;
    bool operator==(Value value) const { return m_value == value; }
    explicit operator int() const { return static_cast<int>(m_value); }

    // "none", "read", "read-write" or "write"; empty for any other value.
    Yr::UniString ToString() const;

private:
    Value m_value = None;
};

}  // namespace Morvelan::Common::IO
