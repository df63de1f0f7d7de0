#include "Yr/PagedArray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Yr/Exceptions.h"

namespace {

TEST(PagedArrayTest, ElementsKeepTheirAddressesWhileTheArrayGrows) {
    Yr::PagedArray<std::string> array;
    std::vector<const std::string*> addresses;
    for (int i = 0; i < 5000; ++i) addresses.push_back(&array.Add(std::to_string(i)));
    ASSERT_EQ(array.GetCount(), 5000u);
    for (int i = 0; i < 5000; ++i) {
        EXPECT_EQ(&array[i], addresses[i]);
        EXPECT_EQ(*addresses[i], std::to_string(i));
    }
}

TEST(PagedArrayTest, IndexPastTheEndThrowsIllegalArgument) {
    Yr::PagedArray<int> array;
    for (const std::size_t index : {0u, 1u, 4294967295u}) {
        SCOPED_TRACE(index);
        EXPECT_THROW((void)array[index], Yr::IllegalArgumentException);
    }
    array.Add(5);
    const auto& constArray = array;
    EXPECT_EQ(constArray[0], 5);
    try {
        (void)constArray[1];
        FAIL() << "no exception";
    } catch (const Yr::IllegalArgumentException& e) {
        EXPECT_EQ(e.GetErrorCode(), -50);
        EXPECT_EQ(e.GetMessage().ToUtf8(), "Invalid index: index is out of range.");
    }
}

}  // namespace
