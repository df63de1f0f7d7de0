// UniString::Printf: a printf subset with its arguments checked by kind and size.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Yr/UniString.h"

namespace Yr {
namespace {

struct Conversion {
    std::string flags;
    int width = -1;
    int precision = -1;
    std::size_t lengthBytes = 4;  // the argument width the conversion expects
    char type = 0;
};

// A mismatch between a conversion and its argument is a programming error: a
// debug build stops on it; a release build prints the argument as it is.
void ReportMismatch(const char* format, std::size_t index) {
#ifndef NDEBUG
    std::fprintf(stderr, "Printf: argument %zu does not fit its conversion in \"%s\"\n", index + 1,
                 format);
    std::abort();
#else
    (void)format;
    (void)index;
#endif
}

// Parses the conversion after '%' at `position`; leaves `position` behind it.
bool ParseConversion(const char* format, std::size_t& position, Conversion& conversion) {
    auto at = [&]() { return format[position]; };
    while (at() == '-' || at() == '+' || at() == ' ' || at() == '#' || at() == '0')
        conversion.flags.push_back(format[position++]);
    if (at() >= '1' && at() <= '9') {
        conversion.width = 0;
        while (at() >= '0' && at() <= '9')
            conversion.width = conversion.width * 10 + (format[position++] - '0');
    }
    if (at() == '.') {
        ++position;
        conversion.precision = 0;
        while (at() >= '0' && at() <= '9')
            conversion.precision = conversion.precision * 10 + (format[position++] - '0');
    }
    // 'l' is 32-bit as on the platform the formats were written for.
    if (at() == 'h') {
        ++position;
        conversion.lengthBytes = 2;
        if (at() == 'h') ++position, conversion.lengthBytes = 1;
    } else if (at() == 'l') {
        ++position;
        if (at() == 'l') ++position, conversion.lengthBytes = 8;
    } else if (at() == 'z') {
        ++position;
        conversion.lengthBytes = sizeof(std::size_t);
    }
    conversion.type = at();
    if (conversion.type == 0) return false;
    ++position;
    return true;
}

// Appends only: g++ 12 misreads string concatenation at -O3 as overlapping.
std::string CFormatOf(const Conversion& conversion, const char* length, char type) {
    std::string cFormat(1, '%');
    cFormat.append(conversion.flags);
    if (conversion.width >= 0) cFormat.append(std::to_string(conversion.width));
    if (conversion.precision >= 0) {
        cFormat.push_back('.');
        cFormat.append(std::to_string(conversion.precision));
    }
    cFormat.append(length);
    cFormat.push_back(type);
    return cFormat;
}

template <class T>
void AppendPrintf(std::string& out, const std::string& cFormat, T value) {
    char small[128];
    const int needed = std::snprintf(small, sizeof small, cFormat.c_str(), value);
    if (needed < static_cast<int>(sizeof small)) {
        out.append(small, static_cast<std::size_t>(needed));
        return;
    }
    std::string large(static_cast<std::size_t>(needed) + 1, '\0');
    std::snprintf(large.data(), large.size(), cFormat.c_str(), value);
    out.append(large.data(), static_cast<std::size_t>(needed));
}

// Width and precision of %s and %T count characters, not bytes.
void AppendText(std::string& out, const Conversion& conversion, const UniString& text) {
    const UniString shown = conversion.precision >= 0
                                ? text.GetPrefix(static_cast<std::size_t>(conversion.precision))
                                : text;
    const std::size_t length = shown.GetLength();
    const std::size_t padding =
        conversion.width > 0 && static_cast<std::size_t>(conversion.width) > length
            ? static_cast<std::size_t>(conversion.width) - length
            : 0;
    const bool left = conversion.flags.find('-') != std::string::npos;
    if (!left) out.append(padding, ' ');
    out += shown.ToUtf8();
    if (left) out.append(padding, ' ');
}

bool IsIntegerType(char type) {
    return type == 'd' || type == 'i' || type == 'u' || type == 'x' || type == 'X' || type == 'o' ||
           type == 'c';
}

bool Fits(const Conversion& conversion, const FormatArgument& argument) {
    using Kind = FormatArgument::Kind;
    const char type = conversion.type;
    const Kind kind = argument.GetKind();
    if (type == 's') return kind == Kind::NarrowString;
    if (type == 'T') return kind == Kind::Text;
    if (type == 'p') return kind == Kind::Pointer;
    if (type == 'f' || type == 'F' || type == 'e' || type == 'E' || type == 'g' || type == 'G')
        return kind == Kind::Floating;
    if (type == 'c') return kind == Kind::Character;
    if (!IsIntegerType(type) || argument.GetSize() > conversion.lengthBytes) return false;
    const bool signedType = type == 'd' || type == 'i';
    return signedType ? kind == Kind::Signed : kind == Kind::Unsigned;
}

// Prints an integer argument under an integer conversion, read at the wider of
// the conversion's and the argument's size: a too-wide argument, which only a
// release build lets through, prints whole rather than cut.
void AppendInteger(std::string& out, const Conversion& conversion, const FormatArgument& argument) {
    const bool isSigned = argument.GetKind() == FormatArgument::Kind::Signed;
    const UInt64 bits =
        isSigned ? static_cast<UInt64>(argument.GetSigned()) : argument.GetUnsigned();
    const std::size_t bytes = std::max(conversion.lengthBytes, argument.GetSize());
    const UInt64 mask = bytes >= 8 ? ~UInt64{0} : (UInt64{1} << (8 * bytes)) - 1;
    char type = conversion.type == 'i' ? 'd' : conversion.type;
    if (type == 'd') {
        const int shift = static_cast<int>(64 - 8 * std::min<std::size_t>(bytes, 8));
        const auto value =
            static_cast<long long>(static_cast<Int64>((bits & mask) << shift) >> shift);
        AppendPrintf(out, CFormatOf(conversion, "ll", 'd'), value);
    } else if (type == 'c') {
        AppendPrintf(out, CFormatOf(conversion, "", 'c'), static_cast<int>(bits & 0xFF));
    } else {
        AppendPrintf(out, CFormatOf(conversion, "ll", type),
                     static_cast<unsigned long long>(bits & mask));
    }
}

void AppendArgument(std::string& out, const Conversion& conversion,
                    const FormatArgument& argument) {
    using Kind = FormatArgument::Kind;
    switch (argument.GetKind()) {
        case Kind::None:
            return;
        case Kind::Signed:
        case Kind::Unsigned:
        case Kind::Character:
            if (IsIntegerType(conversion.type)) {
                AppendInteger(out, conversion, argument);
            } else {
                Conversion plain = conversion;
                plain.type = argument.GetKind() == Kind::Unsigned ? 'u' : 'd';
                plain.lengthBytes = 8;
                AppendInteger(out, plain, argument);
            }
            return;
        case Kind::Floating: {
            const char type = std::string("fFeEgG").find(conversion.type) != std::string::npos
                                  ? conversion.type
                                  : 'g';
            AppendPrintf(out, CFormatOf(conversion, "", type), argument.GetFloating());
            return;
        }
        case Kind::NarrowString:
            AppendText(out, conversion, UniString::FromUtf8Replacing(argument.GetNarrow()));
            return;
        case Kind::Text:
            AppendText(out, conversion, argument.GetText());
            return;
        case Kind::Pointer:
            AppendPrintf(out, "%p", argument.GetPointer());
            return;
    }
}

}  // namespace

UniString UniString::Format(const char* format, const FormatArgument* arguments,
                            std::size_t count) {
    std::string out;
    std::size_t next = 0;
    for (std::size_t position = 0; format[position] != 0;) {
        const char character = format[position++];
        if (character != '%') {
            out.push_back(character);
            continue;
        }
        if (format[position] == '%') {
            out.push_back('%');
            ++position;
            continue;
        }
        Conversion conversion;
        if (!ParseConversion(format, position, conversion)) {
            ReportMismatch(format, next);
            break;
        }
        if (next >= count) {
            ReportMismatch(format, next);
            continue;
        }
        const FormatArgument& argument = arguments[next];
        if (!Fits(conversion, argument)) ReportMismatch(format, next);
        AppendArgument(out, conversion, argument);
        ++next;
    }
    if (next < count) ReportMismatch(format, next);
    // The literal parts of a format may be any bytes: keep the result well formed.
    return FromUtf8Replacing(out);
}

}  // namespace Yr
