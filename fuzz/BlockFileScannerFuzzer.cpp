// Scans the input as a block file. Whatever the bytes, the scan must end,
// read nothing outside the file, throw nothing (a readable file is always
// scanned; damage comes back as faults) and report only blocks that exist.
#include <cstddef>
#include <cstdint>

#include "Common/Containers/BlockFileScanner.h"
#include "InputOutput/Location.h"
#include "fuzz/ScratchFile.h"

namespace {

using Morvelan::Common::Containers::BlockFileScanner;

constexpr auto Check = &ScratchFile::Check;

void CheckResult(const BlockFileScanner& scanner, std::size_t size) {
    Check(scanner.GetFileSize() == size);
    Check(scanner.IsClean() == scanner.GetFaults().empty());
    Check(scanner.HasHeader() || !scanner.HasWalkedLists());
    if (!scanner.HasWalkedLists()) {
        Check(!scanner.IsClean());
        Check(scanner.GetFreeListLength() == 0 && scanner.GetMasterBlocks().empty());
        return;
    }
    const BlockFileScanner::Header& header = scanner.GetHeader();
    Check(scanner.GetFreeListLength() < header.blockCount || scanner.GetFreeListLength() == 0);
    for (const Yr::UInt32 block : scanner.GetMasterBlocks())
        Check(block != 0 && block < header.blockCount);
    for (const Yr::UInt32 block : scanner.GetMasterListBlocks())
        Check(block != 0 && Yr::UInt64(block + 1) * header.blockSize <= size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFile scratch("BlockFileScannerFuzzer");
    scratch.Write(data, size);
    const BlockFileScanner scanner(::IO::Location::Parse(scratch.GetPath().c_str()));
    CheckResult(scanner, size);
    return 0;
}
