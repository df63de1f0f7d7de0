// Runs Python's zlib module (tests/python/zlib_peer.py) against our deflate
// channels, both ways. python3 on PATH is required: without it these tests
// fail rather than skip, so CI cannot lose them silently.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "Common/IO/DeflaterOBinaryChannel.h"
#include "Common/IO/Inflater.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using namespace Morvelan::Common::IO;
using namespace Morvelan::Testing;

// Stretches of text broken up by stretches of noise, so that the compressor
// meets both and switches between block kinds.
std::string MixedData(std::size_t size) {
    std::string data;
    Yr::UInt32 noise = 7;
    for (int round = 0; data.size() < size; ++round) {
        for (int i = 0; i < round % 50; ++i) data += "archive entry " + std::to_string(i) + "; ";
        for (int i = 0; i < round % 13 * 97; ++i)
            data += static_cast<char>((noise = noise * 1664525 + 1013904223) >> 24);
    }
    data.resize(size);
    return data;
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
}

std::string Deflate(const std::string& data, int level, bool nowrap) {
    Yr::MemoryOBinaryChannel sink;
    DeflaterOBinaryChannel deflater(sink, level, 1024, nowrap);
    deflater.Write(data.data(), static_cast<Yr::UInt32>(data.size()));
    deflater.Close();
    return std::string(sink.GetBuffer(), sink.GetSize());
}

std::string ReadAll(Yr::IBinaryChannel& channel) {
    std::string all;
    char buffer[4096];
    while (const Yr::UInt32 count = channel.Read(buffer, sizeof buffer, Yr::kReadSome))
        all.append(buffer, count);
    return all;
}

const char* Form(bool nowrap) {
    return nowrap ? "raw" : "wrapped";
}

struct Case {
    bool nowrap;
    int level;
    std::size_t size;
};
const Case kCases[] = {{true, 1, 1 << 20}, {false, 6, 1 << 20}, {true, 9, 1 << 20},
                       {false, 0, 300000}, {true, 6, 0},        {false, 6, 0}};

class ZlibPeerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_python = FindOnPath("python3");
        if (s_python.empty())
            s_problem = "python3 must be on PATH: install it (scripts/install-deps.sh does)";
    }

    void SetUp() override {
        if (!s_problem.empty()) GTEST_FAIL() << s_problem;
    }

    // Runs the peer on `input`; the bytes it wrote, after expecting success.
    std::string Peer(const std::string& arguments, const std::string& input,
                     const std::string& dictionary = "") {
        const std::string in = m_folder.PathOf("in"), out = m_folder.PathOf("out");
        WriteFile(in, input);
        std::string command = Quoted(s_python) + " " + Quoted(ZLIB_PEER_SCRIPT) + " " + arguments +
                              " " + Quoted(in) + " " + Quoted(out);
        if (!dictionary.empty()) {
            WriteFile(m_folder.PathOf("dictionary"), dictionary);
            command.append(" ").append(Quoted(m_folder.PathOf("dictionary")));
        }
        const Outcome outcome = RunCommand(command);
        EXPECT_EQ(outcome.status, 0) << command;
        return ReadFile(out);
    }

    ScopedTempFolder m_folder;

private:
    static inline std::string s_python;
    static inline std::string s_problem;
};

TEST_F(ZlibPeerTest, PythonInflatesWhatWeDeflate) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << Form(c.nowrap) << " level " << c.level << " " << c.size);
        const std::string data = MixedData(c.size);
        const std::string compressed = Deflate(data, c.level, c.nowrap);
        EXPECT_TRUE(Peer(std::string("decompress ") + Form(c.nowrap), compressed) == data);
    }
}

TEST_F(ZlibPeerTest, WeInflateWhatPythonDeflates) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << Form(c.nowrap) << " level " << c.level << " " << c.size);
        const std::string data = MixedData(c.size);
        const std::string compressed =
            Peer(std::string("compress ") + Form(c.nowrap) + " " + std::to_string(c.level), data);
        Yr::MemoryIBinaryChannel source(compressed.data(),
                                        static_cast<Yr::UInt32>(compressed.size()));
        InflaterIBinaryChannel channel(source, 1024, c.nowrap);
        EXPECT_TRUE(ReadAll(channel) == data);
        EXPECT_EQ(source.GetAvailable(), 0u);
    }
}

// Our deflater takes no dictionary, so only Python's streams carry one.
TEST_F(ZlibPeerTest, WeInflatePythonsStreamsWithAPresetDictionary) {
    const std::string dictionary = MixedData(2000);
    const std::string data = MixedData(50000);
    for (const bool nowrap : {true, false}) {
        SCOPED_TRACE(Form(nowrap));
        const std::string compressed =
            Peer(std::string("compress ") + Form(nowrap) + " 6", data, dictionary);
        Yr::MemoryIBinaryChannel source(compressed.data(),
                                        static_cast<Yr::UInt32>(compressed.size()));
        auto inflater = Yr::MakeRef<Inflater>(nowrap);
        // A raw stream cannot ask for its dictionary; a wrapped one stops to.
        if (!nowrap) {
            InflaterIBinaryChannel asking(source, inflater, 1024);
            EXPECT_EQ(ReadAll(asking), "");
            EXPECT_TRUE(inflater->NeedsDictionary());
        }
        inflater->SetDictionary(dictionary.data(), static_cast<Yr::UInt32>(dictionary.size()));
        InflaterIBinaryChannel channel(source, inflater, 1024);
        EXPECT_TRUE(ReadAll(channel) == data);
    }
}

}  // namespace
