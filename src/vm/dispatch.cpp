// The engine room: one switch over the opcode byte, its arms in the order of the opcode list.

#include "vm/vm.h"

#include "value/map.h"
#include "value/number.h"

namespace pellum {

Value VM::dispatch(std::size_t baseDepth) {
    Frame* frame = &frames_.back();
    const std::uint8_t* ip = frame->ip;
    const auto readU8 = [&] { return *ip++; };
    const auto nextU16 = [&] {
        ip += 2;
        return readU16(ip - 2);
    };
    const auto readConstant = [&]() -> const Value& {
        return frame->closure->proto->constants[nextU16()];
    };
    // After a call or return another frame may be on top.
    const auto reloadFrame = [&] {
        frame = &frames_.back();
        ip = frame->ip;
    };

    for (;;) {
        frame->ip = ip;
        switch (static_cast<OpCode>(readU8())) {
            case OpCode::CONSTANT: push(readConstant()); break;
            case OpCode::NIL: push(Value()); break;
            case OpCode::TRUE: push(Value(true)); break;
            case OpCode::FALSE: push(Value(false)); break;
            case OpCode::POP: stack_.drop(); break;
            case OpCode::DEFINE_GLOBAL: defineGlobal(readConstant()); break;
            case OpCode::GET_GLOBAL: getGlobal(readConstant()); break;
            case OpCode::SET_GLOBAL: setGlobal(readConstant()); break;
            case OpCode::GET_LOCAL: push(stack_[frame->base + nextU16()]); break;
            case OpCode::SET_LOCAL: stack_[frame->base + nextU16()] = stack_.peek(); break;
            case OpCode::GET_UPVALUE: push(*frame->closure->upvalues[readU8()]->location); break;
            case OpCode::SET_UPVALUE:
                *frame->closure->upvalues[readU8()]->location = stack_.peek();
                break;
            case OpCode::CLOSE_UPVALUE:
                closeUpvalues(&stack_.peek());
                stack_.drop();
                break;
            case OpCode::BUILD_LIST: buildList(nextU16()); break;
            case OpCode::BUILD_MAP: buildMap(nextU16()); break;
            case OpCode::INDEX_GET: {
                const Value index = stack_.pop();
                const Value object = stack_.pop();
                push(readIndex(object, index, position()));
                break;
            }
            case OpCode::INDEX_GET_KEEP:
                push(readIndex(stack_.peek(1), stack_.peek(0), position()));
                break;
            case OpCode::INDEX_SET: {
                Value value = stack_.pop();
                const Value index = stack_.pop();
                const Value object = stack_.pop();
                writeIndex(object, index, value, position());
                push(std::move(value));
                break;
            }
            case OpCode::ADD: arithmetic(ArithmeticOp::Add); break;
            case OpCode::SUB: arithmetic(ArithmeticOp::Subtract); break;
            case OpCode::MUL: arithmetic(ArithmeticOp::Multiply); break;
            case OpCode::DIV: arithmetic(ArithmeticOp::Divide); break;
            case OpCode::FLOOR_DIV: arithmetic(ArithmeticOp::FloorDivide); break;
            case OpCode::MOD: arithmetic(ArithmeticOp::Modulo); break;
            case OpCode::POW: arithmetic(ArithmeticOp::Power); break;
            case OpCode::NEGATE: {
                const Value operand = stack_.pop();
                push(negate(operand, position()));
                break;
            }
            case OpCode::NOT: stack_.peek() = Value(!isTruthy(stack_.peek())); break;
            case OpCode::EQUAL: {
                const Value right = stack_.pop();
                stack_.peek() = Value(valuesEqual(stack_.peek(), right));
                break;
            }
            case OpCode::NOT_EQUAL: {
                const Value right = stack_.pop();
                stack_.peek() = Value(!valuesEqual(stack_.peek(), right));
                break;
            }
            case OpCode::LESS: comparison(Comparison::Less); break;
            case OpCode::LESS_EQUAL: comparison(Comparison::LessEqual); break;
            case OpCode::GREATER: comparison(Comparison::Greater); break;
            case OpCode::GREATER_EQUAL: comparison(Comparison::GreaterEqual); break;
            case OpCode::JUMP: {
                const std::size_t offset = nextU16();
                ip += offset;
                break;
            }
            case OpCode::JUMP_IF_FALSE: {
                const std::size_t offset = nextU16();
                if (!isTruthy(stack_.peek())) ip += offset;
                break;
            }
            case OpCode::JUMP_IF_TRUE: {
                const std::size_t offset = nextU16();
                if (isTruthy(stack_.peek())) ip += offset;
                break;
            }
            case OpCode::LOOP: {
                const std::size_t offset = nextU16();
                ip -= offset;
                break;
            }
            case OpCode::CALL: {
                const std::size_t argCount = readU8();
                const std::size_t depth = frames_.size();
                callValue(argCount, position());
                if (frames_.size() > depth) {
                    frame->ip = ip;  // where the callee returns to
                    reloadFrame();
                }
                break;
            }
            case OpCode::CLOSURE: makeClosure(nextU16()); break;
            case OpCode::RETURN:
                leaveFrame();
                if (frames_.size() == baseDepth) return stack_.pop();
                reloadFrame();
                break;
            case OpCode::ITER_LIST: {
                const Value iterable = stack_.pop();
                push(makeList(elementsToVisit(iterable, position())));
                break;
            }
            case OpCode::LEN: length(); break;
            case OpCode::FOR_TEST: push(Value(forTest())); break;
            case OpCode::TRY_BEGIN: {
                const std::size_t offset = nextU16();
                handlers_.push_back({frames_.size(), stack_.size(), ip + offset});
                break;
            }
            case OpCode::TRY_END: handlers_.pop_back(); break;
            case OpCode::HALT: return {};
        }
    }
}

void VM::defineGlobal(const Value& name) { globals_[&name.asString()] = stack_.pop(); }

void VM::getGlobal(const Value& name) {
    const auto found = globals_.find(&name.asString());
    if (found == globals_.end()) fail("undefined variable '" + std::string(name.asText()) + "'");
    push(found->second);
}

void VM::setGlobal(const Value& name) {
    const auto found = globals_.find(&name.asString());
    if (found == globals_.end()) {
        fail("cannot assign to undefined variable '" + std::string(name.asText()) +
             "' (use 'let' to declare it)");
    }
    found->second = stack_.peek();
}

void VM::buildList(std::size_t count) {
    Value* const first = stack_.top() - count;
    Value list = makeList({first, stack_.top()});
    stack_.resize(stack_.size() - count);
    push(std::move(list));
}

void VM::buildMap(std::size_t pairCount) {
    auto map = makeRef<MapData>();
    const Value* const first = stack_.top() - 2 * pairCount;
    for (const Value* key = first; key != stack_.top(); key += 2) {
        if (!key->isString() && !key->isNumber()) {
            fail(std::string("map keys must be string or number, got ") + typeName(*key));
        }
        map->set(*key, Value(key[1]));
    }
    stack_.resize(stack_.size() - 2 * pairCount);
    push(Value(std::move(map)));
}

void VM::arithmetic(ArithmeticOp op) {
    Value right = stack_.pop();
    Value left = stack_.pop();
    if (op == ArithmeticOp::Add) return push(add(std::move(left), right, position()));
    if (!left.isNumber() || !right.isNumber()) {
        fail(std::string("arithmetic needs numbers, got ") + typeName(left) + " and " +
             typeName(right));
    }
    push(numberArithmetic(op, left, right, position()));
}

void VM::comparison(Comparison comparison) {
    const Value right = stack_.pop();
    const Value left = stack_.pop();
    push(Value(compare(comparison, left, right, position())));
}

void VM::length() {
    const Value value = stack_.pop();
    switch (value.kind()) {
        case ValueKind::String: return push(Value(value.asText().size()));
        case ValueKind::List: return push(Value(listLength(value.asList())));
        case ValueKind::Map: return push(Value(mapSize(value.asMap())));
        default: fail(std::string("cannot take length of ") + typeName(value));
    }
}

// Whether a numeric loop goes on. A step of zero or NaN counts as upward.
bool VM::forTest() {
    const Value step = stack_.pop();
    const Value limit = stack_.pop();
    const Value counter = stack_.pop();
    if (!counter.isNumber() || !limit.isNumber() || !step.isNumber()) {
        fail("numeric for-loop needs numbers");
    }
    return step.asNumber() < 0 ? counter.asNumber() >= limit.asNumber()
                               : counter.asNumber() <= limit.asNumber();
}

}  // namespace pellum
