#include "Common/IO/ZipIBinaryChannel.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "Common/IO/BoundedIBinaryChannel.h"
#include "Common/IO/CRC32.h"
#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/Inflater.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Common/IO/PushbackIBinaryChannel.h"
#include "Common/IO/ZipException.h"
#include "Common/IO/ZipFormat.h"
#include "Common/IO/ZipTime.h"
#include "Yr/ChannelArguments.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using namespace ZipFormat;

constexpr const char* kSourceUnit = "Common/IO/ZipIBinaryChannel";

// Compressed bytes handed to the inflater at a time. The pushback buffer is
// as large: what the inflater read beyond its stream came from one read of
// at most this size, so it always fits back.
constexpr Yr::UInt32 kInflaterBufferSize = 64 * 1024;
constexpr Yr::UInt32 kPushbackSize = kInflaterBufferSize;
// At most kPushbackSize, for the same reason.
constexpr Yr::UInt32 kScanWindowSize = 16 * 1024;
constexpr Yr::UInt32 kDrainPieceSize = 16 * 1024;

[[noreturn]] void ThrowZip(const Yr::UniString& message, Yr::UInt32 line) {
    throw ZipException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

[[noreturn]] void ThrowEntry(const Yr::UniString& name, const char* problem, Yr::UInt32 line) {
    ThrowZip(Yr::UniString::Printf("Entry '%T' %s", name, problem), line);
}

Yr::UInt16 Load16(const char* bytes) {
    return Load<Yr::UInt16>(bytes);
}
Yr::UInt32 Load32(const char* bytes) {
    return Load<Yr::UInt32>(bytes);
}
Yr::UInt64 Load64(const char* bytes) {
    return Load<Yr::UInt64>(bytes);
}

// Code page 437 from 0x80 up, the character set of names without the UTF-8
// flag in the format's own terms.
constexpr char16_t kCp437High[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF,
    0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,
    0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA,
    0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557,
    0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,
    0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9, 0x03B4,
    0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248,
    0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

// Names and comments: UTF-8 when flagged. Unflagged text is taken as UTF-8
// when it is valid UTF-8, since Unix tools write it so without the flag, and
// as code page 437 otherwise.
Yr::UniString DecodeText(const std::string& bytes, bool utf8) {
    if (utf8) return Yr::UniString::FromUtf8Replacing(bytes);
    try {
        return Yr::UniString::FromUtf8(bytes);
    } catch (const Yr::ConversionErrorException&) {
    }
    std::u16string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 0x80 ? char16_t{byte} : kCp437High[byte - 0x80];
    }
    return Yr::UniString(text);
}

// Methods other writers use, named in messages.
struct KnownMethod {
    Yr::UInt16 method;
    const char* name;
};
constexpr KnownMethod kKnownMethods[] = {{1, "Shrink"}, {6, "Implode"}, {9, "Deflate64"},
                                         {12, "bzip2"}, {14, "LZMA"},   {93, "Zstandard"},
                                         {95, "XZ"},    {98, "PPMd"},   {99, "AES"}};

const char* MethodName(Yr::UInt16 method) {
    for (const auto& known : kKnownMethods)
        if (known.method == method) return known.name;
    return nullptr;
}

// Sizes and CRC-32 as a header or descriptor states them, or as counted.
struct Sums {
    Yr::UInt32 crc = 0;
    Yr::UInt64 compressedSize = 0;
    Yr::UInt64 size = 0;
};

// What a local header says beyond the entry's public fields.
struct LocalHeader {
    Yr::UInt16 flags = 0;
    Yr::UInt16 method = 0;
    Sums sums;
    bool zip64 = false;  // zip64 extra present: descriptor sizes are 64-bit
    bool HasDescriptor() const { return (flags & kFlagDataDescriptor) != 0; }
    bool IsEncrypted() const { return (flags & (kFlagEncrypted | kFlagStrongEncryption)) != 0; }
};

// The data of a stored entry that only a data descriptor sizes: the bytes up
// to the first descriptor signature that is followed by the CRC-32 and size
// of the bytes before it. Other signatures are data. Only the bytes a
// descriptor may still start in are held back.
class DescriptorScanner final : public Yr::IBinaryChannel {
public:
    DescriptorScanner(Yr::IBinaryChannel& input, const Yr::UniString& name, bool zip64)
        : m_input(input), m_name(name), m_zip64(zip64), m_window(kScanWindowSize) {}

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
        while (!m_found && m_dataEnd == m_begin) Examine();
        const Yr::UInt32 count = std::min(size, m_dataEnd - m_begin);
        if (count == 0) return 0;
        std::memcpy(buffer, m_window.data() + m_begin, count);
        m_crc.Update(buffer, count);
        m_count += count;
        m_begin += count;
        return count;
    }
    Yr::UInt64 GetAvailable() const override { return m_dataEnd - m_begin; }
    void Close() override {}

    const Sums& GetDescriptor() const { return m_descriptor; }
    // The bytes read past the descriptor, to be given back.
    const char* GetLeftover() const { return m_window.data() + m_begin; }
    Yr::UInt32 GetLeftoverCount() const { return m_end - m_begin; }

private:
    static constexpr Yr::UInt32 kLongest = 24;

    // Decides about the byte at m_begin: a descriptor starts there, or it and
    // the bytes up to the next possible signature are data.
    void Examine() {
        while (m_end - m_begin < kLongest && !m_inputEnded) Fill();
        const Yr::UInt32 held = m_end - m_begin;
        if (held == 0) ThrowEntry(m_name, "has no data descriptor after its data.", __LINE__);
        const char* at = m_window.data() + m_begin;
        if (held >= 4 && Load32(at) == kDataDescriptorSignature && Accept(at, held)) return;
        // 'P' begins the signature.
        const void* next = std::memchr(at + 1, 'P', held - 1);
        m_dataEnd = next ? static_cast<Yr::UInt32>(static_cast<const char*>(next) - m_window.data())
                         : m_end;
    }

    bool Accept(const char* at, Yr::UInt32 held) {
        const Yr::UInt32 crc = m_crc.GetValue();
        const bool narrow = held >= kDataDescriptorSize && Load32(at + 4) == crc &&
                            Load32(at + 8) == m_count && Load32(at + 12) == m_count;
        const bool wide = held >= kZip64DataDescriptorSize && Load32(at + 4) == crc &&
                          Load64(at + 8) == m_count && Load64(at + 16) == m_count;
        if (!narrow && !wide) return false;
        m_found = true;
        m_descriptor = {crc, m_count, m_count};
        m_begin += (wide && (m_zip64 || !narrow)) ? kZip64DataDescriptorSize : kDataDescriptorSize;
        m_dataEnd = m_begin;
        return true;
    }

    // Called with fewer than kLongest bytes held, so moving them is cheap.
    void Fill() {
        if (m_end == m_window.size()) {
            std::memmove(m_window.data(), m_window.data() + m_begin, m_end - m_begin);
            m_end -= m_begin;
            m_dataEnd -= m_begin;
            m_begin = 0;
        }
        const Yr::UInt32 count =
            m_input.Read(m_window.data() + m_end, static_cast<Yr::UInt32>(m_window.size()) - m_end,
                         Yr::kReadSome);
        if (count == 0) m_inputEnded = true;
        m_end += count;
    }

    Yr::IBinaryChannel& m_input;
    Yr::UniString m_name;
    bool m_zip64;
    std::vector<char> m_window;
    // [m_begin, m_dataEnd) is known to be data, [m_dataEnd, m_end) not yet.
    Yr::UInt32 m_begin = 0;
    Yr::UInt32 m_dataEnd = 0;
    Yr::UInt32 m_end = 0;
    bool m_inputEnded = false;
    bool m_found = false;
    CRC32 m_crc;
    Yr::UInt64 m_count = 0;
    Sums m_descriptor;
};

// The channels one entry's data comes through, bottom to top: the archive
// input, bounded by the compressed size when the local header tells it, or
// the descriptor scanner; compressed-size counter; inflater for deflated
// data; size counter; CRC-32 (Read).
struct EntryChain {
    EntryChain(Yr::IBinaryChannel& input, const LocalHeader& local, const Yr::UniString& name) {
        Yr::IBinaryChannel* source = &input;
        const bool stored = local.method == ZipEntry::Stored;
        if (!local.HasDescriptor() || (stored && local.sums.compressedSize != 0)) {
            bounded = std::make_unique<BoundedIBinaryChannel>(input, local.sums.compressedSize);
            source = bounded.get();
        } else if (stored) {
            scanner = std::make_unique<DescriptorScanner>(input, name, local.zip64);
            source = scanner.get();
        }
        compressedCounter = std::make_unique<CountingIBinaryChannel>(*source);
        source = compressedCounter.get();
        if (!stored) {
            inflater = Yr::MakeRef<Inflater>(true);
            inflating =
                std::make_unique<InflaterIBinaryChannel>(*source, inflater, kInflaterBufferSize);
            source = inflating.get();
        }
        sizeCounter = std::make_unique<CountingIBinaryChannel>(*source);
        crc = std::make_unique<CRC32IBinaryChannel>(*sizeCounter);
    }

    void Drain() {
        std::vector<char> piece(kDrainPieceSize);
        while (crc->Read(piece.data(), kDrainPieceSize, Yr::kReadSome) != 0) {
        }
    }

    std::unique_ptr<BoundedIBinaryChannel> bounded;
    std::unique_ptr<DescriptorScanner> scanner;
    std::unique_ptr<CountingIBinaryChannel> compressedCounter;
    Yr::Ref<Inflater> inflater;
    std::unique_ptr<InflaterIBinaryChannel> inflating;
    std::unique_ptr<CountingIBinaryChannel> sizeCounter;
    std::unique_ptr<CRC32IBinaryChannel> crc;
};

// An entry read, kept to be checked against the central directory.
struct ReadEntry {
    Yr::Ref<ZipEntry> entry;
    std::string rawName;
    Yr::UInt16 method;
    Sums sums;
    Yr::UInt64 offset;
};

// The extra fields split into what the reader uses and the rest.
struct Extras {
    std::string zip64;
    bool hasTime = false;
    Yr::Int64 time = 0;
    std::string other;
};

Extras SplitExtras(const std::string& extra) {
    Extras extras;
    std::size_t at = 0;
    while (at + 4 <= extra.size()) {
        const Yr::UInt16 tag = Load16(&extra[at]);
        const std::size_t size = Load16(&extra[at + 2]);
        // A field running past the end (padding, damage) is kept as it is.
        if (at + 4 + size > extra.size()) break;
        const char* data = &extra[at + 4];
        if (tag == kZip64ExtraTag) {
            extras.zip64.assign(data, size);
        } else if (tag == kExtendedTimestampTag) {
            if (size >= 5 && (data[0] & 1) != 0) {
                extras.hasTime = true;
                extras.time = static_cast<Yr::Int32>(Load32(data + 1));
            }
        } else {
            extras.other.append(extra, at, 4 + size);
        }
        at += 4 + size;
    }
    extras.other.append(extra, at, std::string::npos);
    return extras;
}

// Takes the zip64 values, in their fixed order, for the fields that hold the
// marker.
class Zip64Values {
public:
    Zip64Values(const std::string& data, const Yr::UniString& name) : m_data(data), m_name(name) {}

    void Take(Yr::UInt64& field, bool marked) {
        if (!marked) return;
        if (m_at + 8 > m_data.size())
            ThrowEntry(m_name, "has a zip64 extra field that is too short.", __LINE__);
        field = Load64(&m_data[m_at]);
        m_at += 8;
    }

private:
    const std::string& m_data;
    const Yr::UniString& m_name;
    std::size_t m_at = 0;
};

}  // namespace

class ZipIBinaryChannel::Impl {
public:
    Impl(const Yr::Ref<Yr::IBinaryChannel>& inputRef, Yr::IBinaryChannel& input)
        : m_inputRef(inputRef), m_pushback(input, kPushbackSize), m_input(m_pushback) {}

    void CheckOpened(Yr::UInt32 line) const {
        if (m_closed)
            throw Yr::IOException("ZIP binary input channel is closed.", kSourceUnit, line,
                                  Yr::kIOErrorCode);
    }

    Yr::Ref<ZipEntry> GetNextEntry() {
        CheckOpened(__LINE__);
        LeaveEntry();
        if (m_ended) return nullptr;
        const Yr::UInt64 offset = Position();
        const Yr::UInt32 signature = ReadValue<Yr::UInt32>();
        if (signature == kLocalHeaderSignature) return ReadLocalHeader(offset);
        m_ended = true;
        ReadCentralDirectory(signature, offset);
        return nullptr;
    }

    Yr::UInt32 Read(char* buffer, Yr::UInt32 size) {
        CheckOpened(__LINE__);
        if (!m_chain) {
            if (m_entry) ThrowUnsupported(m_entry->GetName(), m_local, __LINE__);
            return 0;
        }
        return m_chain->crc->Read(buffer, size, Yr::kReadSome);
    }

    Yr::UInt64 GetAvailable() const {
        CheckOpened(__LINE__);
        return m_chain ? m_chain->crc->GetAvailable() : 0;
    }

    void LeaveEntry() {
        if (!m_entry) return;
        // Released however the checks end: a failed entry is not read twice.
        const Yr::Ref<ZipEntry> entry = std::move(m_entry);
        const std::unique_ptr<EntryChain> chain = std::move(m_chain);
        m_entry.Reset();
        const Sums sums = chain ? Finish(*chain, *entry) : Skip(*entry);
        m_read.push_back({entry, m_rawName, m_local.method, sums, m_offset});
    }

    void Close() {
        if (m_closed) return;
        m_closed = true;
        m_chain.reset();
        m_entry.Reset();
        m_input.Close();
    }

    Yr::UniString m_comment;

private:
    Yr::UInt64 Position() const { return m_input.GetCount() - m_unreadCount; }

    void Unread(const char* data, Yr::UInt32 size) {
        if (size == 0) return;
        m_pushback.Unread(data, size);
        m_unreadCount += size;
    }

    template <class Bits>
    Bits ReadValue() {
        char bytes[sizeof(Bits)];
        m_input.Read(bytes, sizeof bytes, Yr::kReadAll);
        return Load<Bits>(bytes);
    }

    // Variable parts are at most 65535 bytes long by their 16-bit lengths.
    std::string ReadBytes(Yr::UInt16 size) {
        std::string bytes(size, '\0');
        if (size != 0) m_input.Read(bytes.data(), size, Yr::kReadAll);
        return bytes;
    }

    Yr::Ref<ZipEntry> ReadLocalHeader(Yr::UInt64 offset) {
        char header[kLocalHeaderSize];
        m_input.Read(header + 4, kLocalHeaderSize - 4, Yr::kReadAll);
        LocalHeader local;
        local.flags = Load16(header + 6);
        local.method = Load16(header + 8);
        const Yr::UInt32 dosTime = Load32(header + 10);
        local.sums = {Load32(header + 14), Load32(header + 18), Load32(header + 22)};
        m_rawName = ReadBytes(Load16(header + 26));
        const Extras extras = SplitExtras(ReadBytes(Load16(header + 28)));
        if (m_rawName.empty())
            ThrowZip(Yr::UniString::Printf("Entry at offset %llu has no name.", offset), __LINE__);
        const Yr::UniString name = DecodeText(m_rawName, (local.flags & kFlagUtf8) != 0);
        local.zip64 = !extras.zip64.empty();
        ReadZip64Sizes(extras.zip64, name, local.sums);

        auto entry = Yr::MakeRef<ZipEntry>(name);
        entry->SetFlags(local.flags);
        entry->SetMethod(static_cast<ZipEntry::Method>(local.method));
        entry->SetTime(extras.hasTime ? extras.time : ZipTime::FromDosDateTime(dosTime));
        entry->SetExtra(extras.other);
        entry->SetLocalHeaderOffset(offset);
        if (!local.HasDescriptor()) {
            entry->SetCrc(local.sums.crc);
            entry->SetCompressedSize(local.sums.compressedSize);
            entry->SetSize(local.sums.size);
        }
        m_local = local;
        m_offset = offset;
        m_entry = entry;
        if (!IsUnsupported()) m_chain = std::make_unique<EntryChain>(m_input, local, name);
        return entry;
    }

    // The local header carries both sizes once it has the zip64 extra; the
    // 32-bit fields say which of them count.
    static void ReadZip64Sizes(const std::string& zip64, const Yr::UniString& name, Sums& sums) {
        if (zip64.empty()) return;
        const bool sizeMarked = sums.size == kZip64Marker32;
        const bool compressedMarked = sums.compressedSize == kZip64Marker32;
        if (zip64.size() >= 16) {
            if (sizeMarked) sums.size = Load64(zip64.data());
            if (compressedMarked) sums.compressedSize = Load64(zip64.data() + 8);
            return;
        }
        Zip64Values values(zip64, name);
        values.Take(sums.size, sizeMarked);
        values.Take(sums.compressedSize, compressedMarked);
    }

    bool IsUnsupported() const {
        return m_local.IsEncrypted() ||
               (m_local.method != ZipEntry::Stored && m_local.method != ZipEntry::Deflated);
    }

    [[noreturn]] static void ThrowUnsupported(const Yr::UniString& name, const LocalHeader& local,
                                              Yr::UInt32 line) {
        if (local.IsEncrypted())
            ThrowZip(
                Yr::UniString::Printf("Entry '%T' is encrypted, which is not supported.", name),
                line);
        const char* methodName = MethodName(local.method);
        const Yr::UInt32 method = local.method;
        ThrowZip(methodName ? Yr::UniString::Printf("Entry '%T' uses compression method %lu (%s), "
                                                    "which is not supported.",
                                                    name, method, methodName)
                            : Yr::UniString::Printf("Entry '%T' uses compression method %lu, "
                                                    "which is not supported.",
                                                    name, method),
                 line);
    }

    // An entry that cannot be decoded is passed over, which only its stated
    // compressed size allows.
    Sums Skip(const ZipEntry& entry) {
        if (m_local.HasDescriptor()) ThrowUnsupported(entry.GetName(), m_local, __LINE__);
        std::vector<char> piece(kDrainPieceSize);
        for (Yr::UInt64 left = m_local.sums.compressedSize; left > 0;) {
            const auto count = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(left, piece.size()));
            m_input.Read(piece.data(), count, Yr::kReadAll);
            left -= count;
        }
        return m_local.sums;
    }

    Sums Finish(EntryChain& chain, ZipEntry& entry) {
        chain.Drain();
        Sums actual{chain.crc->GetCRC(), chain.compressedCounter->GetCount(),
                    chain.sizeCounter->GetCount()};
        if (chain.inflater) {
            // What the inflater read past the end of its stream belongs to
            // what follows.
            if (const Yr::UInt32 left = chain.inflater->GetRemainingCount()) {
                std::vector<char> rest(left);
                chain.inflater->GetRemainingInput(rest.data(), left);
                Unread(rest.data(), left);
                actual.compressedSize -= left;
            }
        }
        const Yr::UniString& name = entry.GetName();
        if (chain.bounded && actual.compressedSize < m_local.sums.compressedSize && !chain.inflater)
            ThrowEntry(name, "is cut short.", __LINE__);
        Sums stated = m_local.sums;
        if (chain.scanner) {
            stated = chain.scanner->GetDescriptor();
            Unread(chain.scanner->GetLeftover(), chain.scanner->GetLeftoverCount());
        } else if (m_local.HasDescriptor()) {
            stated = ReadDescriptor(actual);
        }
        Verify(name, stated, actual);
        if (m_local.method == ZipEntry::Stored && actual.size != actual.compressedSize)
            ThrowEntry(name, "is stored but its sizes differ.", __LINE__);
        entry.SetCrc(actual.crc);
        entry.SetCompressedSize(actual.compressedSize);
        entry.SetSize(actual.size);
        return actual;
    }

    // The signature is optional; the sizes are 64-bit after a zip64 local
    // header and 32-bit otherwise, but writers differ, so the other form is
    // taken when only it fits what was read.
    Sums ReadDescriptor(const Sums& actual) {
        Yr::UInt32 crc = ReadValue<Yr::UInt32>();
        if (crc == kDataDescriptorSignature) crc = ReadValue<Yr::UInt32>();
        char sizes[16];
        m_input.Read(sizes, 8, Yr::kReadAll);
        const Sums narrow{crc, Load32(sizes), Load32(sizes + 4)};
        const auto fits = [&actual](const Sums& sums) {
            return sums.compressedSize == actual.compressedSize && sums.size == actual.size;
        };
        if (!m_local.zip64 && fits(narrow)) return narrow;
        m_input.Read(sizes + 8, 8, Yr::kReadAll);
        const Sums wide{crc, Load64(sizes), Load64(sizes + 8)};
        // Neither fitting, the form the header announces is reported.
        if (fits(wide) || (m_local.zip64 && !fits(narrow))) return wide;
        Unread(sizes + 8, 8);
        return narrow;
    }

    static void Verify(const Yr::UniString& name, const Sums& stated, const Sums& actual) {
        if (stated.compressedSize != actual.compressedSize)
            ThrowEntry(name, "has a compressed size that does not match its data.", __LINE__);
        if (stated.size != actual.size)
            ThrowEntry(name, "has a size that does not match its data.", __LINE__);
        if (stated.crc != actual.crc)
            ThrowEntry(name, "has a CRC-32 that does not match its data.", __LINE__);
    }

    void ReadCentralDirectory(Yr::UInt32 signature, Yr::UInt64 offset) {
        std::size_t index = 0;
        for (; signature == kCentralHeaderSignature; ++index) {
            ReadCentralHeader(index);
            signature = ReadValue<Yr::UInt32>();
        }
        if (index != m_read.size())
            ThrowZip(
                Yr::UniString::Printf("Central directory lists %llu entries, but %llu were read.",
                                      Yr::UInt64{index}, Yr::UInt64{m_read.size()}),
                __LINE__);
        const Yr::UInt64 size = Position() - 4 - offset;
        Yr::UInt64 zip64Offset = 0;
        bool zip64 = false;
        Yr::UInt64 zip64Entries = 0;
        Yr::UInt64 zip64Size = 0;
        Yr::UInt64 zip64DirectoryOffset = 0;
        if (signature == kZip64EndSignature) {
            zip64 = true;
            zip64Offset = Position() - 4;
            char record[kZip64EndSize];
            m_input.Read(record + 4, kZip64EndSize - 4, Yr::kReadAll);
            zip64Entries = Load64(record + 32);
            zip64Size = Load64(record + 40);
            zip64DirectoryOffset = Load64(record + 48);
            if (Load64(record + 24) != zip64Entries) ThrowEnd("entry counts", __LINE__);
            SkipBytes(Load64(record + 4) - std::min<Yr::UInt64>(Load64(record + 4), 44));
            signature = ReadValue<Yr::UInt32>();
        }
        if (signature == kZip64LocatorSignature) {
            char locator[kZip64LocatorSize];
            m_input.Read(locator + 4, kZip64LocatorSize - 4, Yr::kReadAll);
            if (!zip64 || Load64(locator + 8) != zip64Offset)
                ThrowEnd("zip64 end record offset", __LINE__);
            signature = ReadValue<Yr::UInt32>();
        }
        if (signature != kEndSignature)
            ThrowZip(Yr::UniString::Printf("Invalid record signature 0x%08lx at offset %llu.",
                                           signature, Position() - 4),
                     __LINE__);
        char end[kEndSize];
        m_input.Read(end + 4, kEndSize - 4, Yr::kReadAll);
        Yr::UInt64 entries = Load16(end + 10);
        Yr::UInt64 directorySize = Load32(end + 12);
        Yr::UInt64 directoryOffset = Load32(end + 16);
        if (zip64) {
            if (entries == kZip64Marker16) entries = zip64Entries;
            if (directorySize == kZip64Marker32) directorySize = zip64Size;
            if (directoryOffset == kZip64Marker32) directoryOffset = zip64DirectoryOffset;
        }
        // Writers without zip64 cut the count of a large archive to 16 bits,
        // and some streaming ones write markers with no zip64 record behind.
        const bool countCut = !zip64 && index > 0xFFFF && entries == (index & 0xFFFF);
        if (entries != index && !countCut && entries != kZip64Marker16)
            ThrowEnd("entry count", __LINE__);
        if (directoryOffset != offset && directoryOffset != kZip64Marker32)
            ThrowEnd("central directory offset", __LINE__);
        if (directorySize != size && directorySize != kZip64Marker32)
            ThrowEnd("central directory size", __LINE__);
        m_comment = DecodeText(ReadBytes(Load16(end + 20)), false);
    }

    [[noreturn]] static void ThrowEnd(const char* what, Yr::UInt32 line) {
        ThrowZip(Yr::UniString::Printf(
                     "End of central directory record does not match the archive (%s).", what),
                 line);
    }

    void SkipBytes(Yr::UInt64 count) {
        std::vector<char> piece(kDrainPieceSize);
        while (count > 0) {
            const auto size = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(count, piece.size()));
            m_input.Read(piece.data(), size, Yr::kReadAll);
            count -= size;
        }
    }

    void ReadCentralHeader(std::size_t index) {
        char header[kCentralHeaderSize];
        m_input.Read(header + 4, kCentralHeaderSize - 4, Yr::kReadAll);
        const Yr::UInt16 flags = Load16(header + 8);
        const Yr::UInt16 method = Load16(header + 10);
        Sums sums{Load32(header + 16), Load32(header + 20), Load32(header + 24)};
        const std::string rawName = ReadBytes(Load16(header + 28));
        const Extras extras = SplitExtras(ReadBytes(Load16(header + 30)));
        const std::string comment = ReadBytes(Load16(header + 32));
        Yr::UInt64 disk = Load16(header + 34);
        Yr::UInt64 offset = Load32(header + 42);
        const Yr::UniString name = DecodeText(rawName, (flags & kFlagUtf8) != 0);
        if (index >= m_read.size())
            ThrowEntry(name, "is in the central directory but not in the stream.", __LINE__);
        Zip64Values values(extras.zip64, name);
        values.Take(sums.size, sums.size == kZip64Marker32);
        values.Take(sums.compressedSize, sums.compressedSize == kZip64Marker32);
        values.Take(offset, offset == kZip64Marker32);
        values.Take(disk, disk == kZip64Marker16);
        const ReadEntry& read = m_read[index];
        const Yr::UniString& readName = read.entry->GetName();
        if (rawName != read.rawName)
            ThrowEntry(readName, "is not where the central directory has it.", __LINE__);
        if (method != read.method || sums.crc != read.sums.crc ||
            sums.compressedSize != read.sums.compressedSize || sums.size != read.sums.size ||
            offset != read.offset)
            ThrowEntry(readName, "does not match its central directory record.", __LINE__);
        read.entry->SetComment(DecodeText(comment, (flags & kFlagUtf8) != 0));
        read.entry->SetExternalAttributes(Load32(header + 38));
    }

    Yr::Ref<Yr::IBinaryChannel> m_inputRef;
    PushbackIBinaryChannel m_pushback;
    CountingIBinaryChannel m_input;
    // Bytes given back to m_pushback, which m_input counts a second time.
    Yr::UInt64 m_unreadCount = 0;
    bool m_closed = false;
    bool m_ended = false;

    // The current entry; no chain when it cannot be decoded.
    Yr::Ref<ZipEntry> m_entry;
    std::unique_ptr<EntryChain> m_chain;
    LocalHeader m_local;
    std::string m_rawName;
    Yr::UInt64 m_offset = 0;
    std::vector<ReadEntry> m_read;
};

ZipIBinaryChannel::ZipIBinaryChannel(Yr::IBinaryChannel& input)
    : m_impl(std::make_unique<Impl>(nullptr, input)) {}

ZipIBinaryChannel::ZipIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& input)
    : m_impl(std::make_unique<Impl>(input, Yr::RequireInput(input, kSourceUnit, __LINE__))) {}

ZipIBinaryChannel::~ZipIBinaryChannel() = default;

Yr::Ref<ZipEntry> ZipIBinaryChannel::GetNextEntry() {
    return m_impl->GetNextEntry();
}

Yr::UInt32 ZipIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    return m_impl->Read(buffer, size);
}

Yr::UInt64 ZipIBinaryChannel::GetAvailable() const {
    return m_impl->GetAvailable();
}

void ZipIBinaryChannel::CloseEntry() {
    m_impl->CheckOpened(__LINE__);
    m_impl->LeaveEntry();
}

Yr::UniString ZipIBinaryChannel::GetComment() const {
    m_impl->CheckOpened(__LINE__);
    return m_impl->m_comment;
}

void ZipIBinaryChannel::Close() {
    m_impl->Close();
}

}  // namespace Morvelan::Common::IO
