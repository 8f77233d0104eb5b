// Characters and their widths.
#include "driver/errors/utf8.h"

#include <gtest/gtest.h>

namespace pellum {

namespace {

// The codes in hexadecimal, with "!" before raw bytes.
std::string codesOf(std::string_view text) {
    std::string codes;
    while (!text.empty()) {
        const Utf8Character character = firstCharacter(text);
        char buffer[16];
        const bool isRaw = character.code >= rawByte && character.code < rawByte + 0x100;
        snprintf(buffer, sizeof buffer, "%s%X ", isRaw ? "!" : "",
                 static_cast<unsigned>(isRaw ? character.code - rawByte : character.code));
        codes += buffer;
        std::string again;
        appendUtf8(again, character.code);
        EXPECT_EQ(again, text.substr(0, character.length));
        text.remove_prefix(character.length);
    }
    return codes;
}

TEST(Utf8, IsTakenApartAndPutTogether) {
    EXPECT_EQ(codesOf("a\n\x7F"), "61 A 7F ");
    EXPECT_EQ(codesOf("\xC2\x80\xDF\xBF"), "80 7FF ");
    EXPECT_EQ(codesOf("\xE0\xA0\x80\xEF\xBF\xBF"), "800 FFFF ");
    EXPECT_EQ(codesOf("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), "10000 10FFFF ");
    EXPECT_EQ(codesOf(std::string_view("\0", 1)), "0 ");
}

TEST(Utf8, WhatIsNoneStaysBytes) {
    EXPECT_EQ(codesOf("\x80\xFF"), "!80 !FF ");
    EXPECT_EQ(codesOf("\xC3"), "!C3 ");
    EXPECT_EQ(codesOf("\xC3(\xE2\x82"), "!C3 28 !E2 !82 ");
    EXPECT_EQ(codesOf("\xC0\x80"), "!C0 !80 ");                  // too long for what it says
    EXPECT_EQ(codesOf("\xE0\x80\x80"), "!E0 !80 !80 ");          // likewise
    EXPECT_EQ(codesOf("\xED\xA0\x80"), "!ED !A0 !80 ");          // half a pair
    EXPECT_EQ(codesOf("\xF4\x90\x80\x80"), "!F4 !90 !80 !80 ");  // beyond the last one
}

TEST(Utf8, HasWidths) {
    EXPECT_EQ(columnsOf(U'a'), 1U);
    EXPECT_EQ(columnsOf(U'\u00E9'), 1U);
    EXPECT_EQ(columnsOf(U'\u0301'), 0U);
    EXPECT_EQ(columnsOf(U'\u6F22'), 2U);
    EXPECT_EQ(columnsOf(U'\U0001F600'), 2U);
    EXPECT_EQ(columnsOf(U'\n'), 0U);
    EXPECT_EQ(columnsOf(rawByte + 0xFF), 1U);
}

}  // namespace

}  // namespace pellum
