#include "Yr/IBinaryChannelUtilities.h"

#include <gtest/gtest.h>

#include <string>

#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/OneByteIBinaryChannel.h"

namespace {

using Yr::IBinaryChannelUtilities;

TEST(IBinaryChannelUtilitiesTest, ReadFullyAndSkipGoOnUpToTheEnd) {
    Morvelan::Testing::OneByteIBinaryChannel slow("abcdef");
    char buffer[8];
    EXPECT_EQ(IBinaryChannelUtilities::ReadFully(slow, buffer, 4), 4u);
    EXPECT_EQ(IBinaryChannelUtilities::ReadFully(slow, buffer + 4, 4), 2u);
    EXPECT_EQ(std::string(buffer, 6), "abcdef");

    const std::string data(10000, 's');  // more than one scratch block
    Yr::MemoryIBinaryChannel in(data.data(), 10000);
    EXPECT_EQ(IBinaryChannelUtilities::Skip(in, 9000), 9000u);
    EXPECT_EQ(IBinaryChannelUtilities::Skip(in, 5000), 1000u);
}

}  // namespace
