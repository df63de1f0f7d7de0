#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "Common/IO/QuickLZCompressor.h"
#include "Common/IO/QuickLZDecompressor.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"

namespace {

namespace fs = std::filesystem;
using Morvelan::Common::IO::QuickLZCompressor;
using Morvelan::Common::IO::QuickLZDecompressor;
using Morvelan::Testing::BytesFromHex;
using Morvelan::Testing::Hex;

using Blocks = std::vector<std::string>;

const fs::path kVectors = fs::path(MORVELAN_TEST_DATA) / "quicklz";
constexpr Yr::UInt32 kPacket = 262144;

std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The whole streams of a setting, NAME.qlz; NAME.K.qlz holds block K alone.
std::vector<std::string> StreamNames(const std::string& setting) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kVectors / setting))
        if (entry.path().stem().extension().empty()) names.push_back(entry.path().stem().string());
    EXPECT_GE(names.size(), 15u) << setting;
    return names;
}

// The per-block files of a sequence, in order; empty for a single block.
Blocks BlockFiles(const std::string& setting, const std::string& name) {
    Blocks blocks;
    for (fs::path path; fs::exists(path = kVectors / setting /
                                          (name + "." + std::to_string(blocks.size()) + ".qlz"));)
        blocks.push_back(ReadFile(path));
    return blocks;
}

Blocks SplitBlocks(const std::string& stream) {
    Blocks blocks;
    for (std::size_t at = 0; at < stream.size();) {
        const Yr::UInt32 size = QuickLZDecompressor::GetCompressedSize(stream.data() + at);
        blocks.push_back(stream.substr(at, size));
        at += size;
    }
    return blocks;
}

// Each block into an output of exactly its size, so that any overrun shows
// under the sanitizers.
std::string DecompressAll(const Blocks& blocks) {
    QuickLZDecompressor decompressor;
    std::string data;
    for (const std::string& block : blocks) {
        std::vector<char> output(QuickLZDecompressor::GetDecompressedSize(block.data()));
        const Yr::UInt32 size =
            decompressor.Decompress(block.data(), static_cast<Yr::UInt32>(block.size()),
                                    output.data(), static_cast<Yr::UInt32>(output.size()));
        data.append(output.data(), size);
    }
    return data;
}

Blocks CompressPackets(QuickLZCompressor& compressor, const std::string& data, std::size_t packet) {
    Blocks blocks;
    for (std::size_t at = 0; at < data.size(); at += packet) {
        const auto size = static_cast<Yr::UInt32>(std::min(packet, data.size() - at));
        std::string block(size + QuickLZCompressor::kMaxExpansion, '\0');
        block.resize(compressor.Compress(data.data() + at, size, block.data()));
        blocks.push_back(block);
    }
    return blocks;
}

std::string Generate(const std::string& kind, std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string data;
    while (data.size() < size) {
        if (kind == "random") {
            data += static_cast<char>(random());
        } else if (kind == "runs") {
            data.append(1 + random() % 300, static_cast<char>("ab\0"[random() % 3]));
        } else {
            static const char* const kWords[] = {"the ", "quick ", "brown ", "fox\n", "jumps "};
            data += kWords[random() % 5];
            if (kind == "mixed" && random() % 50 == 0) data += Generate("random", 500, random());
        }
    }
    data.resize(size);
    return data;
}

class QuickLZVectorTest : public testing::TestWithParam<const char*> {};

TEST_P(QuickLZVectorTest, DecodesEveryStream) {
    for (const std::string& name : StreamNames(GetParam())) {
        SCOPED_TRACE(name);
        const Blocks blocks = SplitBlocks(ReadFile(kVectors / GetParam() / (name + ".qlz")));
        const Blocks files = BlockFiles(GetParam(), name);
        if (!files.empty()) {
            EXPECT_EQ(blocks, files);
        }
        EXPECT_TRUE(DecompressAll(blocks) == ReadFile(kVectors / "inputs" / (name + ".bin")));
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, QuickLZVectorTest,
                         testing::Values("L1-S0", "L1-S1000000", "L2-S0", "L3-S0", "L3-S1000000"));

struct CompressorSetting {
    const char* folder;
    Yr::UInt32 streamingBuffer;
};

class QuickLZCompressorVectorTest : public testing::TestWithParam<CompressorSetting> {};

// Sequences go packet by packet through one compressor, as many packets as
// the vector has blocks.
TEST_P(QuickLZCompressorVectorTest, ReproducesEveryStream) {
    const CompressorSetting setting = GetParam();
    for (const std::string& name : StreamNames(setting.folder)) {
        SCOPED_TRACE(name);
        const std::string input = ReadFile(kVectors / "inputs" / (name + ".bin"));
        Blocks expected = BlockFiles(setting.folder, name);
        if (expected.empty())
            expected.push_back(ReadFile(kVectors / setting.folder / (name + ".qlz")));
        QuickLZCompressor compressor(setting.streamingBuffer);
        const Blocks blocks = CompressPackets(compressor, input, input.size() / expected.size());
        ASSERT_EQ(blocks.size(), expected.size());
        for (std::size_t k = 0; k < blocks.size(); ++k)
            EXPECT_EQ(Hex(blocks[k]), Hex(expected[k])) << "block " << k;
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, QuickLZCompressorVectorTest,
                         testing::Values(CompressorSetting{"L1-S1000000", 1000000},
                                         CompressorSetting{"L1-S0", 0}));

// One stream per buffer and kind, blocks of growing size; later blocks may
// refer to earlier ones.
TEST(QuickLZTest, RoundTripsGeneratedData) {
    const std::size_t sizes[] = {1,  2,  3,  4,   5,   6,   10,   11,   12,    13,
                                 41, 42, 43, 215, 216, 217, 1000, 4097, 65536, 70000};
    for (const Yr::UInt32 buffer : {0u, 100000u, 1000000u})
        for (const char* kind : {"random", "runs", "text", "mixed"}) {
            SCOPED_TRACE(testing::Message() << kind << " buffer " << buffer);
            QuickLZCompressor compressor(buffer);
            Blocks blocks;
            std::string data;
            for (const std::size_t size : sizes) {
                const std::string piece = Generate(kind, size, static_cast<unsigned>(size));
                blocks.push_back(CompressPackets(compressor, piece, size).front());
                EXPECT_LE(blocks.back().size(), size + QuickLZCompressor::kMaxExpansion);
                data += piece;
            }
            ASSERT_TRUE(DecompressAll(blocks) == data);
        }
}

// With 262144-byte packets the 1000000-byte history takes three, so the
// fourth is coded alone and the history starts again; with 25000-byte
// packets the fourth ends exactly at its end. Incompressible packets are
// stored, a full one in 262153 bytes.
TEST(QuickLZTest, StreamsAcrossHistoryResets) {
    std::string data = Generate("mixed", 9 * kPacket + 5000, 1);
    data.replace(2 * kPacket, kPacket, Generate("random", kPacket, 2));
    data.replace(5 * kPacket + 7, kPacket, Generate("random", kPacket, 3));
    for (const auto& [buffer, packet] : {std::pair{1000000u, kPacket}, {100000u, 25000u}}) {
        SCOPED_TRACE(buffer);
        QuickLZCompressor compressor(buffer);
        const Blocks blocks = CompressPackets(compressor, data, packet);
        if (packet == kPacket) {
            EXPECT_EQ(blocks[2].size(), kPacket + 9);
            EXPECT_EQ(Hex(blocks[2].substr(0, 1)), "66");
        }
        EXPECT_TRUE(DecompressAll(blocks) == data);
    }
}

std::string Decompress(QuickLZDecompressor& decompressor, const std::string& block,
                       Yr::UInt32 capacity) {
    std::vector<char> output(capacity);
    const Yr::UInt32 size = decompressor.Decompress(
        block.data(), static_cast<Yr::UInt32>(block.size()), output.data(), capacity);
    return {output.data(), size};
}

struct DamagedBlock {
    const char* hex;
    Yr::UInt32 capacity;
    const char* fault;
};

class QuickLZDamageTest : public testing::TestWithParam<DamagedBlock> {};

TEST_P(QuickLZDamageTest, IsRefused) {
    QuickLZDecompressor decompressor;
    const std::string message = std::string("Invalid QuickLZ block: ") + GetParam().fault + ".";
    Morvelan::Testing::ExpectYrException<Yr::IOException>(
        [&] { Decompress(decompressor, BytesFromHex(GetParam().hex), GetParam().capacity); },
        message.c_str(), Yr::kIOErrorCode);
}

// "twenty" at level 1 with a 1000000-byte buffer is 65 13 14 40000080
// 68656c6c6f20 e83a 6f21210a; the level-3 blocks take literals "ab" or
// "abc" and then a match.
INSTANTIATE_TEST_SUITE_P(
    Blocks, QuickLZDamageTest,
    testing::Values(
        DamagedBlock{"65 14 14 40000080 68656c6c6f20 e83a 6f21210a", 20,
                     "the size in its header differs from the block's size"},
        DamagedBlock{"65 13 14 40000080 68656c6c6f20 e83a 6f21210a", 19,
                     "the decompressed size exceeds the output capacity"},
        DamagedBlock{"65 13 15 40000080 68656c6c6f20 e83a 6f21210a", 21,
                     "the body ends before the data is complete"},
        DamagedBlock{"65 13 13 40000080 68656c6c6f20 e83a 6f21210a", 19,
                     "bytes follow its last item"},
        DamagedBlock{"64 05 03 6162", 3, "a stored body differs from the decompressed size"},
        DamagedBlock{"41 0C 05 01000080 1300 000000", 5, "the compression level is unknown"},
        DamagedBlock{"75 0C 05 01000080 1300 000000", 5,
                     "its streaming buffer size is not supported"},
        DamagedBlock{"A5 0C 05 01000080 1300 000000", 5, "the first byte is not a block header"},
        DamagedBlock{"67 0C 00", 100, "it is shorter than its header"},
        DamagedBlock{"45 0C 05 00000000 6162636465", 5, "a control word lacks its end marker"},
        DamagedBlock{"45 0C 05 01000080 1300 000000", 5, "a match refers to an empty hash bucket"},
        DamagedBlock{"4D 0D 08 04000080 6162 0C 636465", 8,
                     "match refers before the start of the data"},
        DamagedBlock{"4D 0D 08 04000080 6162 04 636465", 8, "a match distance is below 3 bytes"},
        DamagedBlock{"4D 0C 08 08000080 616263 FE00", 8, "a match runs past the end of the data"}));

TEST(QuickLZTest, RefusesBlocksOfAnotherSettingLaterInTheStream) {
    QuickLZDecompressor decompressor;
    const std::string twenty = ReadFile(kVectors / "L1-S1000000" / "twenty.qlz");
    EXPECT_EQ(Decompress(decompressor, twenty, 20), "hello hello hello!!\n");
    Morvelan::Testing::ExpectYrException<Yr::IOException>(
        [&] { Decompress(decompressor, ReadFile(kVectors / "L3-S0" / "twenty.qlz"), 20); },
        "Invalid QuickLZ block: its level or streaming buffer differs from the stream's.",
        Yr::kIOErrorCode);
}

// Cut short, with the header left as it is or made to agree with the cut:
// either way the block is refused.
TEST(QuickLZTest, RefusesEveryTruncation) {
    for (const char* setting : {"L1-S1000000", "L2-S0", "L3-S0"}) {
        const std::string block = ReadFile(kVectors / setting / "en300.qlz");
        for (std::size_t size = 0; size < block.size(); ++size) {
            SCOPED_TRACE(testing::Message() << setting << " cut at " << size);
            std::string cut = block.substr(0, size);
            QuickLZDecompressor decompressor;
            EXPECT_THROW(Decompress(decompressor, cut, 300), Yr::IOException);
            if (size < 9) continue;
            cut[1] = static_cast<char>(size);
            QuickLZDecompressor agreeing;
            EXPECT_THROW(Decompress(agreeing, cut, 300), Yr::IOException);
        }
    }
}

// Every byte flipped in a few ways: refused or decoded, but never outside
// the buffers (the sanitizer builds check that part).
TEST(QuickLZTest, SurvivesFlippedBytes) {
    for (const char* setting : {"L1-S0", "L1-S1000000", "L2-S0", "L3-S1000000"})
        for (const char* name : {"en300", "run1000", "edge216", "seqstored4x4k.3"}) {
            const std::string block = ReadFile(kVectors / setting / (std::string(name) + ".qlz"));
            const Yr::UInt32 size = QuickLZDecompressor::GetDecompressedSize(block.data());
            for (std::size_t at = 0; at < block.size(); ++at)
                for (const int flip : {0x01, 0x10, 0x80, 0xFF}) {
                    std::string damaged = block;
                    damaged[at] = static_cast<char>(damaged[at] ^ flip);
                    QuickLZDecompressor decompressor;
                    try {
                        EXPECT_LE(Decompress(decompressor, damaged, size).size(), size);
                    } catch (const Yr::IOException&) {
                    }
                }
        }
}

}  // namespace
