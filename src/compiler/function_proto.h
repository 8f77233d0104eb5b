// A compiled function: the contract between the compiler, which makes it, and the virtual machine,
// which runs it. It is read-only once compiled and may be run by several machines.
#pragma once

#include "compiler/opcodes.h"
#include "value/value.h"

#include <string>
#include <vector>

namespace pellum {

// How a closure finds one captured variable when it is made.
struct UpvalueDescriptor {
    bool isLocal;        // a slot of the enclosing function, else one of its own upvalues
    std::int32_t index;  // which one
    friend bool operator==(const UpvalueDescriptor&, const UpvalueDescriptor&) = default;
};

struct FunctionProto final : Object {
    std::string name;  // empty for the script
    std::uint32_t arity = 0;
    std::vector<std::uint8_t> code;
    std::vector<std::uint32_t> lines;           // for each byte of the code, that of its node
    Values constants;                           // appended on every use, never shared between uses
    std::vector<Ref<FunctionProto>> functions;  // those written directly inside this one
    std::vector<UpvalueDescriptor> upvalues;    // in capture order
    Ref<Object> origin;  // what an embedding program knows the source by, or null
};

inline std::uint16_t readU16(const std::uint8_t* bytes) noexcept {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

}  // namespace pellum
