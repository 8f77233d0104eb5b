// The flat form: the same engine behind handles and statuses.
#include <pellum/pellum.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

class CApi : public testing::Test {
protected:
    void SetUp() override {
        pellum_options options = {};
        options.user = this;
        options.output = [](void* user, const char* text, size_t length) {
            static_cast<CApi*>(user)->printed_.append(text, length);
        };
        options.input = [](void* user, const char** line, size_t* length) {
            auto& self = *static_cast<CApi*>(user);
            *line = "a line";
            *length = 6;
            return self.lines_-- > 0 ? 1 : 0;
        };
        options.max_steps = 100'000;
        options.max_memory = 8 << 20;
        options.interruptible = 1;
        engine_ = pellum_engine_new(&options);
        ASSERT_TRUE(engine_);
    }
    void TearDown() override { pellum_engine_free(engine_); }

    pellum_status run(const char* source, pellum_value** result = nullptr) {
        return pellum_run(engine_, source, std::strlen(source), "test", result);
    }
    // What a source returns, as text.
    std::string text(const char* source) {
        pellum_value* result = nullptr;
        if (run(source, &result) != PELLUM_OK) return pellum_error_diagnostic(engine_);
        return take(result);
    }
    static std::string take(pellum_value* value) {
        pellum_value* shown = nullptr;
        EXPECT_EQ(pellum_text_of(value, &shown), PELLUM_OK);
        const char* bytes = nullptr;
        size_t length = 0;
        EXPECT_EQ(pellum_as_string(shown, &bytes, &length), PELLUM_OK);
        std::string text(bytes, length);
        pellum_value_free(shown);
        pellum_value_free(value);
        return text;
    }

    pellum_engine* engine_ = nullptr;
    std::string printed_;
    int lines_ = 1;
};

TEST_F(CApi, RunsPrintsAndReads) {
    EXPECT_EQ(text("print('hello')\nreturn [input(), input()]"), "[\"a line\", nil]");
    EXPECT_EQ(printed_, "hello\n");
    EXPECT_EQ(run("let x = 1"), PELLUM_OK);
    EXPECT_EQ(text("return x + 1"), "2");
    EXPECT_GT(pellum_steps_taken(engine_), 0u);
    EXPECT_GT(pellum_memory_used(engine_), 0u);
}

TEST_F(CApi, ValuesOfAllKinds) {
    int truth = 7;
    int64_t whole = 7;
    double number = 7;
    size_t size = 7;
    pellum_value* const values[] = {
        pellum_nil(),       pellum_bool(1),          pellum_int(-5),
        pellum_float(2.5),  pellum_string("abc", 3), pellum_list(engine_),
        pellum_map(engine_)};
    for (int kind = PELLUM_NIL; kind <= PELLUM_MAP; ++kind) {
        EXPECT_EQ(pellum_kind_of(values[kind]), kind);
        EXPECT_EQ(pellum_is_truthy(values[kind]), kind != PELLUM_NIL);
        EXPECT_EQ(pellum_as_bool(values[kind], &truth),
                  kind == PELLUM_BOOL ? PELLUM_OK : PELLUM_MISUSE);
        EXPECT_EQ(truth, kind == PELLUM_BOOL);
        EXPECT_EQ(pellum_as_int(values[kind], &whole),
                  kind == PELLUM_INT ? PELLUM_OK : PELLUM_MISUSE);
        EXPECT_EQ(whole, kind == PELLUM_INT ? -5 : 0);
        EXPECT_EQ(pellum_as_float(values[kind], &number),
                  kind == PELLUM_INT || kind == PELLUM_FLOAT ? PELLUM_OK : PELLUM_MISUSE);
        EXPECT_EQ(pellum_size(values[kind], &size),
                  kind >= PELLUM_LIST ? PELLUM_OK : PELLUM_MISUSE);
        EXPECT_EQ(size, 0u);
    }
    pellum_value* const list = values[PELLUM_LIST];
    pellum_value* const map = values[PELLUM_MAP];
    EXPECT_EQ(pellum_push(list, values[PELLUM_INT]), PELLUM_OK);
    EXPECT_EQ(pellum_push(list, map), PELLUM_OK);
    EXPECT_EQ(pellum_set(map, values[PELLUM_STRING], values[PELLUM_FLOAT]), PELLUM_OK);
    EXPECT_EQ(pellum_set(map, list, nullptr), PELLUM_MISUSE);
    EXPECT_EQ(pellum_set_global(engine_, "list", list), PELLUM_OK);
    EXPECT_EQ(text("return list"), "[-5, {\"abc\": 2.5}]");
    pellum_value* got = nullptr;
    EXPECT_EQ(pellum_key_at(map, 0, &got), PELLUM_OK);
    EXPECT_EQ(take(got), "abc");
    EXPECT_EQ(pellum_key_at(map, 1, &got), PELLUM_MISUSE);
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(pellum_get(map, values[PELLUM_STRING], &got), PELLUM_OK);
    EXPECT_EQ(take(got), "2.5");
    got = pellum_copy(list);
    EXPECT_EQ(pellum_push(got, nullptr), PELLUM_OK);
    EXPECT_EQ(pellum_size(list, &size), PELLUM_OK);
    EXPECT_EQ(size, 3u);
    pellum_value_free(got);
    for (pellum_value* value : values) pellum_value_free(value);
    EXPECT_EQ(pellum_get_global(engine_, "PI", &got), PELLUM_OK);
    EXPECT_EQ(pellum_kind_of(got), PELLUM_FLOAT);
    pellum_value_free(got);
}

TEST_F(CApi, FunctionsOfTheHost) {
    struct Counter {
        int calls = 0;
    } counter;
    const pellum_native count = [](pellum_engine*, pellum_value* const* arguments, size_t number,
                                   void* user) -> pellum_value* {
        ++static_cast<Counter*>(user)->calls;
        int64_t first = 0;
        pellum_as_int(arguments[0], &first);
        return pellum_int(first + static_cast<int64_t>(number));
    };
    const pellum_native fail = [](pellum_engine* engine, pellum_value* const* arguments,
                                  size_t number, void*) -> pellum_value* {
        if (number == 0) {
            pellum_fail(engine, "it failed");
        } else {
            pellum_throw(engine, arguments[0]);
        }
        return pellum_int(1);  // and is dropped
    };
    const pellum_native nothing = [](pellum_engine*, pellum_value* const*, size_t,
                                     void*) -> pellum_value* { return nullptr; };
    const pellum_native again = [](pellum_engine* engine, pellum_value* const* arguments, size_t,
                                   void*) -> pellum_value* {
        pellum_value* result = nullptr;
        if (pellum_call(engine, arguments[0], nullptr, 0, &result) != PELLUM_OK) {
            pellum_fail(engine, pellum_error_message(engine));
        }
        return result;
    };
    EXPECT_EQ(pellum_define(engine_, "count", count, &counter, 1, -1), PELLUM_OK);
    EXPECT_EQ(pellum_define(engine_, "fail", fail, nullptr, 0, 1), PELLUM_OK);
    EXPECT_EQ(pellum_define(engine_, "nothing", nothing, nullptr, 0, 0), PELLUM_OK);
    EXPECT_EQ(pellum_define(engine_, "again", again, nullptr, 1, 1), PELLUM_OK);
    EXPECT_EQ(pellum_define(engine_, "x", nullptr, nullptr, 0, 0), PELLUM_MISUSE);
    EXPECT_EQ(text("return count(10, 2, 3) + count(1)"), "15");
    EXPECT_EQ(counter.calls, 2);
    EXPECT_EQ(text("return nothing()"), "nil");
    EXPECT_EQ(text("try\n fail()\ncatch e\n return e\nend"), "it failed");
    EXPECT_EQ(text("try\n fail([1])\ncatch e\n return e\nend"), "[1]");
    EXPECT_EQ(text("return again(function() return 'from inside' end)"), "from inside");
    EXPECT_EQ(text("try\n again(fail)\ncatch e\n return e\nend"), "it failed");
    EXPECT_EQ(run("try\n again(function() while true do end end)\ncatch e\nend"), PELLUM_STEPS);
    EXPECT_EQ(text("return nothing()"), "nil");
}

TEST_F(CApi, FailuresAreRemembered) {
    EXPECT_STREQ(pellum_error_message(engine_), "");
    EXPECT_EQ(run("let = 1"), PELLUM_SYNTAX);
    EXPECT_EQ(pellum_error_line(engine_), 1u);
    EXPECT_EQ(pellum_error_column(engine_), 5u);
    EXPECT_STREQ(pellum_error_source(engine_), "test");
    pellum_value* result = pellum_int(1);
    pellum_value* const before = result;
    EXPECT_EQ(run("\nreturn nil + 1", &result), PELLUM_RUNTIME);
    EXPECT_EQ(result, nullptr);
    pellum_value_free(before);
    EXPECT_STREQ(pellum_error_message(engine_), "cannot add nil and number");
    EXPECT_EQ(std::string(pellum_error_diagnostic(engine_)),
              "RuntimeError: cannot add nil and number\n  --> test:2:0\n2 | return nil + 1\n    ^");
    EXPECT_EQ(run("error([1, 2])"), PELLUM_THROWN);
    EXPECT_EQ(take(pellum_error_thrown(engine_)), "[1, 2]");
    EXPECT_EQ(run("while true do end"), PELLUM_STEPS);
    EXPECT_EQ(run("let all = []\nwhile true do push(all, range(1000)) end"), PELLUM_MEMORY);
    EXPECT_EQ(pellum_set_global(engine_, "all", nullptr), PELLUM_OK);
    EXPECT_EQ(text("return 1"), "1");
}

TEST(CApiWithNull, NothingHappens) {
    pellum_value* result = pellum_nil();
    pellum_value* const before = result;
    EXPECT_EQ(pellum_run(nullptr, "x", 1, "x", &result), PELLUM_MISUSE);
    EXPECT_EQ(result, nullptr);
    pellum_value_free(before);
    EXPECT_EQ(pellum_call(nullptr, nullptr, nullptr, 0, nullptr), PELLUM_MISUSE);
    EXPECT_EQ(pellum_get_global(nullptr, "x", nullptr), PELLUM_MISUSE);
    EXPECT_EQ(pellum_set_global(nullptr, "x", nullptr), PELLUM_MISUSE);
    EXPECT_EQ(pellum_define(nullptr, "x", nullptr, nullptr, 0, 0), PELLUM_MISUSE);
    EXPECT_EQ(pellum_list(nullptr), nullptr);
    EXPECT_EQ(pellum_map(nullptr), nullptr);
    EXPECT_STREQ(pellum_error_message(nullptr), "");
    EXPECT_STREQ(pellum_error_diagnostic(nullptr), "");
    EXPECT_STREQ(pellum_error_source(nullptr), "");
    EXPECT_EQ(pellum_error_line(nullptr) + pellum_error_column(nullptr), 0u);
    EXPECT_EQ(pellum_steps_taken(nullptr), 0u);
    EXPECT_EQ(pellum_memory_used(nullptr), 0u);
    EXPECT_EQ(pellum_kind_of(nullptr), PELLUM_NIL);
    EXPECT_EQ(pellum_is_truthy(nullptr), 0);
    EXPECT_EQ(pellum_push(nullptr, nullptr), PELLUM_MISUSE);
    EXPECT_EQ(pellum_get(nullptr, nullptr, nullptr), PELLUM_MISUSE);
    pellum_interrupt(nullptr);
    pellum_fail(nullptr, nullptr);
    pellum_throw(nullptr, nullptr);
    pellum_value_free(nullptr);
    pellum_engine_free(nullptr);

    pellum_engine* const engine = pellum_engine_new(nullptr);
    ASSERT_TRUE(engine);
    EXPECT_EQ(pellum_run(engine, nullptr, 5, nullptr, nullptr), PELLUM_OK);
    EXPECT_EQ(pellum_set_global(engine, nullptr, nullptr), PELLUM_OK);
    EXPECT_EQ(pellum_call(engine, nullptr, nullptr, 0, nullptr), PELLUM_MISUSE);
    EXPECT_STREQ(pellum_error_message(engine), "the value is no function");
    pellum_value* const empty = pellum_string(nullptr, 9);
    const char* text = nullptr;
    EXPECT_EQ(pellum_as_string(empty, &text, nullptr), PELLUM_OK);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(pellum_as_string(empty, nullptr, nullptr), PELLUM_OK);
    pellum_value_free(empty);
    pellum_engine_free(engine);
}

}  // namespace
