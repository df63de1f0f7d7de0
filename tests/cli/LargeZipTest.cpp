// A zip entry past 4 GiB streamed through a pipe, written and read by the
// tool: zip64 descriptors and records on the way out, found again on the
// way in. The file is sparse, so no disk is used.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

// A few bytes past 4 GiB, so any size kept in 32 bits shows.
constexpr unsigned long long kBigSize = (4ull << 30) + 4099;

TEST(LargeZipTest, StreamsAnEntryPast4GiBThroughAPipe) {
    Morvelan::Testing::ScopedTempFolder folder;
    Morvelan::Testing::WriteFile(folder.PathOf("big"), "");
    std::filesystem::resize_file(folder.PathOf("big"), kBigSize);
    Morvelan::Testing::WriteFile(folder.PathOf("after"), "the entry behind the big one\n");
    for (const char* method : {"stored", "deflated"}) {
        SCOPED_TRACE(method);
        // Appended piece by piece: g++ 12 at -O3 misreads a chain of + here.
        std::string command = "zip create --method ";
        command += method;
        command += " - big after | ";
        command += MORVELAN_TOOL;
        command += " zip list -";
        const Morvelan::Testing::ToolRun listed = Morvelan::Testing::RunTool(command, folder);
        ASSERT_EQ(listed.status, 0) << listed.err;
        std::string size = " ";
        size += std::to_string(kBigSize);
        EXPECT_NE(listed.out.find(size), std::string::npos) << listed.out;
        EXPECT_NE(listed.out.find("  after\n"), std::string::npos) << listed.out;
    }
}

}  // namespace
