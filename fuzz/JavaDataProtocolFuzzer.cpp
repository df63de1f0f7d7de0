// Reads the input with every reader of the Java data layout. The first byte
// gives how many operation codes follow (1 to 16); the codes choose the
// readers in turn, round and round, until the input is used up. One GUID
// table lives for the whole input, so sequence ids can refer to GUIDs read
// before.
//
// The exception readers may refuse input only with Yr::YrException; the
// error-code readers may not throw at all and answer only with the statuses
// they document. Anything else crashes the target.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Common/IO/GuidDeduplicationIProtocolX.h"
#include "Common/IO/IntegerSerializer.h"
#include "Common/IO/JavaDataInputProtocol.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Yr/BinaryIChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Guid.h"
#include "Yr/IChannelX.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"

namespace {

namespace IO = Morvelan::Common::IO;

constexpr std::size_t kMaxCodes = 16;
constexpr int kMaxOperations = 4096;

// Room for the longest string and its NUL; too big for the stack.
char g_text[65536];

void ExpectStatus(Yr::YrErrCode status) {
    if (status != 0 && status != Yr::kEndOfInputErrorCode &&
        status != Yr::kDataIntegrityErrorCode && status != Yr::kReadErrorCode)
        std::abort();
}

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size)
        : m_in(reinterpret_cast<const char*>(data), static_cast<Yr::UInt32>(size)),
          m_codeChannel(m_in),
          m_deduplicating(IO::JavaDataInputProtocolX::GetInstance()),
          m_extended(m_in, m_deduplicating) {}

    bool AtEnd() const { return m_in.GetAvailable() == 0; }

    void Run(std::uint8_t code) {
        const Yr::UInt64 before = m_in.GetAvailable();
        if (code % 2 == 0) {
            try {
                ReadX(code / 2);
            } catch (const Yr::YrException&) {
            }
        } else {
            ReadWithCodes(code / 2);
        }
        if (m_in.GetAvailable() > before) std::abort();
    }

private:
    template <class T>
    void Read(const Yr::IProtocolX& protocol) {
        T value{};
        protocol.Read(m_in, value);
    }

    void ReadX(int code) {
        const Yr::IProtocolX* protocols[] = {&IO::JavaDataInputProtocolX::GetInstance(),
                                             &IO::JavaDataInputProtocolX::GetOptimizedInstance(),
                                             &m_deduplicating};
        const Yr::IProtocolX& protocol = *protocols[code % 3];
        switch (code / 3 % 14) {
            case 0:
                return Read<char>(protocol);
            case 1:
                return Read<unsigned char>(protocol);
            case 2:
                return Read<bool>(protocol);
            case 3:
                return Read<short>(protocol);
            case 4:
                return Read<unsigned short>(protocol);
            case 5:
                return Read<int>(protocol);
            case 6:
                return Read<unsigned int>(protocol);
            case 7:
                return Read<Yr::Int64>(protocol);
            case 8:
                return Read<double>(protocol);
            case 9:
                return Read<Yr::Guid>(protocol);
            case 10:
                return Read<Yr::UniString>(protocol);
            case 11: {
                unsigned int value = 0;
                return IO::IntegerSerializer::Read(m_extended, value);
            }
            case 12: {
                unsigned long long value = 0;
                return IO::IntegerSerializer::Read(m_extended, value);
            }
            default: {
                Yr::UniString text = IO::ReadUTF(m_extended);
                return;
            }
        }
    }

    template <class T>
    void ReadWithCodes() {
        T value{};
        ExpectStatus(m_codeProtocol.Read(m_codeChannel, value));
    }

    void ReadWithCodes(int code) {
        switch (code % 8) {
            case 0:
                return ReadWithCodes<bool>();
            case 1:
                return ReadWithCodes<short>();
            case 2:
                return ReadWithCodes<int>();
            case 3:
                return ReadWithCodes<Yr::Int64>();
            case 4:
                return ReadWithCodes<float>();
            case 5:
                return ReadWithCodes<Yr::Guid>();
            case 6:
                return ReadWithCodes<Yr::UniString>();
            default:
                ExpectStatus(m_codeProtocol.Read(m_codeChannel, g_text));
        }
    }

    Yr::MemoryIBinaryChannel m_in;
    Yr::BinaryIChannel m_codeChannel;
    IO::JavaDataInputProtocol m_codeProtocol;
    IO::GuidDeduplicationIProtocolX m_deduplicating;
    Yr::IChannelX m_extended;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 0x7FFFFFFF) return 0;
    const std::size_t codeCount = std::min<std::size_t>(1 + data[0] % kMaxCodes, size - 1);
    const std::uint8_t* codes = data + 1;
    Reader reader(data + 1 + codeCount, size - 1 - codeCount);
    for (int index = 0; index < kMaxOperations; ++index) {
        // One read at the end too: every reader must report the end properly.
        const bool atEnd = reader.AtEnd();
        reader.Run(codes[static_cast<std::size_t>(index) % codeCount]);
        if (atEnd) break;
    }
    return 0;
}
