#pragma once

#include <string>

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// One entry of a ZIP stream: name, method, time, sizes, CRC-32, comment and
// extra data. The writer fills in what the caller leaves unknown; the reader
// fills in what the local header gives and the rest once the entry is left.
// Held as Yr::Ref<ZipEntry>.
class ZipEntry {
public:
    enum Method : Yr::UInt16 { Stored = 0, Deflated = 8 };
    // A size or CRC not known yet.
    static constexpr Yr::UInt64 kUnknownSize = ~Yr::UInt64{0};

    // An empty name throws IllegalArgumentException; a name ending in "/"
    // is a folder.
    explicit ZipEntry(const Yr::UniString& name);

    const Yr::UniString& GetName() const { return m_name; }
    bool IsDirectory() const;

    // Read entries may carry a number outside Method: a method this
    // library does not know, reported by the reader by number.
    Method GetMethod() const { return m_method; }
    void SetMethod(Method method) { m_method = method; }

    // Modification time, UTC seconds since 1970.
    Yr::Int64 GetTime() const { return m_time; }
    void SetTime(Yr::Int64 unixSeconds) { m_time = unixSeconds; }

    Yr::UInt64 GetSize() const { return m_size; }
    void SetSize(Yr::UInt64 size) { m_size = size; }
    Yr::UInt64 GetCompressedSize() const { return m_compressedSize; }
    void SetCompressedSize(Yr::UInt64 size) { m_compressedSize = size; }
    bool HasCrc() const { return m_hasCrc; }
    Yr::UInt32 GetCrc() const { return m_crc; }
    void SetCrc(Yr::UInt32 crc) {
        m_crc = crc;
        m_hasCrc = true;
    }

    const Yr::UniString& GetComment() const { return m_comment; }
    void SetComment(const Yr::UniString& comment) { m_comment = comment; }
    // Extra fields other than the zip64 and extended-timestamp ones, which
    // the writer makes and the reader takes out.
    const std::string& GetExtra() const { return m_extra; }
    void SetExtra(const std::string& extra) { m_extra = extra; }

    // General-purpose flags as read (0 for an entry not read).
    Yr::UInt16 GetFlags() const { return m_flags; }
    void SetFlags(Yr::UInt16 flags) { m_flags = flags; }
    // Unix mode in the upper 16 bits, as "made by Unix" archives have it.
    Yr::UInt32 GetExternalAttributes() const { return m_externalAttributes; }
    void SetExternalAttributes(Yr::UInt32 attributes) { m_externalAttributes = attributes; }
    // Where the entry's local header starts in the stream.
    Yr::UInt64 GetLocalHeaderOffset() const { return m_localHeaderOffset; }
    void SetLocalHeaderOffset(Yr::UInt64 offset) { m_localHeaderOffset = offset; }

private:
    Yr::UniString m_name;
    Method m_method = Deflated;
    Yr::Int64 m_time = 0;
    Yr::UInt64 m_size = kUnknownSize;
    Yr::UInt64 m_compressedSize = kUnknownSize;
    Yr::UInt32 m_crc = 0;
    bool m_hasCrc = false;
    Yr::UniString m_comment;
    std::string m_extra;
    Yr::UInt16 m_flags = 0;
    Yr::UInt32 m_externalAttributes = 0;
    Yr::UInt64 m_localHeaderOffset = 0;
};

}  // namespace Morvelan::Common::IO
