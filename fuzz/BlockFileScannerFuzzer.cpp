// Scans the input as a block file. Whatever the bytes, the scan must end,
// read nothing outside the file, throw nothing (a readable file is always
// scanned; damage comes back as faults) and report only blocks that exist.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Common/Containers/BlockFileScanner.h"
#include "InputOutput/Location.h"

namespace {

using Morvelan::Common::Containers::BlockFileScanner;

void Check(bool condition) {
    if (!condition) __builtin_trap();
}

// A file in a folder of its own, in memory when /dev/shm allows, removed
// when the fuzzer exits.
class ScratchFile {
public:
    ScratchFile() {
        char folder[] = "/dev/shm/BlockFileScannerFuzzer.XXXXXX";
        char fallback[] = "/tmp/BlockFileScannerFuzzer.XXXXXX";
        const char* made = mkdtemp(folder);
        if (made == nullptr) made = mkdtemp(fallback);
        Check(made != nullptr);
        m_folder = made;
        m_path = m_folder + "/blocks";
    }
    ~ScratchFile() {
        std::remove(m_path.c_str());
        std::remove(m_folder.c_str());
    }
    const std::string& GetPath() const { return m_path; }

    void Write(const std::uint8_t* data, std::size_t size) const {
        std::FILE* file = std::fopen(m_path.c_str(), "wb");
        Check(file != nullptr);
        Check(size == 0 || std::fwrite(data, 1, size, file) == size);
        Check(std::fclose(file) == 0);
    }

private:
    std::string m_folder;
    std::string m_path;
};

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
    static const ScratchFile scratch;
    scratch.Write(data, size);
    const BlockFileScanner scanner(::IO::Location::Parse(scratch.GetPath().c_str()));
    CheckResult(scanner, size);
    return 0;
}
