#include "embed/home.h"

#include "compiler/compiler.h"
#include "embed/host_streams.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "value/map.h"
#include "vm/vm.h"

#include <deque>
#include <limits>

namespace pellum::embed {

namespace {

void setOrigin(FunctionProto& function, const Ref<SourceText>& origin) {
    function.origin = origin;
    for (const Ref<FunctionProto>& inner : function.functions) setOrigin(*inner, origin);
}

}  // namespace

struct Engine::State {
    // A function of the host that programs can call.
    struct Hosted final : HostFunction {
        pellum::Value call(Caller& caller, Arguments args) override;

        State* state = nullptr;
        Native native;
    };

    State(Engine& itself, Options given);
    ~State();

    pellum::Value hosted(std::string_view name, Native native, int least, int most);

    // Does something of the host's, of which every failure is one of the program's.
    template <typename Work>
    std::invoke_result_t<Work> askHost(Work work);
    [[noreturn]] void throwInProgram(const Error& error) const;

    // Does something with the machine, as a part of the run that is under way, or as a new one.
    template <typename Work>
    embed::Value run(Work work);
    void beginRun();
    void endRun() noexcept;
    pellum::Value callFunction(const pellum::Value& function, Arguments args);
    void notePlace() noexcept;
    void noteInner(const Error& error) noexcept;

    void stopIfStopped() const {
        if (stopped) throw LimitReached{*stopped};
    }

    Engine& engine;
    Options options;
    std::shared_ptr<Home> home;
    HostStreams streams;
    Console console;
    std::deque<Hosted> functions;
    std::optional<VM> vm;
    StepCounter* steps = nullptr;
    std::uint64_t stepsAllowed = 0;
    std::size_t depth = 0;  // of runs inside each other
    std::size_t runs = 0;

    Place failedAt;  // where the latest failure was

    // Why the run that is under way has to end, once that is so. Whoever in between does not let it
    // end is passed over.
    std::optional<LimitReached::What> stopped;

    // The latest error that a run inside another ended with.
    std::string innerMessage;
    Place innerPlace;
};

Engine::State::State(Engine& itself, Options given)
    : engine(itself),
      options(std::move(given)),
      home(std::make_shared<Home>(options.maxMemory ? options.maxMemory : Heap::unlimited)),
      streams(
          [this](std::string_view text) {
              const auto write = [&] { return options.output(text), true; };
              if (options.output) askHost(write);
          },
          [this]() -> std::optional<std::string> {
              if (!options.input) return std::nullopt;
              return askHost([&] { return options.input(); });
          }),
      console(streams.in, streams.out) {
    const Inside inside(home);
    vm.emplace(console);
    if (options.maxSteps || options.isInterruptible) steps = &vm->countSteps();
}

Engine::State::~State() {
    const Heap::Inside inside(home->heap);
    failedAt = innerPlace = {};
    if (!vm) return;
    try {
        home->functions = vm->functionsRun();
    } catch (const std::bad_alloc&) {
        // Then what circles keep of them is lost.
    }
    vm.reset();
}

pellum::Value Engine::State::hosted(std::string_view name, Native native, int least, int most) {
    if (!native) throwMisuse("there is no function to call");
    if (least < 0 || (most < least && most != anyNumber)) {
        throwMisuse("no number of arguments would do");
    }
    Hosted& function = functions.emplace_back();
    function.state = this;
    function.native = std::move(native);
    function.minArity = least;
    function.maxArity = most == anyNumber ? unlimited : most;
    return pellum::Value(Ref<CallableObj>(makeRef<NativeObj>(name, function)));
}

pellum::Value Engine::State::Hosted::call(Caller&, Arguments args) {
    const Inside inside(state->home);
    return state->askHost([&] {
        Values given;
        given.reserve(args.size());
        for (pellum::Value& arg : args) given.push_back(inside.outer(std::move(arg)));
        return inside.inner(native(state->engine, given));
    });
}

template <typename Work>
std::invoke_result_t<Work> Engine::State::askHost(Work work) {
    try {
        auto result = work();
        stopIfStopped();
        return result;
    } catch (const LimitReached&) {
        throw;
    } catch (const PellumError&) {
        throw;
    } catch (const Error& error) {
        stopIfStopped();
        throwInProgram(error);
    } catch (const std::bad_alloc&) {
        stopIfStopped();
        throw;
    } catch (const std::exception& failure) {
        stopIfStopped();
        throw RuntimeError(failure.what());
    } catch (...) {
        stopIfStopped();
        throw RuntimeError("the host has thrown something unknown");
    }
}

void Engine::State::throwInProgram(const Error& error) const {
    switch (error.failure()) {
        case Failure::OutOfMemory: throw std::bad_alloc();
        case Failure::Thrown: throw ThrownValue{Inside(home).inner(error.thrown())};
        default: throw RuntimeError(error.what(), error.line(), error.column());
    }
}

template <typename Work>
embed::Value Engine::State::run(Work work) {
    const Inside inside(home);
    if (depth == 0) beginRun();
    ++depth;
    struct End {
        ~End() { state->endRun(); }
        State* state;
    } end{this};
    try {
        return inside.outer(work(inside));
    } catch (const LimitReached& limit) {
        stopped = limit.what;
        inside.throwError(failedAt);
    } catch (...) {
        try {
            inside.throwError(failedAt);
        } catch (const Error& error) {
            noteInner(error);
            throw;
        }
    }
}

void Engine::State::noteInner(const Error& error) noexcept {
    innerPlace = {failedAt.source, error.line()};
    try {
        innerMessage = error.what();
    } catch (const std::bad_alloc&) {
        innerPlace = {};
    }
}

void Engine::State::beginRun() {
    streams.clear();
    stopped.reset();
    failedAt = innerPlace = {};
    if (!steps) return;
    stepsAllowed = options.maxSteps ? options.maxSteps : std::numeric_limits<std::uint64_t>::max();
    steps->isInterrupted = false;
    steps->allow(stepsAllowed);
}

// What no later run can use is looked for now and then, since that takes as long as there is code.
void Engine::State::endRun() noexcept {
    constexpr std::size_t runsBetweenSearches = 64;
    if (--depth > 0 || ++runs % runsBetweenSearches != 0) return;
    vm->forgetUnusedCode();
    home->heap.forgetUnusedStrings();
}

pellum::Value Engine::State::callFunction(const pellum::Value& function, Arguments args) {
    const VM::Mark mark = vm->mark();
    try {
        return vm->call(function, args);
    } catch (const RuntimeError& error) {
        notePlace();
        const bool isFromInside =
            error.line > 0 && error.line == innerPlace.line && error.message == innerMessage;
        if (isFromInside) failedAt = innerPlace;
        vm->recover(mark);
        throw;
    } catch (...) {
        if (!stopped) notePlace();
        vm->recover(mark);
        throw;
    }
}

// Takes the place from the machine, which is still as it was when it failed.
void Engine::State::notePlace() noexcept {
    const FunctionProto* const function = vm->runningFunction();
    Ref<SourceText> source;
    if (function) source = Ref<SourceText>(static_cast<SourceText*>(function->origin.get()));
    failedAt = {std::move(source), vm->runningLine()};
}

Engine::Engine(Options options) {
    try {
        Inside::outOfMemory();
        state_ = std::make_unique<State>(*this, std::move(options));
    } catch (const LimitReached& limit) {
        throw Inside::limitError(limit.what, {});
    } catch (const std::bad_alloc&) {
        throw Inside::outOfMemory();
    }
}

Engine::~Engine() = default;

Value Engine::run(std::string_view source, std::string_view name) {
    State& state = *state_;
    return state.run([&](const Inside&) {
        auto text = makeRef<SourceText>();
        text->name = StringObj::make(name);
        text->text = StringObj::make(source);
        state.failedAt = {text, 0};
        const Ref<FunctionProto> script = compile(parse(tokenize(text->text->view())));
        setOrigin(*script, text);
        return state.callFunction(state.vm->closureOf(script), {});
    });
}

Value Engine::call(const Value& function, const Values& arguments) {
    if (function.kind() != Kind::Function) throwMisuse("the value is no function");
    State& state = *state_;
    return state.run([&](const Inside& inside) {
        pellum::Values args;
        for (const Value& argument : arguments) args.push_back(inside.inner(argument));
        return state.callFunction(inside.inner(function), args);
    });
}

bool Engine::has(std::string_view name) const {
    const Inside inside(state_->home);
    return inside.attempt([&] { return state_->vm->global(Symbol(name)) != nullptr; });
}

Value Engine::get(std::string_view name) const {
    const Inside inside(state_->home);
    return inside.attempt([&] {
        const pellum::Value* const value = state_->vm->global(Symbol(name));
        return value ? inside.outer(*value) : Value();
    });
}

void Engine::set(std::string_view name, const Value& value) {
    const Inside inside(state_->home);
    inside.attempt([&] { state_->vm->define(Symbol(name), inside.inner(value)); });
}

void Engine::define(std::string_view name, Native native, int least, int most) {
    const Inside inside(state_->home);
    inside.attempt([&] {
        state_->vm->define(Symbol(name), state_->hosted(name, std::move(native), least, most));
    });
}

Value Engine::function(std::string_view name, Native native, int least, int most) {
    const Inside inside(state_->home);
    return inside.attempt(
        [&] { return inside.outer(state_->hosted(name, std::move(native), least, most)); });
}

Value Engine::list(const Values& elements) {
    const Inside inside(state_->home);
    return inside.attempt([&] {
        pellum::Values items;
        items.reserve(elements.size());
        for (const Value& element : elements) items.push_back(inside.inner(element));
        return inside.outer(makeList(std::move(items)));
    });
}

Value Engine::map(const std::vector<std::pair<Value, Value>>& entries) {
    const Inside inside(state_->home);
    return inside.attempt([&] {
        const Value made = inside.outer(pellum::Value(makeRef<MapData>()));
        for (const auto& [key, value] : entries) made.set(key, value);
        return made;
    });
}

void Engine::interrupt() noexcept {
    if (state_->steps) state_->steps->isInterrupted = true;
}

std::uint64_t Engine::stepsTaken() const noexcept {
    return state_->steps ? state_->stepsAllowed - state_->steps->left() : 0;
}

std::size_t Engine::memoryUsed() const noexcept { return state_->home->heap.used(); }

}  // namespace pellum::embed
