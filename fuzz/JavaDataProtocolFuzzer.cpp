// Reads the input with every reader of the Java data layout and checks each
// value against the input bytes it came from, decoded here independently.
// The first byte gives how many operation codes follow (1 to 16); the codes
// are applied in turn, round and round, to the rest of the input until it is
// used up or kMaxOperations reads have run. One GUID table lives for the
// whole input, so that sequence ids can refer to GUIDs read before.
//
// The exception readers may refuse input only with Yr::YrException; the
// error-code readers may not throw at all. Anything else that escapes is a
// bug and crashes the target, as does a value or a status that disagrees
// with the bytes.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Common/IO/GuidDeduplicationIProtocolX.h"
#include "Common/IO/IntegerSerializer.h"
#include "Common/IO/IntegerSerializerException.h"
#include "Common/IO/JavaDataInputProtocol.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Yr/BinaryIChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/IChannelX.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/UniString.h"
#include "Yr/YrException.h"

namespace {

namespace IO = Morvelan::Common::IO;

constexpr int kMaxOperations = 4096;
constexpr std::size_t kMaxCodes = 16;
constexpr int kOperationCount = 60;

// Room for the longest string and its NUL; too big for the stack.
char g_text[65536];

struct Operation {
    int index;
    int code;
};

[[noreturn]] void Fail(Operation operation, const char* what) {
    std::fprintf(stderr, "read %d (code %d): %s\n", operation.index, operation.code, what);
    std::abort();
}

void Check(bool condition, Operation operation, const char* what) {
    if (!condition) Fail(operation, what);
}

// How a read ended: with a value, at the end of the input, refused with the
// exception expected for bad data, or with some other exception.
enum class Outcome { kValue, kEnd, kRefused, kOther };

// Stands for "no refusal expected".
struct Never {};

template <class Refusal, class Read>
Outcome Attempt(Read read) {
    try {
        read();
        return Outcome::kValue;
    } catch (const Yr::EndOfInputException&) {
        return Outcome::kEnd;
    } catch (const Refusal&) {
        return Outcome::kRefused;
    } catch (const Yr::YrException&) {
        return Outcome::kOther;
    }
}

// The bytes not yet read, as the reference decoders see them.
struct Bytes {
    const unsigned char* at;
    std::size_t left;

    std::uint64_t BigEndian(std::size_t offset, std::size_t width) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) value = value << 8 | at[offset + i];
        return value;
    }
};

// Standard UTF-8 by the table of well-formed byte sequences: no overlong
// forms, surrogates or values past U+10FFFF.
bool IsWellFormedUtf8(const unsigned char* bytes, std::size_t size) {
    std::size_t i = 0;
    while (i < size) {
        const unsigned lead = bytes[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        std::size_t count;
        unsigned low = 0x80;
        unsigned high = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF) {
            count = 2;
        } else if (lead == 0xE0) {
            count = 3, low = 0xA0;
        } else if ((lead >= 0xE1 && lead <= 0xEC) || lead == 0xEE || lead == 0xEF) {
            count = 3;
        } else if (lead == 0xED) {
            count = 3, high = 0x9F;
        } else if (lead == 0xF0) {
            count = 4, low = 0x90;
        } else if (lead >= 0xF1 && lead <= 0xF3) {
            count = 4;
        } else if (lead == 0xF4) {
            count = 4, high = 0x8F;
        } else {
            return false;
        }
        if (size - i < count) return false;
        if (bytes[i + 1] < low || bytes[i + 1] > high) return false;
        for (std::size_t k = 2; k < count; ++k)
            if ((bytes[i + k] & 0xC0) != 0x80) return false;
        i += count;
    }
    return true;
}

struct ExpectedString {
    Outcome outcome;
    std::string_view bytes;
    std::size_t consumed;
};

ExpectedString ExpectString(const Bytes& input) {
    if (input.left < 2) return {Outcome::kEnd, {}, 0};
    const std::size_t count = input.BigEndian(0, 2);
    if (input.left - 2 < count) return {Outcome::kEnd, {}, 0};
    if (!IsWellFormedUtf8(input.at + 2, count)) return {Outcome::kRefused, {}, 0};
    return {Outcome::kValue, std::string_view(reinterpret_cast<const char*>(input.at + 2), count),
            2 + count};
}

struct ExpectedInteger {
    Outcome outcome;
    std::uint64_t value;
    std::size_t consumed;
};

// LEB128 as the serializer takes it: non-minimal forms are fine, but the
// tenth byte may hold only bit 63.
ExpectedInteger ExpectLeb128(const Bytes& input, bool narrow) {
    std::uint64_t value = 0;
    for (std::size_t index = 0;; ++index) {
        if (index == input.left) return {Outcome::kEnd, 0, 0};
        const unsigned byte = input.at[index];
        if (index == 9 && byte > 1) return {Outcome::kRefused, 0, 0};
        value |= static_cast<std::uint64_t>(byte & 0x7F) << (7 * index);
        if ((byte & 0x80) == 0) {
            if (narrow && value > 0xFFFFFFFFu) return {Outcome::kRefused, 0, 0};
            return {Outcome::kValue, value, index + 1};
        }
    }
}

template <std::size_t Size>
struct UnsignedOf;
template <>
struct UnsignedOf<1> {
    using Type = std::uint8_t;
};
template <>
struct UnsignedOf<2> {
    using Type = std::uint16_t;
};
template <>
struct UnsignedOf<4> {
    using Type = std::uint32_t;
};
template <>
struct UnsignedOf<8> {
    using Type = std::uint64_t;
};

template <class T>
std::uint64_t BitsOf(T value) {
    if constexpr (std::is_same_v<T, bool>)
        return value ? 1 : 0;
    else
        return std::bit_cast<typename UnsignedOf<sizeof(T)>::Type>(value);
}

template <class T>
std::uint64_t ExpectedBits(const Bytes& input) {
    // Only the byte 1 is true.
    if constexpr (std::is_same_v<T, bool>)
        return input.at[0] == 1 ? 1 : 0;
    else
        return input.BigEndian(0, sizeof(T));
}

// A GUID in reading order: 32, 16, 16 bits big-endian, then 8 bytes.
bool IsStandardGuid(const Yr::Guid& guid, const Bytes& input, std::size_t offset) {
    return guid.data1 == input.BigEndian(offset, 4) &&
           guid.data2 == input.BigEndian(offset + 4, 2) &&
           guid.data3 == input.BigEndian(offset + 6, 2) &&
           std::memcmp(guid.data4, input.at + offset + 8, 8) == 0;
}

class Reader {
public:
    Reader(const unsigned char* data, std::size_t size)
        : m_data(data),
          m_size(size),
          m_in(reinterpret_cast<const char*>(data), static_cast<Yr::UInt32>(size)),
          m_codeChannel(m_in),
          m_deduplicating(IO::JavaDataInputProtocolX::GetInstance()),
          m_standardChannel(m_in, IO::JavaDataInputProtocolX::GetInstance()) {}

    bool AtEnd() const { return m_in.GetAvailable() == 0; }

    void Run(Operation operation) {
        const Bytes before = Next();
        Dispatch(operation);
        Check(m_in.GetAvailable() <= before.left, operation, "the channel went backwards");
    }

private:
    const Yr::IProtocolX& Protocol(int which) const {
        if (which == 0) return IO::JavaDataInputProtocolX::GetInstance();
        if (which == 1) return IO::JavaDataInputProtocolX::GetOptimizedInstance();
        return m_deduplicating;
    }

    Bytes Next() const {
        const auto left = static_cast<std::size_t>(m_in.GetAvailable());
        return {m_data + (m_size - left), left};
    }

    std::size_t Consumed(const Bytes& before) const {
        return before.left - static_cast<std::size_t>(m_in.GetAvailable());
    }

    void Dispatch(Operation operation) {
        const int code = operation.code % kOperationCount;
        if (code < 45) {
            const Yr::IProtocolX& protocol = Protocol(code / 15);
            switch (code % 15) {
                case 0:
                    return FixedX<char>(operation, protocol);
                case 1:
                    return FixedX<unsigned char>(operation, protocol);
                case 2:
                    return FixedX<bool>(operation, protocol);
                case 3:
                    return FixedX<short>(operation, protocol);
                case 4:
                    return FixedX<unsigned short>(operation, protocol);
                case 5:
                    return FixedX<int>(operation, protocol);
                case 6:
                    return FixedX<unsigned int>(operation, protocol);
                case 7:
                    return FixedX<Yr::Int64>(operation, protocol);
                case 8:
                    return FixedX<Yr::UInt64>(operation, protocol);
                case 9:
                    return FixedX<float>(operation, protocol);
                case 10:
                    return FixedX<double>(operation, protocol);
                case 11:
                    if (code / 15 == 2) return DeduplicatedGuid(operation);
                    return GuidX(operation, protocol, code / 15 == 0);
                case 12:
                    return StringX(operation,
                                   [&](Yr::UniString& text) { protocol.Read(m_in, text); });
                case 13:
                    return Leb128<unsigned int>(operation, protocol);
                default:
                    return Leb128<unsigned long long>(operation, protocol);
            }
        }
        switch (code) {
            case 45:
                return StringX(operation, [&](Yr::UniString& text) { IO::ReadUTF(m_in, text); });
            case 46:
                return StringX(operation,
                               [&](Yr::UniString& text) { IO::ReadUTF(m_standardChannel, text); });
            case 47:
                return StringX(operation,
                               [&](Yr::UniString& text) { text = IO::ReadUTF(m_standardChannel); });
            case 48:
                return FixedCode<char>(operation);
            case 49:
                return FixedCode<bool>(operation);
            case 50:
                return FixedCode<short>(operation);
            case 51:
                return FixedCode<unsigned short>(operation);
            case 52:
                return FixedCode<int>(operation);
            case 53:
                return FixedCode<Yr::Int64>(operation);
            case 54:
                return FixedCode<float>(operation);
            case 55:
                return FixedCode<double>(operation);
            case 56:
                return GuidCode(operation);
            case 57:
                return NarrowStringCode(operation);
            case 58:
                return StringCode(operation, [&](Yr::UniString& text) {
                    return m_codeProtocol.Read(m_codeChannel, text);
                });
            default:
                return StringCode(operation, [&](Yr::UniString& text) {
                    return IO::ReadUTF(m_codeChannel, text);
                });
        }
    }

    template <class T>
    void FixedX(Operation operation, const Yr::IProtocolX& protocol) {
        const Bytes before = Next();
        T value{};
        const Outcome outcome = Attempt<Never>([&] { protocol.Read(m_in, value); });
        if (before.left < sizeof(T)) {
            Check(outcome == Outcome::kEnd, operation, "a cut value was not the end of input");
            return;
        }
        Check(outcome == Outcome::kValue, operation, "a whole value was refused");
        Check(Consumed(before) == sizeof(T), operation, "a value took the wrong number of bytes");
        Check(BitsOf(value) == ExpectedBits<T>(before), operation,
              "a value differs from its bytes");
    }

    void GuidX(Operation operation, const Yr::IProtocolX& protocol, bool standard) {
        const Bytes before = Next();
        Yr::Guid value{};
        const Outcome outcome = Attempt<Never>([&] { protocol.Read(m_in, value); });
        if (before.left < sizeof value) {
            Check(outcome == Outcome::kEnd, operation, "a cut GUID was not the end of input");
            return;
        }
        Check(outcome == Outcome::kValue, operation, "a whole GUID was refused");
        Check(Consumed(before) == sizeof value, operation, "a GUID took the wrong number of bytes");
        Check(standard ? IsStandardGuid(value, before, 0)
                       : std::memcmp(&value, before.at, sizeof value) == 0,
              operation, "a GUID differs from its bytes");
    }

    void DeduplicatedGuid(Operation operation) {
        const Bytes before = Next();
        Yr::Guid value{};
        const Outcome outcome =
            Attempt<Yr::IOException>([&] { m_deduplicating.Read(m_in, value); });
        const unsigned selector = before.left > 0 ? before.at[0] : 0;
        const std::size_t needed = selector == 1 ? 17 : selector == 2 ? 5 : 1;
        if (before.left < needed) {
            Check(outcome == Outcome::kEnd, operation, "a cut GUID was not the end of input");
            return;
        }
        if (selector == 1) {
            Check(outcome == Outcome::kValue, operation, "a whole GUID was refused");
            Check(Consumed(before) == needed, operation, "a GUID took the wrong number of bytes");
            Check(IsStandardGuid(value, before, 1), operation, "a GUID differs from its bytes");
            m_guids.push_back(value);
            return;
        }
        const std::uint64_t id = selector == 2 ? before.BigEndian(1, 4) : 0;
        if (selector != 2 || id >= m_guids.size()) {
            Check(outcome == Outcome::kRefused, operation, "a bad selector or id was not refused");
            return;
        }
        Check(outcome == Outcome::kValue, operation, "a known sequence id was refused");
        Check(Consumed(before) == needed, operation,
              "a sequence id took the wrong number of bytes");
        Check(value == m_guids[id], operation, "a sequence id gave another GUID");
    }

    template <class Read>
    void StringX(Operation operation, Read read) {
        const Bytes before = Next();
        Yr::UniString text("x");
        const Outcome outcome = Attempt<Yr::ConversionErrorException>([&] { read(text); });
        const ExpectedString expected = ExpectString(before);
        Check(outcome == expected.outcome, operation,
              "a string read ended otherwise than expected");
        if (outcome != Outcome::kValue) return;
        Check(Consumed(before) == expected.consumed, operation,
              "a string took the wrong number of bytes");
        Check(text.ToUtf8() == expected.bytes, operation, "a string differs from its bytes");
    }

    template <class T>
    void Leb128(Operation operation, const Yr::IProtocolX& protocol) {
        const Bytes before = Next();
        Yr::IChannelX channel(m_in, protocol);
        T value = 0;
        const Outcome outcome = Attempt<IO::IntegerSerializerException>(
            [&] { IO::IntegerSerializer::Read(channel, value); });
        const ExpectedInteger expected = ExpectLeb128(before, sizeof(T) == 4);
        Check(outcome == expected.outcome, operation,
              "an integer read ended otherwise than expected");
        if (outcome != Outcome::kValue) return;
        Check(Consumed(before) == expected.consumed, operation,
              "an integer took the wrong number of bytes");
        Check(value == expected.value, operation, "an integer differs from its bytes");
    }

    // The status of a value cut short: the clean end when nothing of it was
    // there, damaged data when part of it was.
    static Yr::YrErrCode CutStatus(const Bytes& before) {
        return before.left == 0 ? Yr::kEndOfInputErrorCode : Yr::kDataIntegrityErrorCode;
    }

    template <class T>
    void FixedCode(Operation operation) {
        const Bytes before = Next();
        T value{};
        const Yr::YrErrCode status = m_codeProtocol.Read(m_codeChannel, value);
        if (before.left < sizeof(T)) {
            Check(status == CutStatus(before), operation, "a cut value gave the wrong status");
            return;
        }
        Check(status == 0, operation, "a whole value failed");
        Check(Consumed(before) == sizeof(T), operation, "a value took the wrong number of bytes");
        Check(BitsOf(value) == ExpectedBits<T>(before), operation,
              "a value differs from its bytes");
    }

    void GuidCode(Operation operation) {
        const Bytes before = Next();
        Yr::Guid value{};
        const Yr::YrErrCode status = m_codeProtocol.Read(m_codeChannel, value);
        if (before.left < sizeof value) {
            Check(status == CutStatus(before), operation, "a cut GUID gave the wrong status");
            return;
        }
        Check(status == 0, operation, "a whole GUID failed");
        Check(Consumed(before) == sizeof value, operation, "a GUID took the wrong number of bytes");
        Check(IsStandardGuid(value, before, 0), operation, "a GUID differs from its bytes");
    }

    // Common checks of the error-code string readers; true when a value came.
    bool CheckStringStatus(Operation operation, const Bytes& before, const ExpectedString& expected,
                           Yr::YrErrCode status) {
        switch (expected.outcome) {
            case Outcome::kValue:
                Check(status == 0, operation, "a whole string failed");
                Check(Consumed(before) == expected.consumed, operation,
                      "a string took the wrong number of bytes");
                return true;
            case Outcome::kEnd:
                // Once the length has come, either status may stand for the
                // missing body.
                Check(before.left < 2 ? status == CutStatus(before)
                                      : status == Yr::kEndOfInputErrorCode ||
                                            status == Yr::kDataIntegrityErrorCode,
                      operation, "a cut string gave the wrong status");
                return false;
            default:
                Check(status == Yr::kReadErrorCode, operation,
                      "a string of bad UTF-8 gave the wrong status");
                return false;
        }
    }

    template <class Read>
    void StringCode(Operation operation, Read read) {
        const Bytes before = Next();
        Yr::UniString text("x");
        const Yr::YrErrCode status = read(text);
        const ExpectedString expected = ExpectString(before);
        if (CheckStringStatus(operation, before, expected, status))
            Check(text.ToUtf8() == expected.bytes, operation, "a string differs from its bytes");
    }

    void NarrowStringCode(Operation operation) {
        const Bytes before = Next();
        g_text[0] = 'x';
        const Yr::YrErrCode status = m_codeProtocol.Read(m_codeChannel, g_text);
        const ExpectedString expected = ExpectString(before);
        if (CheckStringStatus(operation, before, expected, status))
            Check(std::memcmp(g_text, expected.bytes.data(), expected.bytes.size()) == 0 &&
                      g_text[expected.bytes.size()] == '\0',
                  operation, "a narrow string differs from its bytes");
    }

    const unsigned char* m_data;
    std::size_t m_size;
    Yr::MemoryIBinaryChannel m_in;
    Yr::BinaryIChannel m_codeChannel;
    IO::JavaDataInputProtocol m_codeProtocol;
    IO::GuidDeduplicationIProtocolX m_deduplicating;
    Yr::IChannelX m_standardChannel;
    // What the deduplicating reader's table should hold.
    std::vector<Yr::Guid> m_guids;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 0x7FFFFFFF) return 0;
    const std::size_t codeCount = std::min<std::size_t>(1 + data[0] % kMaxCodes, size - 1);
    const std::uint8_t* codes = data + 1;
    Reader reader(data + 1 + codeCount, size - 1 - codeCount);
    for (int index = 0; index < kMaxOperations; ++index) {
        // One read at the end too: every reader must report it properly.
        const bool atEnd = reader.AtEnd();
        reader.Run({index, codes[static_cast<std::size_t>(index) % codeCount]});
        if (atEnd) break;
    }
    return 0;
}
