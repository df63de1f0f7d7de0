#include "Yr/Guid.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "Yr/Exceptions.h"

namespace {

const Yr::Guid kSample{
    0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};

TEST(GuidTest, TextRoundTripsInUppercase) {
    EXPECT_EQ(kSample.ToString(), "00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(Yr::Guid::Parse("00112233-4455-6677-8899-aabbccddeeff"), kSample);
    for (const char* text : {
             "00112233-4455-6677-8899-AABBCCDDEEF",         // a digit short
             "0011223-34455-6677-8899-AABBCCDDEEFF",        // a hyphen one place early
             "0011223G-4455-6677-8899-AABBCCDDEEFF",        // not a hex digit
             "00112233-4455-6677-8899-AABBCCDDEE\xC3\xA9",  // 36 bytes, 35 characters
         }) {
        EXPECT_THROW(Yr::Guid::Parse(text), Yr::IllegalArgumentException) << text;
    }
}

TEST(GuidTest, MemoryHoldsFieldsInMachineOrder) {
    static_assert(std::endian::native == std::endian::little, "expectations are little-endian");
    const unsigned char expected[16] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                        0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    EXPECT_EQ(std::memcmp(&kSample, expected, 16), 0);
}

}  // namespace
