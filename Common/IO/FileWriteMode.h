#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// Whether output replaces a file's content or goes after it.
class FileWriteMode {
public:
    enum Value : Yr::UInt32 { Truncate = 0, Append = 1 };

    FileWriteMode() = default;
    FileWriteMode(Value value) : m_value(value) {}  // NOLINT: enumerators stand in for instances

    bool operator==(const FileWriteMode&) const = default;
    bool operator==(Value value) const { return m_value == value; }
    explicit operator int() const { return static_cast<int>(m_value); }

    // "truncate" or "append"; empty for any other value.
    Yr::UniString ToString() const;

private:
    Value m_value = Truncate;
};

}  // namespace Morvelan::Common::IO
