#include "Common/Base64.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"
#include "tests/support/ExpectYrException.h"

namespace Morvelan::Common {
namespace {

using Testing::ExpectYrException;
using Chars = Yr::DataBuffer<char>;

using RawFunction = Yr::UInt32 (*)(const char*, Yr::UInt32, char**, Yr::UInt32*);

std::string RunRaw(RawFunction function, const std::string& source) {
    char* target = nullptr;
    Yr::UInt32 size = 0;
    const Yr::UInt32 count =
        function(source.data(), static_cast<Yr::UInt32>(source.size()), &target, &size);
    EXPECT_EQ(count, size);
    std::string result(target, size);
    Yr::MemoryManager::Free(target);
    return result;
}

std::string ToString(const Chars& buffer) {
    return std::string(buffer.GetData(), buffer.GetSize());
}

struct Vector {
    const char* plain;
    const char* standard;
    const char* urlSafe;
};

// RFC 4648 section 10, plus the two characters where the alphabets differ.
const Vector kVectors[] = {
    {"f", "Zg==", "Zg"},
    {"fo", "Zm8=", "Zm8"},
    {"foo", "Zm9v", "Zm9v"},
    {"foob", "Zm9vYg==", "Zm9vYg"},
    {"fooba", "Zm9vYmE=", "Zm9vYmE"},
    {"foobar", "Zm9vYmFy", "Zm9vYmFy"},
    {"\xFB\xFF", "+/8=", "-_8"},
};

TEST(Base64Test, KnownVectorsInBothAlphabetsAndForms) {
    for (const auto& vector : kVectors) {
        SCOPED_TRACE(vector.standard);
        EXPECT_EQ(RunRaw(&Base64::Encode, vector.plain), vector.standard);
        EXPECT_EQ(RunRaw(&Base64::EncodeUrlSafe, vector.plain), vector.urlSafe);
        EXPECT_EQ(RunRaw(&Base64::Decode, vector.standard), vector.plain);
        EXPECT_EQ(RunRaw(&Base64::DecodeUrlSafe, vector.urlSafe), vector.plain);
        const std::string plain = vector.plain;
        Chars encoded;
        EXPECT_EQ(Base64::Encode(Chars(plain.data(), plain.size()), encoded),
                  std::string(vector.standard).size());
        EXPECT_EQ(ToString(encoded), vector.standard);
        Chars decoded;
        Base64::DecodeUrlSafe(Chars(vector.urlSafe, std::string(vector.urlSafe).size()), decoded);
        EXPECT_EQ(ToString(decoded), plain);
    }
}

TEST(Base64Test, RandomBytesRoundTripInBothAlphabets) {
    std::mt19937 random(42);
    for (Yr::UInt32 length = 1; length <= 300; ++length) {
        Yr::DataBuffer<unsigned char> plain;
        plain.Resize(length);
        for (Yr::UInt32 i = 0; i < length; ++i)
            plain.GetData()[i] = static_cast<unsigned char>(random());
        for (bool urlSafe : {false, true}) {
            Yr::DataBuffer<unsigned char> encoded, decoded;
            urlSafe ? Base64::EncodeUrlSafe(plain, encoded) : Base64::Encode(plain, encoded);
            urlSafe ? Base64::DecodeUrlSafe(encoded, decoded) : Base64::Decode(encoded, decoded);
            ASSERT_EQ(decoded.GetSize(), length);
            EXPECT_EQ(std::memcmp(decoded.GetData(), plain.GetData(), length), 0) << length;
        }
    }
}

TEST(Base64Test, RefusesBadArguments) {
    char* target = nullptr;
    Yr::UInt32 size = 0;
    const int code = Yr::kIllegalArgumentErrorCode;
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { Base64::Encode(nullptr, 3, &target, &size); },
        "Invalid source: source buffer pointer is null.", code);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { Base64::Decode("Zg==", 0, &target, &size); },
        "Invalid source: source buffer size is 0.", code);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { Base64::EncodeUrlSafe("f", 1, nullptr, nullptr); },
        "Invalid target: target buffer pointer is null and target size pointer is null.", code);
    Chars empty, out;
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { Base64::Encode(empty, out); }, "Invalid source buffer: buffer is empty.", code);
    ExpectYrException<Yr::IllegalArgumentException>([&] { Base64::DecodeUrlSafe(empty, out); },
                                                    "Invalid source buffer: buffer is empty.",
                                                    code);
}

TEST(Base64Test, RefusesCharactersOutsideTheAlphabet) {
    const char* outside = "Invalid source: character outside the Base64 alphabet.";
    const int code = Yr::kIllegalArgumentErrorCode;
    // Each alphabet refuses the other's two characters, in full and final groups.
    for (const char* text : {"Zm9v-_8A", "Zm-"}) {
        ExpectYrException<Yr::IllegalArgumentException>([&] { RunRaw(&Base64::Decode, text); },
                                                        outside, code);
    }
    for (const char* text : {"Zm9v+/8A", "Zm/", "Zm9v\nZg", "Zm\x80v"}) {
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { RunRaw(&Base64::DecodeUrlSafe, text); }, outside, code);
    }
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { RunRaw(&Base64::DecodeUrlSafe, "Zm9vY"); }, "Invalid source: incomplete final group.",
        code);
}

}  // namespace
}  // namespace Morvelan::Common
