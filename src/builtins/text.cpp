#include "builtins/families.h"

#include "builtins/search.h"
#include "value/format.h"
#include "value/heap.h"
#include "value/limits.h"

#include <algorithm>
#include <array>

// Text is bytes here: lengths and positions count them, and only the letters of ASCII have a case.

namespace pellum::library {

namespace {

char upperByte(char byte) noexcept {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

char lowerByte(char byte) noexcept {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// Returns where the next text goes.
char* copyTo(char* to, std::string_view text) noexcept {
    return std::copy(text.begin(), text.end(), to);
}

// The display form of a value with every byte changed.
Value mapBytes(const Value& value, char (*change)(char) noexcept) {
    const DisplayText given(value);
    const std::string_view text = given.view();
    return Value(StringObj::build(
        text.size(), [&](char* to) { std::transform(text.begin(), text.end(), to, change); }));
}

// Calls `visit` with each word: whatever stands between runs of white space.
template <typename Visit>
void forEachWord(std::string_view text, Visit visit) {
    const auto isSpace = [](char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); };
    const char* const end = text.data() + text.size();
    for (const char* at = text.data();;) {
        at = std::find_if_not(at, end, isSpace);
        if (at == end) return;
        const char* const start = at;
        at = std::find_if(at, end, isSpace);
        visit(std::string_view(start, static_cast<std::size_t>(at - start)));
    }
}

// Calls `visit` with each piece before, between and after the occurrences of `separator`, which do
// not overlap. REQUIRES: the separator is not empty.
template <typename Visit>
void forEachPiece(std::string_view text, std::string_view separator, Visit visit) {
    TextSearcher searcher(separator);
    std::size_t start = 0;
    for (std::size_t end; (end = searcher.find(text, start)) != TextSearcher::npos;
         start = end + separator.size()) {
        visit(text.substr(start, end - start));
    }
    visit(text.substr(start));
}

// Makes strings of pieces of a text, and where a short piece has lately come up before, the same
// string again: words repeat, and then cost neither memory nor another hash when they are counted.
class PieceMaker {
public:
    Value make(std::string_view piece) {
        if (piece.size() < 2 || piece.size() > longest) return Value(piece);
        const StringObj*& known = known_[slotFor(piece)];
        if (!known || known->view() != piece) {
            Value made(piece);
            known = &made.asString();
            return made;
        }
        return Value(Ref<StringObj>(const_cast<StringObj*>(known)));
    }

private:
    static constexpr std::size_t longest = limit(24, 3);
    static constexpr std::size_t slots = limit(1024, 3);

    static std::size_t slotFor(std::string_view piece) noexcept {
        std::uint32_t hash = 0;
        for (const char byte : piece) hash = hash * 31 + static_cast<unsigned char>(byte);
        return (hash ^ hash >> 10) % slots;
    }

    std::array<const StringObj*, slots> known_ = {};  // the list that is being made holds them
};

// A list of the pieces that `forEach` visits, cut from a text of `length` bytes into `mostPossible`
// at most. They are counted first where there may be too many.
template <typename ForEach>
Value listOfPieces(std::size_t length, std::size_t mostPossible, ForEach forEach) {
    constexpr std::size_t worthSharing = limit(4'096, 2);
    if (mostPossible > maxListLength) {
        std::size_t count = 0;
        forEach([&](std::string_view) { checkListLength(++count); });
    }
    Values pieces;
    if (length < worthSharing) {
        forEach([&](std::string_view piece) { pieces.emplace_back(piece); });
    } else {
        PieceMaker maker;
        forEach([&](std::string_view piece) { pieces.push_back(maker.make(piece)); });
    }
    return makeList(std::move(pieces));
}

}  // namespace

Value upper(Caller&, Arguments args) { return mapBytes(args[0], upperByte); }
Value lower(Caller&, Arguments args) { return mapBytes(args[0], lowerByte); }

Value capitalize(Caller&, Arguments args) {
    const DisplayText given(args[0]);
    const std::string_view text = given.view();
    return Value(StringObj::build(text.size(), [&](char* to) {
        copyTo(to, text);
        *to = upperByte(*to);  // no bytes are not written at all
    }));
}

Value trim(Caller&, Arguments args) {
    constexpr std::string_view trimmed = " \t\r\n";
    const DisplayText given(args[0]);
    const std::string_view text = given.view();
    const std::size_t first = text.find_first_not_of(trimmed);
    if (first == text.npos) return Value("");
    return Value(text.substr(first, text.find_last_not_of(trimmed) - first + 1));
}

Value split(Caller&, Arguments args) {
    const std::string_view text = textArg(args[0], "split: expected a string");
    const bool hasSeparator = args.size() > 1 && args[1].isString() && !args[1].asText().empty();
    if (!hasSeparator) {
        return listOfPieces(text.size(), text.size() / 2 + 1,
                            [&](auto visit) { forEachWord(text, visit); });
    }
    const std::string_view separator = args[1].asText();
    return listOfPieces(text.size(), text.size() / separator.size() + 1,
                        [&](auto visit) { forEachPiece(text, separator, visit); });
}

Value join(Caller&, Arguments args) {
    const Values& elements = listArg(args[0], "join: first argument must be a list");
    const Value noSeparator("");
    const DisplayText given(args.size() > 1 ? args[1] : noSeparator);
    const std::string_view separator = given.view();

    // Counted before any text is made: a few elements may show as more than a string holds.
    const std::size_t separators = elements.empty() ? 0 : elements.size() - 1;
    const std::size_t length = displayLength(elements) + separator.size() * separators;
    if (std::ranges::all_of(elements, &Value::isString)) {
        return Value(StringObj::build(length, [&](char* to) {
            for (std::size_t i = 0; i < elements.size(); ++i) {
                if (i > 0) to = copyTo(to, separator);
                to = copyTo(to, elements[i].asText());
            }
        }));
    }
    checkStringLength(length);
    requireRoom(length);
    std::string joined;
    joined.reserve(length);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i > 0) joined += separator;
        appendDisplay(joined, elements[i]);
    }
    return Value(joined);
}

Value replace(Caller&, Arguments args) {
    const DisplayText givenText(args[0]);
    const DisplayText givenOld(args[1]);
    const DisplayText givenNew(args[2]);
    const std::string_view text = givenText.view();
    const std::string_view oldPart = givenOld.view();
    const std::string_view newPart = givenNew.view();
    if (oldPart.empty()) return Value(text);

    std::size_t length = text.size();
    if (newPart.size() != oldPart.size()) {
        std::size_t pieces = 0;
        std::size_t kept = 0;
        forEachPiece(text, oldPart, [&](std::string_view piece) {
            ++pieces;
            kept += piece.size();
        });
        length = kept + (pieces - 1) * newPart.size();
        checkStringLength(length);
    }
    return Value(StringObj::build(length, [&](char* start) {
        char* to = start;
        forEachPiece(text, oldPart, [&](std::string_view piece) {
            if (piece.data() != text.data()) to = copyTo(to, newPart);
            to = copyTo(to, piece);
        });
    }));
}

Value startsWith(Caller&, Arguments args) {
    const DisplayText text(args[0]);
    const DisplayText prefix(args[1]);
    return Value(text.view().starts_with(prefix.view()));
}

Value endsWith(Caller&, Arguments args) {
    const DisplayText text(args[0]);
    const DisplayText suffix(args[1]);
    return Value(text.view().ends_with(suffix.view()));
}

Value chars(Caller&, Arguments args) {
    require(args[0].isString(), "chars: expected a string");
    const std::string_view text = args[0].asText();
    checkListLength(text.size());
    Values bytes;
    bytes.reserve(text.size());
    for (const char byte : text) {
        bytes.emplace_back(StringObj::oneByte(static_cast<unsigned char>(byte)));
    }
    return makeList(std::move(bytes));
}

Value byteFromCode(Caller&, Arguments args) {
    const std::int64_t code = truncatedArg(args[0], "char");
    require(code >= 0 && code <= 255, "char: code must be between 0 and 255");
    return Value(StringObj::oneByte(static_cast<unsigned char>(code)));
}

Value ord(Caller&, Arguments args) {
    require(args[0].isString() && !args[0].asText().empty(), "ord: expected a non-empty string");
    return Value(static_cast<unsigned char>(args[0].asText().front()));
}

}  // namespace pellum::library
