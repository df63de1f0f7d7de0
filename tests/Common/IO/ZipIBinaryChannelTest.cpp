// Reads archives that other ZIP writers made (Python's zipfile, zip, bsdtar,
// Java's ZipOutputStream), to files and to pipes, and compares every entry
// with the file it came from; then damaged ones. python3, zip, bsdtar, javac
// and java must be on PATH: without them these tests fail rather than skip.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Common/IO/CRC32.h"
#include "Common/IO/ZipException.h"
#include "Common/IO/ZipFormat.h"
#include "Common/IO/ZipIBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace Morvelan::Common::IO;
using namespace Morvelan::Testing;

// Python's side: MODE OUT FILE...; OUT "-" is standard output, which a pipe
// makes unseekable, so that zipfile writes data descriptors.
constexpr const char* kPythonPeer = R"(
import sys, zipfile
mode, out, files = sys.argv[1], sys.argv[2], sys.argv[3:]
target = sys.stdout.buffer if out == '-' else out
method = zipfile.ZIP_STORED if 'stored' in mode else zipfile.ZIP_DEFLATED
with zipfile.ZipFile(target, 'w', method) as z:
    z.comment = b'made by python'
    if mode == 'bomb':
        with z.open('zeros', 'w') as entry:
            for _ in range(int(files[0])):
                entry.write(bytes(1 << 20))
        sys.exit(0)
    for name in files:
        with open(name, 'rb') as f, z.open(name, 'w', force_zip64='zip64' in mode) as entry:
            entry.write(f.read())
)";

const std::vector<std::string> kFiles = {"a.txt",     "b.bin",      "empty",
                                         "sub/c.txt", "tricky.bin", "\xC3\xBCn\xC3\xAF.txt"};

std::string FileList() {
    std::string list;
    for (const auto& name : kFiles) list += " " + Quoted(name);
    return list;
}

std::string MixedData(std::size_t size) {
    std::string data;
    Yr::UInt32 noise = 7;
    for (int round = 0; data.size() < size; ++round) {
        for (int i = 0; i < round % 40; ++i) data += "line " + std::to_string(i) + " of text; ";
        for (int i = 0; i < round % 13 * 97; ++i)
            data += static_cast<char>((noise = noise * 1664525 + 1013904223) >> 24);
    }
    data.resize(size);
    return data;
}

std::string Le32(Yr::UInt32 value) {
    std::string bytes;
    ZipFormat::Append(bytes, value);
    return bytes;
}

// Descriptor signatures inside stored data, one followed by the right size
// but a wrong CRC-32, and a signature cut short at the very end.
std::string TrickyData() {
    const std::string sig = Le32(ZipFormat::kDataDescriptorSignature);
    std::string data = "abc" + sig + Le32(0) + Le32(3) + Le32(3) + sig + sig;
    data += std::string(40, 'P') + MixedData(5000) + sig + Le32(1);
    return data + "PK\x07";
}

struct Entry {
    std::string name;
    std::string data;
};

struct Listing {
    std::vector<Entry> entries;
    std::string comment;
};

Listing ReadArchive(Yr::IBinaryChannel& input, Yr::UInt32 pieceSize = 4096) {
    ZipIBinaryChannel zip(input);
    Listing listing;
    std::vector<char> buffer(pieceSize);
    while (const Yr::Ref<ZipEntry> entry = zip.GetNextEntry()) {
        std::string data;
        while (const Yr::UInt32 count = zip.Read(buffer.data(), pieceSize, Yr::kReadSome))
            data.append(buffer.data(), count);
        zip.CloseEntry();
        EXPECT_EQ(entry->GetSize(), data.size()) << entry->GetName().ToUtf8();
        listing.entries.push_back({entry->GetName().ToUtf8(), data});
    }
    listing.comment = zip.GetComment().ToUtf8();
    return listing;
}

Listing ReadArchive(const std::string& bytes) {
    Yr::MemoryIBinaryChannel input(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    return ReadArchive(input);
}

class ZipIBinaryChannelTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        for (const char* tool : {"python3", "zip", "bsdtar", "javac", "java"})
            if (FindOnPath(tool).empty()) s_problem += std::string(tool) + " must be on PATH. ";
        if (!s_problem.empty()) return;
        s_folder = std::make_unique<ScopedTempFolder>();
        std::filesystem::create_directories(Source() + "/sub");
        s_contents = {{"a.txt", MixedData(20000)},
                      {"b.bin", MixedData(300000)},
                      {"empty", ""},
                      {"sub/c.txt", "hi\n"},
                      {"tricky.bin", TrickyData()},
                      {kFiles[5], "n\xC3\xA4me\n"}};
        for (const auto& [name, data] : s_contents) WriteFile(Source() + "/" + name, data);
        WriteFile(s_folder->PathOf("peer.py"), kPythonPeer);
        const Outcome compiled = RunCommand("javac -d " + Quoted(s_folder->GetPath()) + " " +
                                            Quoted(JAVA_ZIP_PEER_SOURCE) + " 2>&1");
        if (compiled.status != 0) s_problem = "javac failed:\n" + compiled.out;
    }

    static void TearDownTestSuite() { s_folder.reset(); }

    void SetUp() override {
        if (!s_problem.empty()) GTEST_FAIL() << s_problem;
    }

    static std::string Source() { return s_folder->PathOf("src"); }

    // Runs `command` in the source folder; OUT in it stands for the archive.
    static std::string MakeArchive(std::string command) {
        const std::string out = s_folder->PathOf("out.zip");
        std::filesystem::remove(out);
        for (std::size_t at; (at = command.find("OUT")) != std::string::npos;)
            command.replace(at, 3, Quoted(out));
        for (std::size_t at; (at = command.find("PEER")) != std::string::npos;)
            command.replace(at, 4, "python3 " + Quoted(s_folder->PathOf("peer.py")));
        const Outcome made = RunCommand("cd " + Quoted(Source()) + " && " + command);
        EXPECT_EQ(made.status, 0) << command;
        return ReadFile(out);
    }

    static std::string PythonArchive(const char* mode) {
        return MakeArchive(std::string("PEER ") + mode + " OUT" + FileList());
    }

    static void ExpectSameFiles(const Listing& listing) {
        std::size_t files = 0;
        for (const auto& entry : listing.entries) {
            if (!entry.name.empty() && entry.name.back() == '/') {
                EXPECT_EQ(entry.data, "") << entry.name;
                continue;
            }
            ++files;
            const auto found = s_contents.find(entry.name);
            ASSERT_NE(found, s_contents.end()) << entry.name;
            EXPECT_TRUE(entry.data == found->second) << entry.name;
        }
        EXPECT_EQ(files, s_contents.size());
    }

    static inline std::string s_problem;
    static inline std::unique_ptr<ScopedTempFolder> s_folder;
    static inline std::map<std::string, std::string> s_contents;
};

struct PeerCase {
    const char* title;
    const char* command;  // FILES stands for the source files
    const char* comment;
};

const PeerCase kPeerCases[] = {
    {"python stored", "PEER stored OUT FILES", "made by python"},
    {"python deflated", "PEER deflated OUT FILES", "made by python"},
    {"python zip64", "PEER zip64 OUT FILES", "made by python"},
    {"python streamed", "PEER deflated - FILES | cat > OUT", "made by python"},
    {"python streamed stored", "PEER stored - FILES | cat > OUT", "made by python"},
    {"python streamed zip64", "PEER zip64 - FILES | cat > OUT", "made by python"},
    {"python streamed stored zip64", "PEER stored-zip64 - FILES | cat > OUT", "made by python"},
    {"zip file", "zip -q -r OUT FILES", ""},
    {"zip piped", "zip -q -r - FILES | cat > OUT", ""},
    {"zip piped stored", "zip -q -r -0 - FILES | cat > OUT", ""},
    {"zip piped zip64", "zip -q -r -fz - FILES | cat > OUT", ""},
    {"bsdtar file", "bsdtar --format zip -cf OUT FILES", ""},
    {"bsdtar piped", "bsdtar --format zip -cf - FILES | cat > OUT", ""},
    {"bsdtar piped stored",
     "bsdtar --format zip --options zip:compression=store -cf - FILES | cat > OUT", ""},
    {"java", "java -cp CLASSES ZipPeer OUT FILES", "made by java"},
};

TEST_F(ZipIBinaryChannelTest, ReadsWhatOtherWritersWrite) {
    for (const auto& peer : kPeerCases) {
        SCOPED_TRACE(peer.title);
        std::string command = peer.command;
        command.replace(command.find("FILES"), 5, FileList());
        if (const auto at = command.find("CLASSES"); at != std::string::npos)
            command.replace(at, 7, Quoted(s_folder->GetPath()));
        const std::string archive = MakeArchive(command);
        const Listing listing = ReadArchive(archive);
        ExpectSameFiles(listing);
        EXPECT_EQ(listing.comment, peer.comment);
        // A pipe handing out one byte at a time, read in odd pieces.
        OneByteIBinaryChannel slow(archive);
        const Listing slowly = ReadArchive(slow, 509);
        ASSERT_EQ(slowly.entries.size(), listing.entries.size());
        for (std::size_t i = 0; i < listing.entries.size(); ++i)
            EXPECT_TRUE(slowly.entries[i].data == listing.entries[i].data);
    }
}

TEST_F(ZipIBinaryChannelTest, CompletesEntriesFromHeadersAndDescriptors) {
    const std::string archive = MakeArchive("zip -q - a.txt | cat > OUT");
    Yr::MemoryIBinaryChannel input(archive.data(), static_cast<Yr::UInt32>(archive.size()));
    ZipIBinaryChannel zip(input);
    const Yr::Ref<ZipEntry> entry = zip.GetNextEntry();
    EXPECT_EQ(entry->GetName(), Yr::UniString("a.txt"));
    EXPECT_EQ(entry->GetMethod(), ZipEntry::Deflated);
    EXPECT_EQ(entry->GetLocalHeaderOffset(), 0u);
    EXPECT_NE(entry->GetFlags() & ZipFormat::kFlagDataDescriptor, 0);
    EXPECT_FALSE(entry->HasCrc());
    const auto modified = std::filesystem::last_write_time(Source() + "/a.txt");
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
                             std::chrono::file_clock::to_sys(modified).time_since_epoch())
                             .count();
    EXPECT_EQ(entry->GetTime(), seconds);  // from the extended timestamp
    zip.CloseEntry();
    CRC32 crc;
    crc.Update(s_contents["a.txt"].data(), 20000);
    EXPECT_EQ(entry->GetCrc(), crc.GetValue());
    EXPECT_EQ(entry->GetSize(), 20000u);
    EXPECT_LT(entry->GetCompressedSize(), 20000u);
    EXPECT_EQ(zip.Read(nullptr, 0, Yr::kReadSome), 0u);
    EXPECT_TRUE(zip.GetNextEntry().IsNull());
    EXPECT_TRUE(zip.GetNextEntry().IsNull());
    const Listing empty = ReadArchive(MakeArchive("PEER stored OUT"));
    EXPECT_TRUE(empty.entries.empty());
    EXPECT_EQ(empty.comment, "made by python");
}

// Patches a 16-bit field of the first record with `signature`, at `offset`
// from it.
std::string Patched16(std::string archive, Yr::UInt32 signature, std::size_t offset,
                      Yr::UInt16 value) {
    const std::size_t at = archive.find(Le32(signature));
    ZipFormat::Store(&archive[at + offset], value);
    return archive;
}

std::string Flipped(std::string archive, std::size_t at) {
    archive[at] = static_cast<char>(archive[at] ^ 0x40);
    return archive;
}

void ExpectZipError(const std::string& archive, const char* message) {
    ExpectYrException<ZipException>([&] { ReadArchive(archive); }, message, Yr::kIOErrorCode);
}

TEST_F(ZipIBinaryChannelTest, RefusesDamagedArchives) {
    const std::string stored = MakeArchive("PEER stored OUT a.txt empty");
    const std::string streamed = MakeArchive("PEER deflated - a.txt empty | cat > OUT");
    const std::size_t central = stored.find(Le32(ZipFormat::kCentralHeaderSignature));
    ExpectZipError(Flipped(stored, 14), "Entry 'a.txt' has a CRC-32 that does not match its data.");
    ExpectZipError(Flipped(stored, 100),
                   "Entry 'a.txt' has a CRC-32 that does not match its data.");
    ExpectZipError(Flipped(stored, central + 16),
                   "Entry 'a.txt' does not match its central directory record.");
    ExpectZipError(Flipped(stored, central + 47),
                   "Entry 'a.txt' is not where the central directory has it.");
    ExpectZipError(Patched16(stored, ZipFormat::kEndSignature, 10, 3),
                   "End of central directory record does not match the archive (entry count).");
    ExpectZipError(Patched16(stored, ZipFormat::kEndSignature, 16, 1),
                   "End of central directory record does not match the archive (central directory "
                   "offset).");
    // The descriptor's size, four bytes after its signature and CRC-32.
    const std::size_t descriptor = streamed.find(Le32(ZipFormat::kDataDescriptorSignature));
    ExpectZipError(Flipped(streamed, descriptor + 12),
                   "Entry 'a.txt' has a size that does not match its data.");
    ExpectZipError("not a ZIP archive at all", "Invalid record signature 0x20746f6e at offset 0.");
    // Cut anywhere, the archive must be refused, never read as complete.
    for (const std::string& archive : {stored, streamed}) {
        for (std::size_t size = 0; size < archive.size(); size += 1 + size / 3) {
            SCOPED_TRACE(size);
            EXPECT_THROW(ReadArchive(archive.substr(0, size)), Yr::YrException);
        }
    }
}

TEST_F(ZipIBinaryChannelTest, NamesWhatItCannotDecode) {
    struct Case {
        const char* command;
        const char* message;
    };
    const Case cases[] = {
        {"zip -q -Z bzip2 OUT a.txt b.bin",
         "Entry 'a.txt' uses compression method 12 (bzip2), which is not supported."},
        {"zip -q -P secret OUT a.txt b.bin", "Entry 'a.txt' is encrypted, which is not supported."},
    };
    for (const auto& [command, message] : cases) {
        const std::string archive = MakeArchive(command);
        Yr::MemoryIBinaryChannel input(archive.data(), static_cast<Yr::UInt32>(archive.size()));
        ZipIBinaryChannel zip(input);
        const Yr::Ref<ZipEntry> entry = zip.GetNextEntry();
        char byte;
        ExpectYrException<ZipException>([&] { zip.Read(&byte, 1, Yr::kReadSome); }, message,
                                        Yr::kIOErrorCode);
    }
    // Without a data descriptor, the entry can be passed over.
    const std::string archive = MakeArchive("zip -q -Z bzip2 OUT a.txt b.bin");
    Yr::MemoryIBinaryChannel input(archive.data(), static_cast<Yr::UInt32>(archive.size()));
    ZipIBinaryChannel zip(input);
    EXPECT_EQ(zip.GetNextEntry()->GetMethod(), 12);
    EXPECT_EQ(zip.GetNextEntry()->GetName(), Yr::UniString("b.bin"));
    EXPECT_TRUE(zip.GetNextEntry().IsNull());
}

TEST_F(ZipIBinaryChannelTest, ReadsAZipBombInBoundedMemory) {
    constexpr Yr::UInt64 kMiB = 1 << 20;
    const std::string archive = MakeArchive("PEER bomb - 100 | cat > OUT");
    Yr::MemoryIBinaryChannel input(archive.data(), static_cast<Yr::UInt32>(archive.size()));
    ZipIBinaryChannel zip(input);
    ASSERT_FALSE(zip.GetNextEntry().IsNull());
    std::vector<char> buffer(1 << 16);
    Yr::UInt64 total = 0;
    std::size_t peak = 0;
    const std::size_t before = mallinfo2().uordblks;
    while (const Yr::UInt32 count = zip.Read(buffer.data(), 1 << 16, Yr::kReadSome)) {
        total += count;
        if (total % (16 * kMiB) == 0) peak = std::max(peak, mallinfo2().uordblks);
    }
    EXPECT_EQ(total, 100 * kMiB);
    // Zero under ASan, which keeps its own books.
    EXPECT_LT(peak, before + 4 * kMiB);
    zip.CloseEntry();
    EXPECT_TRUE(zip.GetNextEntry().IsNull());
}

}  // namespace
