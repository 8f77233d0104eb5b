#include "support/screen.h"

#include "support/text.h"

#include "driver/errors/utf8.h"

#include <algorithm>

namespace pellum::test {

Screen::Screen(std::size_t columns, std::size_t rows)
    : columns_(columns), rows_(rows, Row(columns)) {}

void Screen::show(std::string_view bytes) {
    const std::string all = cut_ + std::string(bytes);
    cut_.clear();
    for (std::string_view rest = all; !rest.empty();) {
        const auto first = static_cast<unsigned char>(rest.front());
        std::size_t length = 0;
        if (first < 0x20 || first == 0x7F) {
            length = takeControl(rest);
        } else if (rest.size() >= lengthFromFirstByte(rest.front())) {
            const Utf8Character character = firstCharacter(rest);
            put(rest.substr(0, character.length), columnsOf(character.code));
            length = character.length;
        }
        if (length == 0) {
            cut_ = rest;
            return;
        }
        rest.remove_prefix(length);
    }
}

// Both yield how many bytes they have taken, or 0 where the end is missing.
std::size_t Screen::takeControl(std::string_view bytes) {
    switch (bytes.front()) {
        case '\x1b': return takeEscape(bytes);
        case '\a': return 1;
        case '\r': column_ = 0; break;
        case '\n': lineFeed(); return 1;
        case '\b': column_ -= column_ > 0 ? 1 : 0; break;
        case '\t': column_ = std::min((column_ / 8 + 1) * 8, columns_ - 1); break;
        default: unknown_ += visible(bytes.substr(0, 1));
    }
    wrapsNext_ = false;
    return 1;
}

std::size_t Screen::takeEscape(std::string_view bytes) {
    if (bytes.size() < 2) return 0;
    if (bytes[1] != '[') {
        unknown_ += visible(bytes.substr(0, 2));
        return 2;
    }
    const std::size_t end = bytes.find_first_not_of("0123456789;?", 2);
    if (end == bytes.npos) return 0;
    obey(bytes[end], std::string(bytes.substr(2, end - 2)));
    return end + 1;
}

void Screen::obey(char command, const std::string& parameters) {
    const std::size_t number =
        parameters.empty() || parameters[0] == '?' ? 0 : std::stoul(parameters);
    const std::size_t count = std::max<std::size_t>(number, 1);
    Row& row = rows_[row_];
    wrapsNext_ = false;
    switch (command) {
        case 'A': row_ -= std::min(row_, count); return;
        case 'B': row_ = std::min(row_ + count, rows_.size() - 1); return;
        case 'C': column_ = std::min(column_ + count, columns_ - 1); return;
        case 'D': column_ -= std::min(column_, count); return;
        case 'G': column_ = std::min(count, columns_) - 1; return;
        case 'H': row_ = column_ = 0; return;
        case 'J':
            if (number == 2) std::fill(rows_.begin(), rows_.end(), Row(columns_));
            if (number == 0) {
                erase(row, column_, columns_);
                for (std::size_t below = row_ + 1; below < rows_.size(); ++below) {
                    erase(rows_[below], 0, columns_);
                }
            }
            return;
        case 'K':
            erase(row, number == 0 ? column_ : 0, number == 1 ? column_ + 1 : columns_);
            return;
        case 'P':
            for (std::size_t i = 0; i < count; ++i) {
                row.erase(row.begin() + static_cast<std::ptrdiff_t>(column_));
                row.emplace_back();
            }
            return;
        case '@':
            for (std::size_t i = 0; i < count; ++i) {
                row.emplace(row.begin() + static_cast<std::ptrdiff_t>(column_));
                row.pop_back();
            }
            return;
        case 'm': attributes_ = parameters == "0" ? "" : parameters; return;
        case 'h':
        case 'l':
            if (parameters == "?2004") {
                marksPastes_ = command == 'h';
                return;
            }
            break;
        default: break;
    }
    unknown_ += "<escape>[" + parameters + command;
}

void Screen::put(std::string_view character, std::size_t width) {
    if (width == 0) {
        if (column_ > 0) rows_[row_][column_ - 1].character += character;
        return;
    }
    if (wrapsNext_ || column_ + width > columns_) {
        column_ = 0;
        lineFeed();
    }
    wrapsNext_ = false;
    Row& row = rows_[row_];
    row[column_] = {std::string(character), attributes_};
    if (width == 2) row[column_ + 1] = {"", attributes_};
    column_ += width;
    if (column_ < columns_) return;
    column_ = columns_ - 1;
    wrapsNext_ = true;
}

void Screen::lineFeed() {
    wrapsNext_ = false;
    if (row_ + 1 < rows_.size()) {
        ++row_;
        return;
    }
    rows_.erase(rows_.begin());
    rows_.emplace_back(columns_);
}

void Screen::erase(Row& row, std::size_t from, std::size_t to) {
    std::fill(row.begin() + static_cast<std::ptrdiff_t>(from),
              row.begin() + static_cast<std::ptrdiff_t>(std::min(to, columns_)), Cell());
}

std::string Screen::rendered(bool isMarked) const {
    std::string text;
    std::size_t end = 0;  // of the last row that is not empty
    for (const Row& row : rows_) {
        std::size_t length = row.size();
        while (length > 0 && row[length - 1].isBlank()) --length;
        std::string attributes;
        for (std::size_t at = 0; at < length; ++at) {
            if (isMarked && row[at].attributes != attributes) {
                if (!attributes.empty()) text += "<>";
                attributes = row[at].attributes;
                if (!attributes.empty()) text += "<" + attributes + ">";
            }
            text += row[at].character;
        }
        if (!attributes.empty()) text += "<>";
        text += '\n';
        if (length > 0) end = text.size();
    }
    return text.substr(0, end);
}

}  // namespace pellum::test
