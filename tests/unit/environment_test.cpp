#include "interp/environment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellum::test {
namespace {

// Looking through all that came before would take a minute.
TEST(Environment, ManyNamesAreFoundAsFastAsFew) {
    std::vector<Symbol> names;
    for (int i = 0; i < 300'000; ++i) names.emplace_back("name" + std::to_string(i));
    Environment scope;
    for (std::size_t i = 0; i < names.size(); ++i) scope.define(names[i], Value(i));
    std::size_t found = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Value* value = scope.lookup(names[i]);
        found += value && value->asInt() == static_cast<std::int64_t>(i);
    }
    EXPECT_EQ(found, names.size());
}

// Few bindings are searched one by one, more of them through an index.
TEST(Environment, EachNumberOfNamesKeepsItsValues) {
    for (std::size_t count = 0; count <= 40; ++count) {
        Environment scope;
        const auto name = [](std::size_t i) { return Symbol("n" + std::to_string(i)); };
        for (const std::size_t offset : {0, 1000}) {
            for (std::size_t i = 0; i < count; ++i) scope.define(name(i), Value(i + offset));
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_TRUE(scope.lookup(name(i)));
                EXPECT_EQ(scope.lookup(name(i))->asInt(), static_cast<std::int64_t>(i + offset));
            }
            EXPECT_FALSE(scope.lookup(name(count)));
        }
        scope.clear();
        for (std::size_t i = 0; i < count; ++i) EXPECT_FALSE(scope.lookup(name(i)));
    }
}

}  // namespace
}  // namespace pellum::test
