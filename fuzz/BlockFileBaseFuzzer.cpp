// Opens the input as a block file and works on it: lists the master blocks,
// reads them, allocates plain and master blocks, frees some, flushes,
// compacts, closes, then opens the result again. A damaged file may only be
// refused with an exception of the library's family; every list walk must
// end and stay within the file and the block buffers.
//
// The block size is the one the input's header names, when that is a power
// of two from 64 to 65536, else 64, so that most inputs get past the size
// check and into the lists.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Common/Containers/BlockFileBase.h"
#include "Common/Containers/BlockFileFormat.h"
#include "InputOutput/Location.h"
#include "Yr/YrException.h"
#include "fuzz/ScratchFile.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Common::Containers::BlockFileBase;

constexpr unsigned kCacheSize = 16;
constexpr unsigned kMaxMastersRead = 64;

constexpr auto Check = &ScratchFile::Check;

unsigned ChooseBlockSize(const std::uint8_t* data, std::size_t size) {
    if (size < Format::kBlockSizeOffset + 4) return 64;
    const Yr::UInt32 named = Format::ReadField(data, Format::kBlockSizeOffset);
    const bool powerOfTwo = (named & (named - 1)) == 0;
    return powerOfTwo && named >= 64 && named <= 65536 ? named : 64;
}

// Runs one operation; a refusal is fine, and later operations go on.
template <class Operation>
void Try(Operation&& operation) {
    try {
        operation();
    } catch (const Yr::YrException&) {
    }
}

void CheckZeros(BlockFileBase& file, unsigned id) {
    const char* bytes = file.GetBlock(id, false);
    for (unsigned i = 0; i < file.GetBlockSize(); ++i) Check(bytes[i] == 0);
}

void WorkOn(BlockFileBase& file) {
    const unsigned blockCount = file.GetBlockCount();
    Check(blockCount >= 1 && file.GetFreeBlockCount() < blockCount);
    Yr::PagedArray<unsigned int, 8> masters;
    const unsigned masterCount = file.GetAllocatedMasterBlocks(masters);
    Check(masterCount == masters.GetCount());
    for (unsigned i = 0; i < masterCount && i < kMaxMastersRead; ++i) {
        Check(masters[i] >= 1 && masters[i] < blockCount);
        Check(file.IsMasterBlock(masters[i]));
        Try([&] { file.GetBlock(masters[i], false); });
    }
    std::vector<unsigned> allocated;
    // A free list that loops may hand a block out twice before its count
    // runs out, so a master block is not sure to stay zeros: the list may
    // land in it. A plain one is.
    for (int i = 0; i < 4; ++i) {
        Try([&] {
            const bool master = i % 2 == 1;
            const unsigned id = master ? file.AllocateMasterBlock() : file.AllocateBlock();
            Check(id >= 1 && id < file.GetBlockCount());
            if (master)
                Check(file.IsMasterBlock(id));
            else
                CheckZeros(file, id);
            allocated.push_back(id);
        });
    }
    if (masterCount > 0) Try([&] { file.FreeBlock(masters[0]); });
    for (std::size_t i = 0; i < allocated.size(); i += 2)
        Try([&] { file.FreeBlock(allocated[i]); });
    Try([&] { file.Flush(true); });
    Try([&] { file.Compact(); });
    Try([&] { file.AllocateBlock(); });
    Try([&] { file.Close(); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFile scratch("BlockFileBaseFuzzer");
    scratch.Write(data, size);
    const ::IO::Location location = ::IO::Location::Parse(scratch.GetPath().c_str());
    const unsigned blockSize = ChooseBlockSize(data, size);
    for (int session = 0; session < 2; ++session) {
        try {
            BlockFileBase file(location, blockSize, kCacheSize);
            WorkOn(file);
        } catch (const Yr::YrException&) {
        }
    }
    return 0;
}
