// The plain machine: one switch over the opcode byte, its arms in the order of the opcode list. It
// is the yardstick for register code, and runs what that does not cover.

#include "vm/vm.h"

#include "value/map.h"

namespace pellum {

void VM::runStackCode() {
    Frame* frame = frame_;
    const std::uint8_t* ip = frame->ip;
    const auto readU8 = [&] { return *ip++; };
    const auto nextU16 = [&] {
        ip += 2;
        return readU16(ip - 2);
    };
    const auto readConstant = [&]() -> const Value& {
        return frame->closure->proto->constants[nextU16()];
    };

    for (;;) {
        frame->ip = ip;
        switch (static_cast<OpCode>(readU8())) {
            case OpCode::CONSTANT: push(readConstant()); break;
            case OpCode::NIL: push(Value()); break;
            case OpCode::TRUE: push(Value(true)); break;
            case OpCode::FALSE: push(Value(false)); break;
            case OpCode::POP: stack_.drop(); break;
            case OpCode::DEFINE_GLOBAL: {
                GlobalCell& cell = cellOf(readConstant());
                cell.value = stack_.pop();
                cell.isDefined = true;
                break;
            }
            case OpCode::GET_GLOBAL: {
                const GlobalCell& cell = cellOf(readConstant());
                if (!cell.isDefined) failUndefined(cell);
                push(cell.value);
                break;
            }
            case OpCode::SET_GLOBAL: {
                GlobalCell& cell = cellOf(readConstant());
                if (!cell.isDefined) failAssignUndefined(cell);
                cell.value = stack_.peek();
                break;
            }
            case OpCode::GET_LOCAL: push(frame->base[nextU16()]); break;
            case OpCode::SET_LOCAL: frame->base[nextU16()] = stack_.peek(); break;
            case OpCode::GET_UPVALUE: push(*frame->closure->upvalues[readU8()]->location); break;
            case OpCode::SET_UPVALUE:
                *frame->closure->upvalues[readU8()]->location = stack_.peek();
                break;
            case OpCode::CLOSE_UPVALUE:
                closeUpvalues(&stack_.peek());
                stack_.drop();
                break;
            case OpCode::BUILD_LIST: {
                const std::size_t count = nextU16();
                Value* const first = stack_.top() - count;
                Value list = makeList({first, stack_.top()});
                stack_.resize(stack_.size() - count);
                push(std::move(list));
                break;
            }
            case OpCode::BUILD_MAP: {
                const std::size_t count = 2 * std::size_t{nextU16()};
                Value map = mapOf(stack_.top() - count, count);
                stack_.resize(stack_.size() - count);
                push(std::move(map));
                break;
            }
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
                if (steps_.areCounted()) [[unlikely]]
                    steps_.take();
                break;
            }
            case OpCode::CALL: {
                const std::size_t argCount = readU8();
                callValue(argCount, position());
                frame->ip = ip;  // where the callee returns to
                if (frame_ != frame) {
                    if (!frame_->isPlain) return;
                    frame = frame_;
                    ip = frame->ip;
                }
                break;
            }
            case OpCode::CLOSURE: push(makeClosure(nextU16())); break;
            case OpCode::RETURN:
                leavePlainFrame();
                if (frameCount() == baseDepth_ || !frame_->isPlain) return;
                frame = frame_;
                ip = frame->ip;
                break;
            case OpCode::ITER_LIST: {
                const Value iterable = stack_.pop();
                push(makeList(elementsToVisit(iterable, position())));
                break;
            }
            case OpCode::LEN: {
                const Value value = stack_.pop();
                push(lengthOf(value));
                break;
            }
            case OpCode::FOR_TEST: {
                const Value step = stack_.pop();
                const Value limit = stack_.pop();
                const Value counter = stack_.pop();
                push(Value(forTestSlowly(counter, limit, step)));
                break;
            }
            case OpCode::TRY_BEGIN: {
                const std::size_t offset = nextU16();
                enterTry(stack_.top(), ip + offset);
                break;
            }
            case OpCode::TRY_END:
                if (!handlers_.empty()) leaveTry();
                break;
            case OpCode::HALT:
                // The run ends here with nil, whatever is still on the stack.
                while (frameCount() > baseDepth_) popFrame();
                push(Value());
                return;
        }
    }
}

void VM::arithmetic(ArithmeticOp op) {
    const Value right = stack_.pop();
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

}  // namespace pellum
