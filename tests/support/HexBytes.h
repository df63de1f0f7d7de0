#pragma once

#include <string>
#include <string_view>

namespace Morvelan::Testing {

// "01 AB FF": bytes as uppercase hexadecimal pairs, so a failed comparison
// shows where the bytes differ.
inline std::string Hex(std::string_view bytes) {
    static const char* const kDigits = "0123456789ABCDEF";
    std::string text;
    for (const unsigned char byte : bytes) {
        if (!text.empty()) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The bytes of "01 AB FF"; blanks between the pairs are optional.
inline std::string BytesFromHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
            continue;
        }
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
        i += 2;
    }
    return bytes;
}

}  // namespace Morvelan::Testing
