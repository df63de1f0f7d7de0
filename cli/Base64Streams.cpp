#include "cli/Base64Streams.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "Common/Base64.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Tool {
namespace {

constexpr const char* kSourceUnit = "cli/Base64Streams";
// A multiple of 3 and of 4, so that no group straddles two pieces.
constexpr Yr::UInt32 kPieceSize = 3 << 18;

// Fills `buffer` as far as the input goes: a pipe hands out less per read.
Yr::UInt32 ReadPiece(Yr::IBinaryChannel& input, char* buffer, Yr::UInt32 size) {
    Yr::UInt32 filled = 0;
    while (filled < size) {
        const Yr::UInt32 count = input.Read(buffer + filled, size - filled, Yr::kReadSome);
        if (count == 0) break;
        filled += count;
    }
    return filled;
}

// Copies `text` into `wrapped` with a break after each full line, carrying
// the column over from the piece before.
Yr::UInt32 Wrap(const char* text, Yr::UInt32 size, Yr::UInt32 columns, Yr::UInt32& column,
                char* wrapped) {
    char* out = wrapped;
    while (size > 0) {
        const Yr::UInt32 take = std::min(size, columns - column);
        std::memcpy(out, text, take);
        out += take;
        text += take;
        size -= take;
        column += take;
        if (column == columns) {
            *out++ = '\n';
            column = 0;
        }
    }
    return static_cast<Yr::UInt32>(out - wrapped);
}

bool IsLineBreak(char c) {
    return c == '\n' || c == '\r';
}

[[noreturn]] void RefuseTextAfterPadding(Yr::UInt32 line) {
    throw Yr::IllegalArgumentException("Invalid source: text after the padding.", kSourceUnit, line,
                                       Yr::kIllegalArgumentErrorCode);
}

// A padded group ends the text: past its first '=' only the rest of that
// group may follow, all '='.
void CheckPaddedGroupEnds(const char* text, Yr::UInt32 size, Yr::UInt32 padding) {
    const Yr::UInt32 groupEnd = (padding / 4 + 1) * 4;
    for (Yr::UInt32 i = padding; i < size; ++i)
        if (i >= groupEnd || text[i] != '=') RefuseTextAfterPadding(__LINE__);
}

}  // namespace

void EncodeBase64Stream(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, bool urlSafe,
                        Yr::UInt32 columns) {
    std::vector<char> piece(kPieceSize);
    std::vector<char> encoded(Common::Base64::EncodedSize(kPieceSize, urlSafe));
    std::vector<char> wrapped(columns == 0 ? 0 : encoded.size() + encoded.size() / columns + 1);
    Yr::UInt32 column = 0;
    for (;;) {
        const Yr::UInt32 size = ReadPiece(input, piece.data(), kPieceSize);
        if (size == 0) break;
        const Yr::UInt32 length = Common::Base64::EncodeInto(
            reinterpret_cast<const unsigned char*>(piece.data()), size, encoded.data(), urlSafe);
        if (columns == 0)
            output.Write(encoded.data(), length);
        else
            output.Write(wrapped.data(),
                         Wrap(encoded.data(), length, columns, column, wrapped.data()));
        if (size < kPieceSize) break;
    }
    if (column != 0) output.Write("\n", 1);
}

void DecodeBase64Stream(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, bool urlSafe) {
    std::vector<char> text(kPieceSize + 4);
    std::vector<unsigned char> decoded(Common::Base64::DecodedCapacity(kPieceSize + 4));
    Yr::UInt32 carried = 0;  // characters of a group the piece before left open
    bool ended = false;      // a padded group was decoded
    for (;;) {
        const Yr::UInt32 size = ReadPiece(input, text.data() + carried, kPieceSize);
        const bool last = size < kPieceSize;
        char* begin = text.data();
        const auto length = static_cast<Yr::UInt32>(
            std::remove_if(begin + carried, begin + carried + size, IsLineBreak) - begin);
        if (ended && length != 0) RefuseTextAfterPadding(__LINE__);
        // Only whole groups until the end, so a group never straddles two calls.
        const Yr::UInt32 usable = last ? length : length / 4 * 4;
        const void* padding = std::memchr(begin, '=', usable);
        if (padding != nullptr) {
            CheckPaddedGroupEnds(
                begin, length, static_cast<Yr::UInt32>(static_cast<const char*>(padding) - begin));
            ended = true;
        }
        if (usable != 0) {
            const Yr::UInt32 count =
                Common::Base64::DecodeInto(begin, usable, decoded.data(), urlSafe);
            output.Write(reinterpret_cast<const char*>(decoded.data()), count);
        }
        carried = length - usable;
        std::memmove(begin, begin + usable, carried);
        if (last) break;
    }
}

}  // namespace Morvelan::Tool
