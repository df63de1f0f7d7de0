#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "Common/Containers/BlockFileFormat.h"

namespace Morvelan::Testing {

// The bytes of a block file, set field by field behind the library's back:
// a sound header over zeros, or a file read back in order to damage it.
class BlockFileImage {
public:
    BlockFileImage(Yr::UInt32 blockSize, Yr::UInt32 blockCount)
        : m_blockSize(blockSize), m_bytes(std::size_t(blockSize) * blockCount, '\0') {
        namespace Format = Common::Containers::BlockFileFormat;
        Set(Format::kMagicOffset, Format::kMagic);
        Set(Format::kMajorVersionOffset, Format::kMajorVersion);
        Set(Format::kBlockCountOffset, blockCount);
        Set(Format::kBlockSizeOffset, blockSize);
    }
    BlockFileImage(std::string bytes, Yr::UInt32 blockSize)
        : m_blockSize(blockSize), m_bytes(std::move(bytes)) {}

    // One field, `offset` counted from the start of the file.
    void Set(std::size_t offset, Yr::UInt32 value) {
        Common::Containers::BlockFileFormat::WriteField(m_bytes.data() + offset, 0, value);
    }
    Yr::UInt32 Get(std::size_t offset) const {
        return Common::Containers::BlockFileFormat::ReadField(m_bytes.data() + offset, 0);
    }
    // `values` from `offset` of the block on, four bytes each.
    void SetFields(Yr::UInt32 block, const std::vector<Yr::UInt32>& values, Yr::UInt32 offset = 0) {
        for (const Yr::UInt32 value : values) Set(Start(block) + offset, value), offset += 4;
    }
    std::vector<Yr::UInt32> Fields(Yr::UInt32 block, std::size_t count) const {
        std::vector<Yr::UInt32> values;
        for (std::size_t i = 0; i < count; ++i) values.push_back(Get(Start(block) + 4 * i));
        return values;
    }
    std::string& Bytes() { return m_bytes; }

private:
    std::size_t Start(Yr::UInt32 block) const { return std::size_t(block) * m_blockSize; }

    Yr::UInt32 m_blockSize;
    std::string m_bytes;
};

}  // namespace Morvelan::Testing
