// The flat C form: every function here hands over to the C++ form, and stops what that throws.
#include <pellum/pellum.h>
#include <pellum/pellum.hpp>

#include <new>
#include <optional>

using pellum::embed::Engine;
using pellum::embed::Error;
using pellum::embed::Failure;
using pellum::embed::Kind;
using pellum::embed::Options;
using pellum::embed::Value;
using pellum::embed::Values;

struct pellum_value {
    Value value;
};

struct pellum_engine {
    explicit pellum_engine(Options options) : engine(std::move(options)) {}

    Engine engine;
    std::optional<Error> failure;  // the latest, but where that has no Error
    const char* message = "";      // which then is this
    std::optional<Error> failing;  // what the function of the host that runs wants to fail with
    std::string failingMessage;
    bool isFailing = false;
};

namespace {

static_assert(static_cast<int>(Failure::Misuse) == PELLUM_MISUSE);
static_assert(static_cast<int>(Failure::Steps) == PELLUM_STEPS);
static_assert(static_cast<int>(Kind::Function) == PELLUM_FUNCTION);

std::string_view viewOf(const char* text) noexcept { return text ? text : ""; }
std::string_view viewOf(const char* text, std::size_t length) noexcept {
    return text ? std::string_view(text, length) : std::string_view();
}

const Value& valueOf(const pellum_value* value) noexcept {
    static const Value nil;
    return value ? value->value : nil;
}

void yield(pellum_value** to, Value value) {
    if (to) *to = new pellum_value{std::move(value)};
}

// Does something, and turns what it throws into a status that the engine, if there is one,
// remembers.
template <typename Work>
pellum_status attempt(pellum_engine* engine, Work work) noexcept {
    try {
        work();
        return PELLUM_OK;
    } catch (const Error& error) {
        if (engine) engine->failure = error;
        return static_cast<pellum_status>(error.failure());
    } catch (const std::bad_alloc&) {
        if (engine) {
            engine->failure.reset();
            engine->message = "out of memory";
        }
        return PELLUM_OUT_OF_MEMORY;
    } catch (const std::exception&) {
        return PELLUM_MISUSE;
    }
}

template <typename Work>
pellum_status attemptIn(pellum_engine* engine, Work work) noexcept {
    return engine ? attempt(engine, work) : PELLUM_MISUSE;
}

template <typename Make>
pellum_value* made(Make make) noexcept {
    pellum_value* result = nullptr;
    attempt(nullptr, [&] { yield(&result, make()); });
    return result;
}

Value callNative(pellum_engine* engine, pellum_native native, void* user, const Values& arguments) {
    std::vector<pellum_value> held;
    held.reserve(arguments.size());
    std::vector<pellum_value*> given;
    given.reserve(arguments.size());
    for (const Value& argument : arguments)
        given.push_back(&held.emplace_back(pellum_value{argument}));
    const bool wasFailing = std::exchange(engine->isFailing, false);
    const std::unique_ptr<pellum_value> result(native(engine, given.data(), given.size(), user));
    const bool isFailing = std::exchange(engine->isFailing, wasFailing);
    if (isFailing) {
        if (engine->failing) throw Error(*std::exchange(engine->failing, std::nullopt));
        throw std::runtime_error(std::exchange(engine->failingMessage, {}));
    }
    return valueOf(result.get());
}

}  // namespace

extern "C" {

pellum_engine* pellum_engine_new(const pellum_options* options) {
    pellum_engine* engine = nullptr;
    attempt(nullptr, [&] {
        Options given;
        if (options) {
            void* const user = options->user;
            if (const pellum_output output = options->output) {
                given.output = [=](std::string_view text) {
                    output(user, text.data(), text.size());
                };
            }
            if (const pellum_input input = options->input) {
                given.input = [=]() -> std::optional<std::string> {
                    const char* line = nullptr;
                    std::size_t length = 0;
                    if (!input(user, &line, &length)) return std::nullopt;
                    return std::string(viewOf(line, length));
                };
            }
            given.maxSteps = options->max_steps;
            given.maxMemory = options->max_memory;
            given.isInterruptible = options->interruptible != 0;
        }
        engine = new pellum_engine(std::move(given));
    });
    return engine;
}

void pellum_engine_free(pellum_engine* engine) { delete engine; }

pellum_status pellum_run(pellum_engine* engine, const char* source, size_t length, const char* name,
                         pellum_value** result) {
    if (result) *result = nullptr;
    return attemptIn(
        engine, [&] { yield(result, engine->engine.run(viewOf(source, length), viewOf(name))); });
}

pellum_status pellum_call(pellum_engine* engine, const pellum_value* function,
                          const pellum_value* const* arguments, size_t count,
                          pellum_value** result) {
    if (result) *result = nullptr;
    return attemptIn(engine, [&] {
        Values given;
        for (std::size_t i = 0; i < count; ++i) given.push_back(valueOf(arguments[i]));
        yield(result, engine->engine.call(valueOf(function), given));
    });
}

void pellum_interrupt(pellum_engine* engine) {
    if (engine) engine->engine.interrupt();
}

pellum_status pellum_get_global(pellum_engine* engine, const char* name, pellum_value** result) {
    if (result) *result = nullptr;
    return attemptIn(engine, [&] { yield(result, engine->engine.get(viewOf(name))); });
}

pellum_status pellum_set_global(pellum_engine* engine, const char* name,
                                const pellum_value* value) {
    return attemptIn(engine, [&] { engine->engine.set(viewOf(name), valueOf(value)); });
}

pellum_status pellum_define(pellum_engine* engine, const char* name, pellum_native native,
                            void* user, int least, int most) {
    return attemptIn(engine, [&] {
        pellum::embed::Native called;
        if (native) {
            called = [=](Engine&, const Values& arguments) {
                return callNative(engine, native, user, arguments);
            };
        }
        engine->engine.define(viewOf(name), std::move(called), least, most);
    });
}

void pellum_fail(pellum_engine* engine, const char* message) {
    attemptIn(engine, [&] {
        engine->isFailing = true;
        engine->failing.reset();
        engine->failingMessage = viewOf(message);
    });
}

void pellum_throw(pellum_engine* engine, const pellum_value* thrown) {
    attemptIn(engine, [&] {
        engine->isFailing = true;
        engine->failingMessage.clear();
        engine->failing.emplace(valueOf(thrown));
    });
}

const char* pellum_error_message(const pellum_engine* engine) {
    if (!engine) return "";
    return engine->failure ? engine->failure->what() : engine->message;
}

const char* pellum_error_diagnostic(const pellum_engine* engine) {
    if (!engine || !engine->failure) return pellum_error_message(engine);
    return engine->failure->diagnostic().c_str();
}

const char* pellum_error_source(const pellum_engine* engine) {
    return engine && engine->failure ? engine->failure->source().c_str() : "";
}

unsigned pellum_error_line(const pellum_engine* engine) {
    return engine && engine->failure ? engine->failure->line() : 0;
}

unsigned pellum_error_column(const pellum_engine* engine) {
    return engine && engine->failure ? engine->failure->column() : 0;
}

pellum_value* pellum_error_thrown(const pellum_engine* engine) {
    return made([&] { return engine && engine->failure ? engine->failure->thrown() : Value(); });
}

uint64_t pellum_steps_taken(const pellum_engine* engine) {
    return engine ? engine->engine.stepsTaken() : 0;
}

size_t pellum_memory_used(const pellum_engine* engine) {
    return engine ? engine->engine.memoryUsed() : 0;
}

pellum_value* pellum_nil(void) {
    return made([] { return Value(); });
}
pellum_value* pellum_bool(int truth) {
    return made([&] { return Value(truth != 0); });
}
pellum_value* pellum_int(int64_t number) {
    return made([&] { return Value(number); });
}
pellum_value* pellum_float(double number) {
    return made([&] { return Value(number); });
}
pellum_value* pellum_string(const char* text, size_t length) {
    return made([&] { return Value(viewOf(text, length)); });
}

pellum_value* pellum_list(pellum_engine* engine) {
    pellum_value* result = nullptr;
    attemptIn(engine, [&] { yield(&result, engine->engine.list()); });
    return result;
}

pellum_value* pellum_map(pellum_engine* engine) {
    pellum_value* result = nullptr;
    attemptIn(engine, [&] { yield(&result, engine->engine.map()); });
    return result;
}

pellum_value* pellum_copy(const pellum_value* value) {
    return made([&] { return valueOf(value); });
}

void pellum_value_free(pellum_value* value) { delete value; }

pellum_kind pellum_kind_of(const pellum_value* value) {
    return static_cast<pellum_kind>(valueOf(value).kind());
}

int pellum_is_truthy(const pellum_value* value) { return valueOf(value).isTruthy(); }

pellum_status pellum_as_bool(const pellum_value* value, int* truth) {
    if (truth) *truth = 0;
    return attempt(nullptr, [&] {
        const bool is = valueOf(value).asBool();
        if (truth) *truth = is;
    });
}

pellum_status pellum_as_int(const pellum_value* value, int64_t* number) {
    if (number) *number = 0;
    return attempt(nullptr, [&] {
        const std::int64_t is = valueOf(value).asInt();
        if (number) *number = is;
    });
}

pellum_status pellum_as_float(const pellum_value* value, double* number) {
    if (number) *number = 0;
    return attempt(nullptr, [&] {
        const double is = valueOf(value).asFloat();
        if (number) *number = is;
    });
}

pellum_status pellum_as_string(const pellum_value* value, const char** text, size_t* length) {
    if (text) *text = nullptr;
    if (length) *length = 0;
    return attempt(nullptr, [&] {
        const std::string& is = valueOf(value).asString();
        if (text) *text = is.c_str();
        if (length) *length = is.size();
    });
}

pellum_status pellum_text_of(const pellum_value* value, pellum_value** text) {
    if (text) *text = nullptr;
    return attempt(nullptr, [&] { yield(text, valueOf(value).text()); });
}

pellum_status pellum_size(const pellum_value* value, size_t* size) {
    if (size) *size = 0;
    return attempt(nullptr, [&] {
        const std::size_t is = valueOf(value).size();
        if (size) *size = is;
    });
}

pellum_status pellum_get(const pellum_value* value, const pellum_value* index_or_key,
                         pellum_value** result) {
    if (result) *result = nullptr;
    return attempt(nullptr, [&] { yield(result, valueOf(value).get(valueOf(index_or_key))); });
}

pellum_status pellum_set(const pellum_value* value, const pellum_value* index_or_key,
                         const pellum_value* element) {
    return attempt(nullptr, [&] { valueOf(value).set(valueOf(index_or_key), valueOf(element)); });
}

pellum_status pellum_push(const pellum_value* list, const pellum_value* element) {
    return attempt(nullptr, [&] { valueOf(list).push(valueOf(element)); });
}

pellum_status pellum_key_at(const pellum_value* map, size_t place, pellum_value** key) {
    if (key) *key = nullptr;
    return attempt(nullptr, [&] { yield(key, valueOf(map).keyAt(place)); });
}

}  // extern "C"
