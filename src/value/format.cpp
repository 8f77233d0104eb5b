#include "value/format.h"

#include "value/heap.h"
#include "value/limits.h"
#include "value/map.h"
#include "value/string.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace pellum {

namespace {

// A text that gets longer than this is counted before it is finished.
constexpr std::size_t maxUncounted = limit(4 << 20, 8);

// Appends the text of a value, walking nested containers with a stack of its own. Each container
// that is being shown is marked, which is how one that holds itself is recognised.
class TextWriter {
public:
    explicit TextWriter(std::string& out) noexcept : out_(out), start_(out.size()) {}
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;
    ~TextWriter() {
        for (const OpenContainer& open : open_) open.container->unmark();
    }

    void writeRepr(const Value& value) {
        whole_ = &value;
        open(value);
        while (!open_.empty()) next();
    }

private:
    struct OpenContainer {
        Object* container;
        bool isList;
        std::size_t position;  // of the element or entry to show next
    };

    // Writes a plain value whole, or the opening bracket of a container.
    void open(const Value& value) {
        if (!value.isList() && !value.isMap()) {
            writePlain(value);
        } else if (value.object()->isMarked()) {
            out_ += value.isList() ? "[...]" : "{...}";
        } else {
            open_.push_back({value.object(), value.isList(), 0});
            value.object()->mark();
            out_ += value.isList() ? '[' : '{';
            countIfLong(0);
        }
    }

    void writePlain(const Value& value) {
        if (value.isString()) {
            countIfLong(value.asText().size());
            writeQuoted(value.asText());
        } else {
            appendDisplay(out_, value);
        }
    }

    // Shows the next element of the innermost open container, or closes it.
    void next() {
        OpenContainer& top = open_.back();
        const std::size_t position = top.position++;
        const std::size_t count = top.isList ? listOf(top).items.size() : mapOf(top).size();
        if (position == count) {
            out_ += top.isList ? ']' : '}';
            top.container->unmark();
            open_.pop_back();
            return;
        }
        if (position > 0) out_ += ", ";
        if (top.isList) {
            open(listOf(top).items[position]);
        } else {
            const MapData::Entry& entry = mapOf(top).entries()[position];
            writePlain(entry.key);
            out_ += ": ";
            open(entry.value);
        }
    }

    // Containers that share their parts may have a text that is longer by far than they are large.
    // One that is too long is refused here, before it has taken much time or memory.
    void countIfLong(std::size_t nextAtLeast) {
        if (isCounted_ || out_.size() - start_ + nextAtLeast <= maxUncounted) return;
        isCounted_ = true;
        const std::size_t length = start_ + reprLength(*whole_);
        if (length > maxStringLength) throw std::length_error("text too long");
        requireRoom(length);
        out_.reserve(length);
    }

    void writeQuoted(std::string_view text) {
        out_ += '"';
        for (const char byte : text) {
            const char letter = escapeLetter(byte);
            if (letter) out_ += '\\';
            out_ += letter ? letter : byte;
        }
        out_ += '"';
    }

    static const ListObj& listOf(const OpenContainer& open) noexcept {
        return static_cast<const ListObj&>(*open.container);
    }
    static MapData& mapOf(const OpenContainer& open) noexcept {
        return static_cast<MapData&>(*open.container);
    }

    std::string& out_;
    std::size_t start_;             // length of what was in `out_` before
    const Value* whole_ = nullptr;  // what is to be shown
    bool isCounted_ = false;
    std::vector<OpenContainer> open_;  // outermost first
};

void appendInt(std::string& out, std::int64_t n) {
    char digits[std::numeric_limits<std::int64_t>::digits10 + 2];
    const auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
    out.append(digits, end);
}

void appendFloat(std::string& out, double x) {
    if (std::isnan(x)) {
        out += "nan";  // whatever its sign
        return;
    }
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, x).ptr;
    const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    out += text;
    const bool looksLikeInteger = text.find_first_of(".en") == text.npos;  // "n" as in "inf"
    if (looksLikeInteger) out += ".0";
}

void appendFunction(std::string& out, const Value& function) {
    out += function.kind() == ValueKind::Native ? "<native function " : "<function ";
    out += function.asFunction().functionName();
    out += '>';
}

}  // namespace

void appendDisplay(std::string& out, const Value& value) {
    switch (value.kind()) {
        case ValueKind::Nil: out += "nil"; break;
        case ValueKind::Bool: out += value.asBool() ? "true" : "false"; break;
        case ValueKind::Int: appendInt(out, value.asInt()); break;
        case ValueKind::Float: appendFloat(out, value.asFloat()); break;
        case ValueKind::String: out += value.asText(); break;
        case ValueKind::List:
        case ValueKind::Map: appendRepr(out, value); break;
        case ValueKind::Function:
        case ValueKind::Native:
        case ValueKind::Closure: appendFunction(out, value); break;
    }
}

void appendRepr(std::string& out, const Value& value) { TextWriter(out).writeRepr(value); }

std::string toDisplayString(const Value& value) {
    std::string out;
    appendDisplay(out, value);
    return out;
}

std::string toReprString(const Value& value) {
    std::string out;
    appendRepr(out, value);
    return out;
}

std::string quoteString(std::string_view text) { return toReprString(Value(text)); }

std::string formatInt(std::int64_t n) {
    std::string out;
    appendInt(out, n);
    return out;
}

std::string formatFloat(double x) {
    std::string out;
    appendFloat(out, x);
    return out;
}

}  // namespace pellum
