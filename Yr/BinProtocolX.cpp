#include "Yr/BinProtocolX.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/UniString.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/BinProtocolX";

void ReadExactly(IBinaryChannel& channel, char* buffer, UInt32 size) {
    if (IBinaryChannelUtilities::ReadFully(channel, buffer, size) < size)
        throw EndOfInputException("End of input reached.", kSourceUnit, __LINE__,
                                  kEndOfInputErrorCode);
}

// Fixed-width values travel as their unsigned bit pattern of the same size.
template <class Bits>
Bits ReadLittleEndian(IBinaryChannel& channel) {
    unsigned char bytes[sizeof(Bits)];
    ReadExactly(channel, reinterpret_cast<char*>(bytes), sizeof bytes);
    Bits value = 0;
    for (std::size_t i = sizeof bytes; i-- > 0;) value = static_cast<Bits>((value << 8) | bytes[i]);
    return value;
}

template <class Bits>
void WriteLittleEndian(OBinaryChannel& channel, Bits value) {
    char bytes[sizeof(Bits)];
    for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<char>(value >> (8 * i));
    channel.Write(bytes, sizeof bytes);
}

class BinIProtocolX final : public IProtocolX {
public:
    using IProtocolX::Read;

    void Read(IBinaryChannel& channel, char& value) const override {
        value = static_cast<char>(ReadLittleEndian<UInt8>(channel));
    }
    void Read(IBinaryChannel& channel, bool& value) const override {
        value = ReadLittleEndian<UInt8>(channel) == 1;
    }
    void Read(IBinaryChannel& channel, short& value) const override {
        value = static_cast<short>(ReadLittleEndian<UInt16>(channel));
    }
    void Read(IBinaryChannel& channel, unsigned short& value) const override {
        value = ReadLittleEndian<UInt16>(channel);
    }
    void Read(IBinaryChannel& channel, int& value) const override {
        value = static_cast<int>(ReadLittleEndian<UInt32>(channel));
    }
    void Read(IBinaryChannel& channel, Int64& value) const override {
        value = static_cast<Int64>(ReadLittleEndian<UInt64>(channel));
    }
    void Read(IBinaryChannel& channel, float& value) const override {
        value = std::bit_cast<float>(ReadLittleEndian<UInt32>(channel));
    }
    void Read(IBinaryChannel& channel, double& value) const override {
        value = std::bit_cast<double>(ReadLittleEndian<UInt64>(channel));
    }
    void Read(IBinaryChannel& channel, UniString& value) const override;
};

void BinIProtocolX::Read(IBinaryChannel& channel, UniString& value) const {
    const UInt32 count = ReadLittleEndian<UInt32>(channel);
    if (count > kBinProtocolXMaxStringBytes)
        throw IOException(UniString::Printf("Invalid string length: %lu bytes exceed the limit "
                                            "of %lu.",
                                            count, kBinProtocolXMaxStringBytes),
                          kSourceUnit, __LINE__, kIOErrorCode);
    // Grown as the bytes arrive, so a count the stream cannot back costs
    // no more memory than the bytes really there.
    constexpr UInt32 kStep = 64u << 10;
    std::string bytes;
    while (bytes.size() < count) {
        const std::size_t done = bytes.size();
        const UInt32 part = std::min<UInt32>(kStep, count - static_cast<UInt32>(done));
        bytes.resize(done + part);
        ReadExactly(channel, bytes.data() + done, part);
    }
    value = UniString::FromUtf8(bytes);
}

class BinOProtocolX final : public OProtocolX {
public:
    using OProtocolX::Write;

    void Write(OBinaryChannel& channel, char value) const override { channel.Write(&value, 1); }
    void Write(OBinaryChannel& channel, bool value) const override {
        WriteLittleEndian<UInt8>(channel, value ? 1 : 0);
    }
    void Write(OBinaryChannel& channel, short value) const override {
        WriteLittleEndian(channel, static_cast<UInt16>(value));
    }
    void Write(OBinaryChannel& channel, unsigned short value) const override {
        WriteLittleEndian<UInt16>(channel, value);
    }
    void Write(OBinaryChannel& channel, int value) const override {
        WriteLittleEndian(channel, static_cast<UInt32>(value));
    }
    void Write(OBinaryChannel& channel, Int64 value) const override {
        WriteLittleEndian(channel, static_cast<UInt64>(value));
    }
    void Write(OBinaryChannel& channel, float value) const override {
        WriteLittleEndian(channel, std::bit_cast<UInt32>(value));
    }
    void Write(OBinaryChannel& channel, double value) const override {
        WriteLittleEndian(channel, std::bit_cast<UInt64>(value));
    }
    void Write(OBinaryChannel& channel, long double value) const override {
        Write(channel, static_cast<double>(value));
    }
    void Write(OBinaryChannel& channel, const UniString& value) const override;
};

void BinOProtocolX::Write(OBinaryChannel& channel, const UniString& value) const {
    const std::string& bytes = value.ToUtf8();
    // Refused here rather than written: the reader would refuse it anyway.
    if (bytes.size() > kBinProtocolXMaxStringBytes)
        throw DataIntegrityException("String length exceeds limit.", kSourceUnit, __LINE__,
                                     kDataIntegrityErrorCode);
    const auto count = static_cast<UInt32>(bytes.size());
    WriteLittleEndian(channel, count);
    if (count > 0) channel.Write(bytes.data(), count);
}

}  // namespace

const IProtocolX& GetBinIProtocolX() {
    static const BinIProtocolX instance;
    return instance;
}

const OProtocolX& GetBinOProtocolX() {
    static const BinOProtocolX instance;
    return instance;
}

}  // namespace Yr
