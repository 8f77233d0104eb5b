#include "unit/fake_caller.h"

#include "builtins/merge_sort.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace pellum {
namespace {

using test::FakeCaller;

// Two lists of one sort compare by the number at their front alone.
Value keyed(int key, int mark) { return makeList({Value(key), Value(mark)}); }
std::int64_t keyOf(const Value& value) { return value.asList().items[0].asInt(); }
std::int64_t markOf(const Value& value) { return value.asList().items[1].asInt(); }

const Value anyFunction = Value(Ref<CallableObj>(makeRef<NativeObj>(
    "stands for any", [](Caller&, Arguments) { return Value(); }, 0, 0)));

// The elements of the sorted list, each as an integer.
std::vector<std::int64_t> sortedBy(FakeCaller& caller, Values elements) {
    std::vector<std::int64_t> sorted;
    const Value result = caller.run("sort", {makeList(std::move(elements)), anyFunction});
    for (const Value& element : result.asList().items) sorted.push_back(element.asInt());
    return sorted;
}

Values numbersBelow(int count) {
    Values numbers;
    for (int n = 0; n < count; ++n) numbers.emplace_back(n);
    return numbers;
}

TEST(Sort, IsStableOnRandomElements) {
    std::mt19937 random(4711);
    FakeCaller caller([](Values& args) { return Value(keyOf(args[0]) < keyOf(args[1])); });
    for (std::size_t count = 0; count < 200; ++count) {
        Values elements;
        for (std::size_t i = 0; i < count; ++i) {
            elements.push_back(keyed(static_cast<int>(random() % 10), static_cast<int>(i)));
        }
        const Value given = makeList(elements);
        const Value sorted = caller.run("sort", {given, anyFunction});
        const Values& after = sorted.asList().items;
        ASSERT_EQ(after.size(), count);
        for (std::size_t i = 1; i < count; ++i) {
            const auto rank = [&](std::size_t at) {
                return std::pair(keyOf(after[at]), markOf(after[at]));
            };
            ASSERT_LT(rank(i - 1), rank(i)) << "of " << count << " elements";
        }
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(valuesEqual(given.asList().items[i], elements[i]))
                << "the list has changed";
        }
    }
}

TEST(Sort, ComparesNLogNTimesAtMost) {
    std::mt19937 random(1);
    for (const std::size_t count : {2U, 3U, 10U, 1000U, 4096U, 5000U}) {
        FakeCaller caller([](Values& args) { return Value(args[0].asInt() < args[1].asInt()); });
        Values elements;
        for (std::size_t i = 0; i < count; ++i) elements.emplace_back(random());
        sortedBy(caller, elements);
        const double bound =
            static_cast<double>(count) * std::ceil(std::log2(static_cast<double>(count)));
        EXPECT_LE(static_cast<double>(caller.calls()), bound) << "of " << count << " elements";
        EXPECT_GE(caller.calls(), count - 1) << "of " << count << " elements";
    }
}

TEST(Sort, AsksWithTheLaterElementFirst) {
    std::vector<std::pair<std::int64_t, std::int64_t>> asked;
    FakeCaller caller([&](Values& args) {
        asked.emplace_back(args[0].asInt(), args[1].asInt());
        return Value(false);
    });
    EXPECT_EQ(sortedBy(caller, {Value(1), Value(2)}), (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(asked, (std::vector<std::pair<std::int64_t, std::int64_t>>{{2, 1}}));
}

TEST(Sort, DoesNotCompareLessThanTwoElements) {
    FakeCaller caller;  // has no answer to any comparison
    EXPECT_EQ(sortedBy(caller, {}).size(), 0U);
    EXPECT_EQ(sortedBy(caller, {Value(1)}).size(), 1U);
    EXPECT_EQ(caller.run("sort", {makeList({Value()})}).asList().items.size(), 1U);
}

TEST(Sort, KeepsEveryElementWhateverTheAnswers) {
    std::mt19937 random(99);
    const FakeCaller::Answer answers[] = {
        [](Values&) { return Value(true); },
        [](Values&) { return Value(); },
        [&](Values&) { return Value(random() % 2 == 0); },
        [](Values& args) { return Value(args[0].asInt() % 7 != args[1].asInt() % 5); },
    };
    for (const FakeCaller::Answer& answer : answers) {
        for (const int count : {2, 3, 17, 64, 1000}) {
            FakeCaller caller(answer);
            std::vector<std::int64_t> sorted = sortedBy(caller, numbersBelow(count));
            ASSERT_EQ(sorted.size(), static_cast<std::size_t>(count));
            std::sort(sorted.begin(), sorted.end());
            for (int n = 0; n < count; ++n) ASSERT_EQ(sorted[static_cast<std::size_t>(n)], n);
        }
    }
}

TEST(Sort, AComparisonMayChangeTheList) {
    const Value list = makeList(numbersBelow(100));
    FakeCaller caller([&](Values& args) {
        list.asList().items.clear();
        list.asList().items.shrink_to_fit();
        return Value(args[0].asInt() > args[1].asInt());
    });
    const Value sorted = caller.run("sort", {list, anyFunction});
    ASSERT_EQ(sorted.asList().items.size(), 100U);
    EXPECT_EQ(sorted.asList().items.front().asInt(), 99);
    EXPECT_TRUE(list.asList().items.empty());
}

TEST(Sort, AComparisonMayThrowAtAnyTime) {
    bool hasThrown = true;
    for (std::size_t last = 1; hasThrown; ++last) {
        std::size_t calls = 0;
        hasThrown = false;
        FakeCaller caller([&](Values& args) {
            if (++calls == last) {
                hasThrown = true;
                throw ThrownValue{Value("enough")};
            }
            return Value(args[0].asText() < args[1].asText());
        });
        Values texts;
        for (const char* text : {"whatever", "is", "thrown", "here", "goes", "through", "unchanged",
                                 "and", "leaks", "nothing", "of", "the", "elements", "at", "all"}) {
            texts.emplace_back(text);
        }
        const Value list = makeList(texts);
        bool hasArrived = false;
        try {
            caller.run("sort", {list, anyFunction});
        } catch (const ThrownValue&) {
            hasArrived = true;
        }
        EXPECT_EQ(hasArrived, hasThrown);
        EXPECT_TRUE(hasThrown || last > 14) << "15 texts cannot be sorted so soon";
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_TRUE(valuesEqual(list.asList().items[i], texts[i]));
        }
    }
}

TEST(Sort, NaNHarmsNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::mt19937 random(5);
    FakeCaller caller;
    for (int round = 0; round < 50; ++round) {
        Values elements;
        for (int i = 0; i < 100; ++i) {
            elements.push_back(random() % 3 == 0 ? Value(nan) : Value(static_cast<double>(i)));
        }
        const auto isNaN = [](const Value& value) { return std::isnan(value.asFloat()); };
        const auto before = std::count_if(elements.begin(), elements.end(), isNaN);
        const Value sorted = caller.run("sort", {makeList(std::move(elements))});
        const Values& after = sorted.asList().items;
        ASSERT_EQ(after.size(), 100U);
        ASSERT_EQ(std::count_if(after.begin(), after.end(), isNaN), before);
    }
}

TEST(Sort, WorksOnElementsThatCanOnlyBeMoved) {
    std::vector<std::unique_ptr<int>> elements;
    for (const int n : {3, 1, 2}) elements.push_back(std::make_unique<int>(n));
    mergeSort(elements, [](const auto& a, const auto& b) { return *a < *b; });
    EXPECT_EQ(*elements[0], 1);
    EXPECT_EQ(*elements[1], 2);
    EXPECT_EQ(*elements[2], 3);
}

}  // namespace
}  // namespace pellum
