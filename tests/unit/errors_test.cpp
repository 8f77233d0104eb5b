#include "driver/errors/errors.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

std::string rendered(std::uint32_t line, std::uint32_t column, std::string_view source) {
    return renderError(RuntimeError("boom", line, column), source, "prog.plm");
}

TEST(Errors, EachKindHasItsWord) {
    EXPECT_EQ(LexError("m", 1, 2).kind, "SyntaxError (lexing)");
    EXPECT_EQ(ParseError("m", 1, 2).kind, "SyntaxError");
    EXPECT_EQ(CompileError("m", 1, 2).kind, "CompileError");
    EXPECT_EQ(RuntimeError("m", 1, 2).kind, "RuntimeError");
}

TEST(Errors, CarryMessageAndPlace) {
    const ParseError error("the message", 3, 7);
    EXPECT_EQ(error.message, "the message");
    EXPECT_EQ(error.what(), "the message"sv);
    EXPECT_EQ(error.line, 3u);
    EXPECT_EQ(error.column, 7u);

    const RuntimeError placeless("the message");
    EXPECT_EQ(placeless.line, 0u);
    EXPECT_EQ(placeless.column, 0u);

    const RuntimeError placed("the message", Position{4, 5});
    EXPECT_EQ(placed.line, 4u);
    EXPECT_EQ(placed.column, 5u);
}

TEST(Errors, AreOneFamilyApartFromThrownValues) {
    static_assert(std::is_base_of_v<std::runtime_error, PellumError>);
    static_assert(std::is_base_of_v<PellumError, LexError>);
    static_assert(std::is_base_of_v<PellumError, ParseError>);
    static_assert(std::is_base_of_v<PellumError, CompileError>);
    static_assert(std::is_base_of_v<PellumError, RuntimeError>);
    static_assert(!std::is_base_of_v<std::exception, ThrownValue>);
    try {
        throw LexError("caught", 1, 1);
    } catch (const PellumError& error) {
        EXPECT_EQ(error.message, "caught");
    }
}

TEST(RenderError, ShowsKindPlaceLineAndCaret) {
    EXPECT_EQ(rendered(3, 7, "one\ntwo\nlet x = y\nfour\n"),
              "RuntimeError: boom\n"
              "  --> prog.plm:3:7\n"
              "3 | let x = y\n"
              "          ^");
}

TEST(RenderError, WithoutALineIsOneLine) {
    EXPECT_EQ(rendered(0, 0, "one\ntwo\n"), "RuntimeError: boom");
    EXPECT_EQ(rendered(0, 5, "one\ntwo\n"), "RuntimeError: boom");
    EXPECT_EQ(rendered(0, 0, ""), "RuntimeError: boom");
}

TEST(RenderError, BeginsWithTheKind) {
    EXPECT_EQ(renderError(LexError("a", 0, 0), "", "x"), "SyntaxError (lexing): a");
    EXPECT_EQ(renderError(ParseError("b", 0, 0), "", "x"), "SyntaxError: b");
    EXPECT_EQ(renderError(CompileError("c", 0, 0), "", "x"), "CompileError: c");
    EXPECT_EQ(renderError(PellumError("OddError", "d", 0, 0), "", "x"), "OddError: d");
    EXPECT_EQ(renderError(RuntimeError("", 0, 0), "", "x"), "RuntimeError: ");
}

TEST(RenderError, NamesTheSourceAsItIsCalled) {
    EXPECT_EQ(renderError(ParseError("b", 1, 1), "", "<-c>"), "SyntaxError: b\n  --> <-c>:1:1");
    EXPECT_EQ(renderError(ParseError("b", 12, 345), "", "dir/a b.pellum"),
              "SyntaxError: b\n  --> dir/a b.pellum:12:345");
}

TEST(RenderError, WithoutASourceShowsNoExcerpt) {
    EXPECT_EQ(rendered(2, 4, ""), "RuntimeError: boom\n  --> prog.plm:2:4");
}

TEST(RenderError, AColumnOfZeroPutsTheCaretAtTheLinesBeginning) {
    EXPECT_EQ(rendered(1, 0, "text"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:0\n"
              "1 | text\n"
              "    ^");
    EXPECT_EQ(rendered(1, 1, "text"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:1\n"
              "1 | text\n"
              "    ^");
}

TEST(RenderError, TheGutterGrowsWithTheNumber) {
    const std::string nine = "\n\n\n\n\n\n\n\n\n";
    EXPECT_EQ(rendered(10, 1, nine + "tenth"),
              "RuntimeError: boom\n"
              "  --> prog.plm:10:1\n"
              "10 | tenth\n"
              "     ^");
    EXPECT_EQ(rendered(9, 1, nine + "tenth"),
              "RuntimeError: boom\n"
              "  --> prog.plm:9:1\n"
              "9 | \n"
              "    ^");
    std::string longSource(999, '\n');
    longSource += "thousandth\n";
    EXPECT_EQ(rendered(1000, 2, longSource),
              "RuntimeError: boom\n"
              "  --> prog.plm:1000:2\n"
              "1000 | thousandth\n"
              "        ^");
}

TEST(RenderError, ALastLineWithoutANewlineIsShown) {
    EXPECT_EQ(rendered(2, 2, "one\ntwo"),
              "RuntimeError: boom\n"
              "  --> prog.plm:2:2\n"
              "2 | two\n"
              "     ^");
}

TEST(RenderError, BehindALastNewlineStandsOneMoreEmptyLine) {
    EXPECT_EQ(rendered(2, 1, "one\n"),
              "RuntimeError: boom\n"
              "  --> prog.plm:2:1\n"
              "2 | \n"
              "    ^");
    EXPECT_EQ(rendered(2, 1, "\n"),
              "RuntimeError: boom\n"
              "  --> prog.plm:2:1\n"
              "2 | \n"
              "    ^");
}

TEST(RenderError, ALineBeyondTheEndHasNoExcerpt) {
    EXPECT_EQ(rendered(3, 1, "one\n"), "RuntimeError: boom\n  --> prog.plm:3:1");
    EXPECT_EQ(rendered(2, 1, "one"), "RuntimeError: boom\n  --> prog.plm:2:1");
    EXPECT_EQ(rendered(4'000'000'000, 1, "one"), "RuntimeError: boom\n  --> prog.plm:4000000000:1");
}

TEST(RenderError, CarriageReturnsAreDroppedAndShiftNothing) {
    EXPECT_EQ(rendered(2, 3, "one\r\ntwo\r\nthree\r\n"),
              "RuntimeError: boom\n"
              "  --> prog.plm:2:3\n"
              "2 | two\n"
              "      ^");
    EXPECT_EQ(rendered(1, 2, "a\rb\rc\r"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:2\n"
              "1 | abc\n"
              "     ^");
    EXPECT_EQ(rendered(1, 1, "\r"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:1\n"
              "1 | \n"
              "    ^");
    EXPECT_EQ(rendered(2, 1, "one\rstill one"), "RuntimeError: boom\n  --> prog.plm:2:1");
}

TEST(RenderError, TabsAndOtherBytesAreCopied) {
    EXPECT_EQ(rendered(1, 3, "\t\tx\ty"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:3\n"
              "1 | \t\tx\ty\n"
              "      ^");
    EXPECT_EQ(rendered(1, 5, "é\xFF\0z"sv),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:5\n"
              "1 | é\xFF\0z\n"
              "        ^"sv);
}

TEST(RenderError, TheCaretMayStandBehindTheLine) {
    EXPECT_EQ(rendered(1, 10, "ab\ncd"),
              "RuntimeError: boom\n"
              "  --> prog.plm:1:10\n"
              "1 | ab\n"
              "             ^");
}

TEST(RenderError, TheMessageIsCopiedAsItIs) {
    const RuntimeError error("first\nsecond\t\"third\"", 1, 1);
    EXPECT_EQ(renderError(error, "x", "n"),
              "RuntimeError: first\nsecond\t\"third\"\n"
              "  --> n:1:1\n"
              "1 | x\n"
              "    ^");
}

std::string onTerminal(std::uint32_t line, std::uint32_t column, std::string_view source) {
    return renderError(RuntimeError("boom", line, column), source, "prog.plm", Look::Terminal);
}

// The last line, without the blanks below "1 | ".
std::string caretLine(std::uint32_t column, std::string_view source) {
    const std::string text = onTerminal(1, column, source);
    return text.substr(text.rfind('\n') + 5);
}

TEST(RenderError, OnATerminalTheCaretStandsBelowWhatIsSeen) {
    EXPECT_EQ(caretLine(1, "abc"), "^");
    EXPECT_EQ(caretLine(3, "abc"), "  ^");
    EXPECT_EQ(caretLine(0, "abc"), "^");
    EXPECT_EQ(caretLine(6, "\ta\t\tb"), "\t \t\t ^");
    EXPECT_EQ(caretLine(4, "é=x"), "  ^");
    EXPECT_EQ(caretLine(4, "漢x"), "  ^");
    EXPECT_EQ(caretLine(3, "\xFF\xFEx"), "  ^");
    EXPECT_EQ(caretLine(6, "ab"), "     ^");
    EXPECT_EQ(caretLine(3,
                        "\xEF\xBB\xBF"
                        "a=x"),
              "  ^");
}

TEST(RenderError, OnATerminalNothingElseIsDifferent) {
    const std::string source = "first\n  second()\r\nthird";
    for (const std::uint32_t line : {0U, 1U, 2U, 3U, 4U}) {
        EXPECT_EQ(onTerminal(line, 3, source), rendered(line, 3, source));
    }
    EXPECT_EQ(onTerminal(1, 1, ""), rendered(1, 1, ""));
}

TEST(RenderError, ColoursMarkKindPlaceAndCaret) {
    const RuntimeError error("boom", 1, 2);
    EXPECT_EQ(renderError(error, "a\tb", "n", Look::Coloured),
              "\x1b[1;31mRuntimeError\x1b[0m: boom\n"
              "  --> \x1b[36mn:1:2\x1b[0m\n"
              "1 | a\tb\n"
              "     \x1b[1;31m^\x1b[0m");
    EXPECT_EQ(renderError(RuntimeError("boom"), "", "n", Look::Coloured),
              "\x1b[1;31mRuntimeError\x1b[0m: boom");
    EXPECT_EQ(renderThrown("a\nb", Look::Coloured), "\x1b[1;31mError\x1b[0m: a\nb");
    EXPECT_EQ(renderThrown("a\nb"), "Error: a\nb");
}

}  // namespace

}  // namespace pellum::test
