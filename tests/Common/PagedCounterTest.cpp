#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "Common/PagedAtomicCounter.h"
#include "Common/PagedCounter.h"

namespace {

using Morvelan::Common::PagedAtomicCounter;
using Morvelan::Common::PagedCounter;

constexpr std::uintptr_t kPageSize = 4096;

template <class Counter>
class PagedCounterTest : public testing::Test {};
using CounterTypes = testing::Types<PagedCounter, PagedAtomicCounter>;
TYPED_TEST_SUITE(PagedCounterTest, CounterTypes);

TYPED_TEST(PagedCounterTest, FillsPagesOf508AndReleasesEmptyOnes) {
    ASSERT_EQ(TypeParam::GetPageCount(), 0u) << "counters of an earlier test are still alive";
    std::vector<std::unique_ptr<TypeParam>> counters;
    std::set<std::uintptr_t> pages;
    for (int i = 0; i < 508; ++i) {
        counters.emplace_back(new TypeParam(i));
        pages.insert(reinterpret_cast<std::uintptr_t>(counters.back().get()) & ~(kPageSize - 1));
    }
    EXPECT_EQ(pages.size(), 1u);
    EXPECT_EQ(TypeParam::GetPageCount(), 1u);
    counters.emplace_back(new TypeParam(508));
    EXPECT_EQ(TypeParam::GetPageCount(), 2u);
    for (int i = 0; i < 509; ++i) EXPECT_EQ(counters[i]->GetCount(), i);

    counters.pop_back();
    EXPECT_EQ(TypeParam::GetPageCount(), 1u);
    counters.clear();
    EXPECT_EQ(TypeParam::GetPageCount(), 0u);
}

}  // namespace
