#include "Common/Containers/Properties.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"

namespace {

using Morvelan::Common::Containers::Properties;
using Morvelan::Testing::ExpectYrException;

TEST(PropertiesTest, EveryKeyTakingOperationRefusesAnEmptyKey) {
    const Yr::UniString empty;
    const std::vector<std::pair<const char*, std::function<void(Properties&)>>> operations = {
        {"SetProperty", [&](Properties& p) { p.SetProperty(empty, "v"); }},
        {"GetProperty", [&](Properties& p) { p.GetProperty(empty); }},
        {"GetProperty default", [&](Properties& p) { p.GetProperty(empty, Yr::UniString("d")); }},
        {"GetProperty out",
         [&](Properties& p) {
             Yr::UniString value;
             p.GetProperty(empty, value);
         }},
        {"HasProperty", [&](Properties& p) { p.HasProperty(empty); }},
        {"RemoveProperty", [&](Properties& p) { p.RemoveProperty(empty); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        Properties properties;
        properties.SetProperty("a", "1");
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { operation(properties); }, "Invalid key.", Yr::kIllegalArgumentErrorCode);
        EXPECT_EQ(properties.GetSize(), 1u);
    }
}

TEST(PropertiesTest, SettingAnExistingKeyReplacesItsValue) {
    Properties properties;
    properties.SetProperty("a", "1");
    properties.SetProperty("a", "2");
    EXPECT_EQ(properties.GetSize(), 1u);
    EXPECT_EQ(properties.GetProperty("a"), Yr::UniString("2"));
}

TEST(PropertiesTest, AbsentKeyYieldsTheDefaultArgumentItself) {
    Properties properties;
    properties.SetProperty("a", "1");
    const Yr::UniString fallback("d");
    EXPECT_EQ(&properties.GetProperty("b", fallback), &fallback);
}

TEST(PropertiesTest, AbsentKeyLeavesTheOutValueUntouched) {
    Properties properties;
    properties.SetProperty("a", "1");
    Yr::UniString value("kept");
    EXPECT_FALSE(properties.GetProperty("b", value));
    EXPECT_EQ(value, Yr::UniString("kept"));
}

TEST(PropertiesTest, EqualityIgnoresInsertionOrderButNotAnEmptyValue) {
    Properties forward;
    Properties backward;
    for (const char* key : {"a", "b", "c"}) forward.SetProperty(key, key);
    for (const char* key : {"c", "b", "a"}) backward.SetProperty(key, key);
    EXPECT_TRUE(forward == backward);

    // Same count, and a lookup of "a" in either would read as empty: only
    // whether the key is present separates them.
    Properties withEmptyA;
    withEmptyA.SetProperty("a", "");
    withEmptyA.SetProperty("b", "1");
    Properties withoutA;
    withoutA.SetProperty("b", "1");
    withoutA.SetProperty("c", "");
    EXPECT_TRUE(withEmptyA != withoutA);
    withoutA.RemoveProperty("c");
    EXPECT_TRUE(withEmptyA != withoutA);
}

}  // namespace
