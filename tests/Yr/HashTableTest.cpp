#include "Yr/HashTable.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "Yr/UniString.h"

namespace {

TEST(HashTableTest, PutGetRemoveAndCount) {
    Yr::HashTable<Yr::UniString, int> table;
    EXPECT_TRUE(table.Put(Yr::UniString("a"), 1));
    EXPECT_TRUE(table.Put(Yr::UniString("\xC3\xA9"), 2));
    EXPECT_FALSE(table.Put(Yr::UniString("a"), 3));  // replaces
    EXPECT_EQ(table.GetCount(), 2u);
    ASSERT_NE(table.Get(Yr::UniString("a")), nullptr);
    EXPECT_EQ(*table.Get(Yr::UniString("a")), 3);
    EXPECT_EQ(table.Get(Yr::UniString("b")), nullptr);

    EXPECT_TRUE(table.Remove(Yr::UniString("a")));
    EXPECT_FALSE(table.Remove(Yr::UniString("a")));
    EXPECT_FALSE(table.Contains(Yr::UniString("a")));
    EXPECT_TRUE(table.Contains(Yr::UniString("\xC3\xA9")));
    EXPECT_EQ(table.GetCount(), 1u);
}

TEST(HashTableTest, ValuePointersSurviveGrowthAndIterationSeesEveryPair) {
    Yr::HashTable<int, std::string> table;
    table.Put(0, "zero");
    std::string* const zero = table.Get(0);
    std::map<int, std::string> expected{{0, "zero"}};
    for (int key = 1; key < 1000; ++key) {
        table.Put(key, std::to_string(key));
        expected[key] = std::to_string(key);
    }
    EXPECT_EQ(table.Get(0), zero);
    EXPECT_EQ(*zero, "zero");

    const auto& constTable = table;
    std::map<int, std::string> seen;
    for (const auto& [key, value] : constTable) seen[key] = value;
    EXPECT_EQ(seen, expected);
}

}  // namespace
