// Runs Java's own DataInputStream and DataOutputStream (tests/java/DataStreamPeer.java)
// against our Java data protocols, both ways. A JDK on PATH is required: without
// one these tests fail rather than skip, so CI cannot lose them silently.
#include <gtest/gtest.h>

#include <bit>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "Common/IO/JavaDataInputProtocol.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/JavaDataOutputProtocol.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Yr/BinaryIChannel.h"
#include "Yr/BinaryOChannel.h"
#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "Yr/UniString.h"
#include "tests/support/HexBytes.h"
#include "tests/support/JavaDataValue.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using namespace Morvelan::Common::IO;
using Morvelan::Testing::FindOnPath;
using Morvelan::Testing::Hex;
using Morvelan::Testing::Outcome;
using Morvelan::Testing::Quoted;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RunCommand;
using Morvelan::Testing::ScopedTempFolder;

using Value = Morvelan::Testing::JavaDataValue;
using Morvelan::Testing::SameValue;

template <class T>
using Limits = std::numeric_limits<T>;

Yr::UniString Repeated(char16_t character, std::size_t times) {
    return Yr::UniString(std::u16string(times, character));
}

// Keep in step with sequence() in DataStreamPeer.java.
std::vector<Value> Sequence() {
    std::vector<Value> values;
    const auto add = [&](std::initializer_list<Value> group) {
        values.insert(values.end(), group);
    };
    add({'A', '\0', '\xE9'});  // writeByte
    add({true, false});
    add({Limits<short>::min(), Limits<short>::max(), short(-2)});
    add({static_cast<unsigned short>(0), static_cast<unsigned short>(65535)});
    add({Limits<int>::min(), Limits<int>::max(), 0x01020304});
    add({Limits<Yr::Int64>::min(), Limits<Yr::Int64>::max(), Yr::Int64(0x0102030405060708)});
    add({std::bit_cast<float>(0x7FC00000u), Limits<float>::infinity(), -Limits<float>::infinity(),
         -0.0f, Limits<float>::denorm_min(), 1.5f});
    add({std::bit_cast<double>(0x7FF8000000000000ull), Limits<double>::infinity(),
         -Limits<double>::infinity(), -0.0, Limits<double>::denorm_min(), 3.141592653589793});
    add({Yr::Guid::Parse("f0e1d2c3-b4a5-9687-7869-5a4b3c2d1e0f")});
    add({Yr::UniString(""), Yr::UniString(u"\u00E9"), Yr::UniString(u"\u65E5\u672C\u8A9E")});
    add({Repeated(u'a', 512), Repeated(u'a', 513), Repeated(u'a', 65535)});
    add({Repeated(u'\u65E5', 21845)});  // three bytes each: exactly the 65535-byte limit
    add({Yr::UniString(u"Gr\u00FC\u00DFe \u0394\u03B5\u03BB\u03C4\u03B1 \u20AC")});
    add({Yr::UniString(u"\u0080\u07FF\u0800\uD7FF\uE000\uFFFF")});  // edges of 2- and 3-byte forms
    return values;
}

// Reads the sequence's values in order, each with `readOne` into a variable
// of the right type, and expects every one of them.
template <class ReadOne>
void ExpectSequence(ReadOne readOne) {
    const std::vector<Value> expected = Sequence();
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Value read = expected[i];
        std::visit(
            [&](auto& v) {
                v = {};
                readOne(v);
            },
            read);
        EXPECT_TRUE(SameValue(read, expected[i])) << "item " << i;
    }
}

void WriteFile(const std::string& path, const Yr::MemoryOBinaryChannel& channel) {
    std::ofstream(path, std::ios::binary)
        .write(channel.GetBuffer(), static_cast<std::streamsize>(channel.GetSize()));
}

class JavaPeerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::string javac = FindOnPath("javac");
        s_java = FindOnPath("java");
        if (javac.empty() || s_java.empty()) {
            s_problem =
                "javac and java must be on PATH: install default-jdk-headless "
                "(scripts/install-deps.sh does)";
            return;
        }
        s_classes = std::make_unique<ScopedTempFolder>();
        const Outcome compiled = RunCommand(Quoted(javac) + " -d " + Quoted(s_classes->GetPath()) +
                                            " " + Quoted(JAVA_PEER_SOURCE) + " 2>&1");
        if (compiled.status != 0) s_problem = "javac " JAVA_PEER_SOURCE " failed:\n" + compiled.out;
    }

    static void TearDownTestSuite() { s_classes.reset(); }

    void SetUp() override {
        if (!s_problem.empty()) GTEST_FAIL() << s_problem;
    }

    static Outcome Peer(const std::string& mode, const std::string& file,
                        const std::string& codePoints = "") {
        return RunCommand(Quoted(s_java) + " -cp " + Quoted(s_classes->GetPath()) +
                          " DataStreamPeer " + mode + " " + Quoted(file) + " " + codePoints);
    }

    // Java checks that `sink` holds the sequence.
    void ExpectJavaReadsSequence(const Yr::MemoryOBinaryChannel& sink) {
        const std::string file = m_folder.PathOf("ours.bin");
        WriteFile(file, sink);
        const Outcome checked = Peer("check", file);
        EXPECT_EQ(checked.status, 0) << checked.out;
    }

    std::string SequenceWrittenByJava() {
        const std::string file = m_folder.PathOf("java.bin");
        EXPECT_EQ(Peer("write", file).status, 0);
        return ReadFile(file);
    }

    ScopedTempFolder m_folder;

private:
    static inline std::string s_java;
    static inline std::string s_problem;
    static inline std::unique_ptr<ScopedTempFolder> s_classes;
};

TEST_F(JavaPeerTest, JavaReadsWhatOurProtocolWrites) {
    Yr::MemoryOBinaryChannel sink;
    for (const Value& value : Sequence())
        std::visit([&](const auto& v) { JavaDataOutputProtocolX::GetInstance().Write(sink, v); },
                   value);
    ExpectJavaReadsSequence(sink);
}

TEST_F(JavaPeerTest, OurProtocolReadsWhatJavaWrites) {
    const std::string bytes = SequenceWrittenByJava();
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ExpectSequence([&](auto& v) { JavaDataInputProtocolX::GetInstance().Read(source, v); });
    EXPECT_EQ(source.GetAvailable(), 0u);
}

TEST_F(JavaPeerTest, ErrorCodeFlavourAgreesWithJavaBothWays) {
    Yr::MemoryOBinaryChannel sink;
    Yr::BinaryOChannel output(sink);
    for (const Value& value : Sequence())
        std::visit(
            [&](const auto& v) {
                EXPECT_EQ(JavaDataOutputProtocol::GetInstance().Write(output, v), 0);
            },
            value);
    ExpectJavaReadsSequence(sink);

    const std::string bytes = SequenceWrittenByJava();
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    Yr::BinaryIChannel input(source);
    ExpectSequence(
        [&](auto& v) { EXPECT_EQ(JavaDataInputProtocol::GetInstance().Read(input, v), 0); });
    EXPECT_EQ(source.GetAvailable(), 0u);
}

// Java writes modified UTF-8: U+0000 as two bytes and a character beyond
// U+FFFF as its two surrogates of three bytes each. Neither is standard UTF-8.
TEST_F(JavaPeerTest, OurReadUTFRefusesJavasNulAndSupplementaryForms) {
    struct Case {
        const char* codePoint;
        const char* javaBytes;
    };
    const Case cases[] = {
        {"0", "00 02 C0 80"},
        {"1F600", "00 06 ED A0 BD ED B8 80"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.codePoint);
        const std::string file = m_folder.PathOf(std::string("utf-") + c.codePoint);
        ASSERT_EQ(Peer("writeutf", file, c.codePoint).status, 0);
        const std::string bytes = ReadFile(file);
        EXPECT_EQ(Hex(bytes), c.javaBytes);
        Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
        Yr::UniString text;
        EXPECT_THROW(ReadUTF(source, text), Yr::ConversionErrorException);
    }
}

TEST_F(JavaPeerTest, JavaSeesOurStringUpToItsNulAndRefusesFourByteUtf8) {
    Yr::UniString withNul("ab");
    withNul.Append(U'\0').Append("cd");
    Yr::UniString emoji;
    emoji.Append(U'\U0001F600');
    struct Case {
        const char* name;
        const Yr::UniString& text;
        const char* javaReads;
    };
    const Case cases[] = {
        {"with-nul", withNul, "61 62\n"},
        {"emoji", emoji, "UTFDataFormatException\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Yr::MemoryOBinaryChannel sink;
        JavaDataOutputProtocolX::GetInstance().Write(sink, c.text);
        const std::string file = m_folder.PathOf(c.name);
        WriteFile(file, sink);
        const Outcome read = Peer("readutf", file);
        EXPECT_EQ(read.status, 0);
        EXPECT_EQ(read.out, c.javaReads);
    }
}

}  // namespace
