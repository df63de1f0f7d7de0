// `morvelan base64` against the coreutils program on the same bytes.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RunTool;
using Morvelan::Testing::ToolRun;
using Morvelan::Testing::WriteFile;

std::string RandomBytes(std::size_t size) {
    std::mt19937 random(static_cast<unsigned>(size));
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

// The output of a shell command run in `folder`.
std::string Shell(const std::string& command, const Morvelan::Testing::ScopedTempFolder& folder) {
    const std::string out = folder.PathOf(".shell");
    EXPECT_EQ(std::system(("cd " + folder.GetPath() + " && " + command + " >" + out).c_str()), 0);
    return ReadFile(out);
}

TEST(Base64CommandTest, EncodesAndDecodesAsCoreutilsDoes) {
    // Sizes around a line (57 bytes), a group and the tool's 768 KiB piece.
    const std::size_t sizes[] = {0, 1, 2, 3, 56, 57, 58, 786431, 786432, 786433};
    const std::string wraps[] = {"", "-w 0", "-w 1", "-w 7", "-w 100"};
    Morvelan::Testing::ScopedTempFolder folder;
    for (const std::size_t size : sizes) {
        WriteFile(folder.PathOf("in"), RandomBytes(size));
        for (const std::string& wrap : wraps) {
            SCOPED_TRACE(std::to_string(size) + " bytes, " + wrap);
            const std::string expected = Shell("base64 " + wrap + " in", folder);
            const ToolRun encoded = RunTool("base64 encode " + wrap + " in", folder);
            EXPECT_EQ(encoded.status, 0);
            EXPECT_EQ(encoded.out, expected);
            WriteFile(folder.PathOf("text"), expected);
            const ToolRun decoded = RunTool("base64 decode <text", folder);
            EXPECT_EQ(decoded.status, 0);
            EXPECT_TRUE(decoded.out == ReadFile(folder.PathOf("in")));
        }
    }
}

TEST(Base64CommandTest, UrlSafeAlphabetHasNoPadding) {
    Morvelan::Testing::ScopedTempFolder folder;
    WriteFile(folder.PathOf("in"),
              "\xfb\xff\xbf"
              "a");
    EXPECT_EQ(RunTool("base64 encode --url-safe in", folder).out, "-_-_YQ\n");
    WriteFile(folder.PathOf("text"), "-_-_\nYQ\r\n");
    EXPECT_EQ(RunTool("base64 decode --url-safe text", folder).out,
              "\xfb\xff\xbf"
              "a");
}

TEST(Base64CommandTest, RefusesWhatIsNoBase64) {
    struct Case {
        std::string text;
        std::string message;
    };
    const Case cases[] = {
        {"YW*i", "Invalid source: character outside the Base64 alphabet."},
        {"YQ==YQ==", "Invalid source: text after the padding."},
        {"YQ=a", "Invalid source: text after the padding."},
        {"YWJjZ", "Invalid source: incomplete final group."},
        {"-_-_", "Invalid source: character outside the Base64 alphabet."},
    };
    Morvelan::Testing::ScopedTempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        WriteFile(folder.PathOf("text"), c.text);
        const ToolRun run = RunTool("base64 decode text", folder);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, "morvelan base64 decode: " + c.message + "\n");
    }
    EXPECT_EQ(RunTool("base64 encode absent", folder).status, 1);
    EXPECT_EQ(RunTool("base64", folder).status, 2);
    EXPECT_EQ(RunTool("base64 encode -w -1", folder).status, 2);
}

}  // namespace
