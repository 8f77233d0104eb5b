// What somebody sees at a terminal: turns the bytes that a program sends there into rows of
// characters, as the terminals of the family of xterm do. Knows what line editors and diagnostics
// use, and refuses the rest, so that no test passes by accident.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

class Screen {
public:
    Screen(std::size_t columns, std::size_t rows);

    // Shows what comes next. A sequence may be cut in two anywhere.
    void show(std::string_view bytes);

    // The rows without blanks at their ends and without empty rows at the end, each with a newline.
    std::string text() const { return rendered(false); }
    // The same, with "<1;31>" where these attributes begin and "<>" where they end.
    std::string markedText() const { return rendered(true); }

    bool marksPastes() const { return marksPastes_; }
    // What the program has sent and this does not know; empty if there is nothing of the kind.
    const std::string& unknown() const { return unknown_; }

private:
    struct Cell {
        std::string character = " ";  // empty: the right half of its neighbour
        std::string attributes = {};

        bool isBlank() const { return character == " " && attributes.empty(); }
    };
    using Row = std::vector<Cell>;

    std::string rendered(bool isMarked) const;
    std::size_t takeControl(std::string_view bytes);
    std::size_t takeEscape(std::string_view bytes);
    void obey(char command, const std::string& parameters);
    void put(std::string_view character, std::size_t width);
    void lineFeed();
    void erase(Row& row, std::size_t from, std::size_t to);

    std::size_t columns_;
    std::vector<Row> rows_;
    std::size_t row_ = 0, column_ = 0;
    bool wrapsNext_ = false;  // the last column is filled, and the next character begins a row
    std::string attributes_;
    bool marksPastes_ = false;
    std::string cut_;  // the beginning of something whose end has not come yet
    std::string unknown_;
};

}  // namespace pellum::test
