// Wire strings and variable-length integers of the Java data protocols, each
// against the plainest code that produces or consumes the same bytes. Every
// benchmark checks its bytes or values once before timing, so a fast wrong
// answer cannot pass as a result.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "Common/IO/IntegerSerializer.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/JavaDataOutputProtocolUtils.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Yr/IChannelX.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryManager.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "Yr/OChannelX.h"
#include "Yr/UniString.h"
#include "bench/BenchmarkData.h"

namespace {

using Morvelan::Common::IO::IntegerSerializer;
using Morvelan::Common::IO::JavaDataInputProtocolX;
using Morvelan::Common::IO::JavaDataOutputProtocolX;

// A batch per iteration keeps the channels' memory bounded however long the
// benchmark runs.
constexpr std::size_t kStringCount = 1024;
constexpr std::size_t kStringBytes = 32;
constexpr std::size_t kStringWireBytes = kStringCount * (2 + kStringBytes);
constexpr std::size_t kValueCount = 4096;

// Printable ASCII: valid UTF-8 with no U+0000, so both sides send every byte.
std::vector<std::string> AsciiStrings() {
    const std::string random = Morvelan::Bench::RandomBytes(kStringCount * kStringBytes);
    std::vector<std::string> strings;
    for (std::size_t i = 0; i < kStringCount; ++i) {
        std::string text(kStringBytes, ' ');
        for (std::size_t k = 0; k < kStringBytes; ++k)
            text[k] = static_cast<char>(
                ' ' + static_cast<unsigned char>(random[i * kStringBytes + k]) % 95);
        strings.push_back(std::move(text));
    }
    return strings;
}

// The strings as the wire carries them, built by hand rather than by the
// code under test.
std::string StringWire(const std::vector<std::string>& strings) {
    std::string wire;
    for (const std::string& text : strings) {
        wire.push_back(static_cast<char>(text.size() >> 8));
        wire.push_back(static_cast<char>(text.size() & 0xFF));
        wire += text;
    }
    return wire;
}

// Mostly one- and two-byte values, as counts and lengths are, with a tail of
// wide ones up to the full 64 bits.
std::vector<unsigned long long> MixedValues() {
    std::mt19937_64 generator(7);
    std::vector<unsigned long long> values;
    for (std::size_t i = 0; i < kValueCount; ++i) {
        const unsigned kind = static_cast<unsigned>(generator() % 100);
        unsigned bits;
        if (kind < 60)
            bits = 7;
        else if (kind < 85)
            bits = 14;
        else if (kind < 95)
            bits = 15 + static_cast<unsigned>(generator() % 18);  // up to 32
        else
            bits = 33 + static_cast<unsigned>(generator() % 32);  // up to 64
        values.push_back(generator() >> (64 - bits));
    }
    return values;
}

std::string Leb128Wire(const std::vector<unsigned long long>& values) {
    std::string wire;
    for (unsigned long long value : values) {
        while (value >= 0x80) {
            wire.push_back(static_cast<char>((value & 0x7F) | 0x80));
            value >>= 7;
        }
        wire.push_back(static_cast<char>(value));
    }
    return wire;
}

std::string FixedWire(const std::vector<unsigned long long>& values) {
    std::string wire;
    for (unsigned long long value : values)
        for (int shift = 56; shift >= 0; shift -= 8)
            wire.push_back(static_cast<char>((value >> shift) & 0xFF));
    return wire;
}

// One block handed from each iteration's channel to the next: the channel
// starts empty every time but never grows or allocates inside the loop.
class ReusedBlock {
public:
    explicit ReusedBlock(std::size_t capacity)
        : m_capacity(static_cast<Yr::UInt32>(capacity)),
          m_block(static_cast<char*>(Yr::MemoryManager::Allocate(capacity))) {}
    ReusedBlock(const ReusedBlock&) = delete;
    ReusedBlock& operator=(const ReusedBlock&) = delete;
    ~ReusedBlock() { Yr::MemoryManager::Free(m_block); }

    Yr::UInt32 GetCapacity() const { return m_capacity; }
    char* Take() {
        char* block = m_block;
        m_block = nullptr;
        return block;
    }
    void GiveBack(char* block) { m_block = block; }

private:
    Yr::UInt32 m_capacity;
    char* m_block;
};

bool Matches(const Yr::MemoryOBinaryChannel& channel, const std::string& expected) {
    return channel.GetSize() == expected.size() &&
           std::memcmp(channel.GetBuffer(), expected.data(), expected.size()) == 0;
}

// ---- strings out ----------------------------------------------------------

void BM_WriteUTF(benchmark::State& state) {
    const std::vector<std::string> plain = AsciiStrings();
    std::vector<Yr::UniString> texts;
    for (const std::string& text : plain) texts.emplace_back(text.data(), text.size());
    ReusedBlock block(kStringWireBytes);
    {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        for (const Yr::UniString& text : texts) Morvelan::Common::IO::WriteUTF(out, text);
        const bool ok = Matches(out, StringWire(plain));
        block.GiveBack(out.ReleaseBuffer());
        if (!ok) return state.SkipWithError("WriteUTF wrote other bytes");
    }
    for (auto _ : state) {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        for (const Yr::UniString& text : texts) Morvelan::Common::IO::WriteUTF(out, text);
        benchmark::DoNotOptimize(out.GetBuffer());
        benchmark::ClobberMemory();
        block.GiveBack(out.ReleaseBuffer());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kStringWireBytes));
}

// The peer: the length and a memcpy into a buffer sized beforehand.
void BM_WriteUTFPlain(benchmark::State& state) {
    const std::vector<std::string> plain = AsciiStrings();
    std::vector<char> out(kStringWireBytes);
    auto writeAll = [&] {
        char* at = out.data();
        for (const std::string& text : plain) {
            at[0] = static_cast<char>(text.size() >> 8);
            at[1] = static_cast<char>(text.size() & 0xFF);
            std::memcpy(at + 2, text.data(), text.size());
            at += 2 + text.size();
        }
    };
    writeAll();
    if (std::string(out.begin(), out.end()) != StringWire(plain))
        return state.SkipWithError("plain writer wrote other bytes");
    for (auto _ : state) {
        writeAll();
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kStringWireBytes));
}

// ---- strings in -----------------------------------------------------------

void BM_ReadUTF(benchmark::State& state) {
    const std::vector<std::string> plain = AsciiStrings();
    const std::string wire = StringWire(plain);
    Yr::UniString text;
    {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        for (const std::string& expected : plain) {
            Morvelan::Common::IO::ReadUTF(in, text);
            if (text.ToUtf8() != expected) return state.SkipWithError("ReadUTF read other text");
        }
    }
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        for (std::size_t i = 0; i < kStringCount; ++i) {
            Morvelan::Common::IO::ReadUTF(in, text);
            benchmark::DoNotOptimize(text);
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kStringWireBytes));
}

// The peer: a bounds check, the length, and the bytes handed back as a fresh
// std::string, as a decoder returning by value does.
void BM_ReadUTFPlain(benchmark::State& state) {
    const std::vector<std::string> plain = AsciiStrings();
    const std::string wire = StringWire(plain);
    const char* const end = wire.data() + wire.size();
    {
        const char* at = wire.data();
        for (const std::string& expected : plain) {
            const std::size_t count = static_cast<std::size_t>(
                static_cast<unsigned char>(at[0]) << 8 | static_cast<unsigned char>(at[1]));
            if (std::string(at + 2, count) != expected)
                return state.SkipWithError("plain reader read other text");
            at += 2 + count;
        }
    }
    for (auto _ : state) {
        const char* at = wire.data();
        for (std::size_t i = 0; i < kStringCount; ++i) {
            if (end - at < 2) break;
            const std::size_t count = static_cast<std::size_t>(
                static_cast<unsigned char>(at[0]) << 8 | static_cast<unsigned char>(at[1]));
            if (static_cast<std::size_t>(end - at - 2) < count) break;
            std::string text(at + 2, count);
            benchmark::DoNotOptimize(text);
            at += 2 + count;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kStringWireBytes));
}

// ---- integers out ---------------------------------------------------------

void BM_LEB128Write(benchmark::State& state) {
    const std::vector<unsigned long long> values = MixedValues();
    const std::string expected = Leb128Wire(values);
    const auto& protocol = JavaDataOutputProtocolX::GetInstance();
    ReusedBlock block(expected.size());
    {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        Yr::OChannelX channel(out, protocol);
        for (unsigned long long value : values) IntegerSerializer::Write(channel, value);
        const bool ok = Matches(out, expected);
        block.GiveBack(out.ReleaseBuffer());
        if (!ok) return state.SkipWithError("IntegerSerializer wrote other bytes");
    }
    for (auto _ : state) {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        Yr::OChannelX channel(out, protocol);
        for (unsigned long long value : values) IntegerSerializer::Write(channel, value);
        benchmark::DoNotOptimize(out.GetBuffer());
        benchmark::ClobberMemory();
        block.GiveBack(out.ReleaseBuffer());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kValueCount));
    state.counters["wire_bytes"] = static_cast<double>(expected.size());
}

// The peer: the same values as fixed 8-byte numbers through the same kind
// of extended channel.
void BM_FixedInt64Write(benchmark::State& state) {
    const std::vector<unsigned long long> values = MixedValues();
    const std::string expected = FixedWire(values);
    const auto& protocol = JavaDataOutputProtocolX::GetInstance();
    ReusedBlock block(expected.size());
    {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        Yr::OChannelX channel(out, protocol);
        for (unsigned long long value : values) channel.Write(static_cast<Yr::Int64>(value));
        const bool ok = Matches(out, expected);
        block.GiveBack(out.ReleaseBuffer());
        if (!ok) return state.SkipWithError("fixed writer wrote other bytes");
    }
    for (auto _ : state) {
        Yr::MemoryOBinaryChannel out(block.Take(), 0, block.GetCapacity(), true);
        Yr::OChannelX channel(out, protocol);
        for (unsigned long long value : values) channel.Write(static_cast<Yr::Int64>(value));
        benchmark::DoNotOptimize(out.GetBuffer());
        benchmark::ClobberMemory();
        block.GiveBack(out.ReleaseBuffer());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kValueCount));
    state.counters["wire_bytes"] = static_cast<double>(expected.size());
}

// ---- integers in ----------------------------------------------------------

void BM_LEB128Read(benchmark::State& state) {
    const std::vector<unsigned long long> values = MixedValues();
    const std::string wire = Leb128Wire(values);
    const auto& protocol = JavaDataInputProtocolX::GetInstance();
    {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        Yr::IChannelX channel(in, protocol);
        for (unsigned long long expected : values) {
            unsigned long long value = 0;
            IntegerSerializer::Read(channel, value);
            if (value != expected)
                return state.SkipWithError("IntegerSerializer read other values");
        }
    }
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        Yr::IChannelX channel(in, protocol);
        unsigned long long sum = 0;
        for (std::size_t i = 0; i < kValueCount; ++i) {
            unsigned long long value = 0;
            IntegerSerializer::Read(channel, value);
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kValueCount));
}

void BM_FixedInt64Read(benchmark::State& state) {
    const std::vector<unsigned long long> values = MixedValues();
    const std::string wire = FixedWire(values);
    const auto& protocol = JavaDataInputProtocolX::GetInstance();
    {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        Yr::IChannelX channel(in, protocol);
        for (unsigned long long expected : values) {
            Yr::Int64 value = 0;
            channel.Read(value);
            if (static_cast<unsigned long long>(value) != expected)
                return state.SkipWithError("fixed reader read other values");
        }
    }
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel in(wire.data(), static_cast<Yr::UInt32>(wire.size()));
        Yr::IChannelX channel(in, protocol);
        unsigned long long sum = 0;
        for (std::size_t i = 0; i < kValueCount; ++i) {
            Yr::Int64 value = 0;
            channel.Read(value);
            sum += static_cast<unsigned long long>(value);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kValueCount));
}

BENCHMARK(BM_WriteUTF);
BENCHMARK(BM_WriteUTFPlain);
BENCHMARK(BM_ReadUTF);
BENCHMARK(BM_ReadUTFPlain);
BENCHMARK(BM_LEB128Write);
BENCHMARK(BM_FixedInt64Write);
BENCHMARK(BM_LEB128Read);
BENCHMARK(BM_FixedInt64Read);

}  // namespace
