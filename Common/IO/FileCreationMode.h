#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// Whether opening for output may reuse an existing file or needs a new one.
class FileCreationMode {
public:
    enum Value : Yr::UInt32 { CreationAlways = 0, CreationNew = 1 };

    FileCreationMode() = default;
    FileCreationMode(Value value) : m_value(value) {}  // NOLINT: enumerators stand in for instances

    bool operator==(const FileCreationMode&) const = default;
    bool operator==(Value value) const { return m_value == value; }
    explicit operator int() const { return static_cast<int>(m_value); }

    // "creation-always" or "creation-new"; empty for any other value.
    Yr::UniString ToString() const;

private:
    Value m_value = CreationAlways;
};

}  // namespace Morvelan::Common::IO
