#include "driver/pragmas.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace pellum::test {

namespace {

using namespace std::string_view_literals;

std::string list(const std::vector<Pragma>& pragmas) {
    std::string out;
    for (const Pragma& pragma : pragmas) {
        if (!out.empty()) out += ", ";
        out += std::to_string(pragma.line) + " [" + pragma.name + "] [" + pragma.value + "]";
    }
    return out;
}

// What a header says: line, name and value of each pragma.
struct HeaderRow {
    std::string_view source, pragmas;
};

template <std::size_t count>
void expectHeaders(const HeaderRow (&rows)[count]) {
    for (const HeaderRow& row : rows) {
        SCOPED_TRACE(row.source);
        EXPECT_EQ(list(scanPragmas(row.source).pragmas), row.pragmas);
    }
}

TEST(ScanPragmas, NameAndValue) {
    expectHeaders({
        {"#pragma version 6", "1 [version] [6]"},
        {"#pragma version 6\n", "1 [version] [6]"},
        {"#pragma foo bar baz  qux", "1 [foo] [bar baz  qux]"},
        {"#pragma foo", "1 [foo] []"},
        {"#pragma  \tfoo \t bar \t ", "1 [foo] [bar]"},
        {"#pragma\tversion\t7", "1 [version] [7]"},
        {"#pragma\t\tversion\t\t7", "1 [version] [7]"},
        {"#pragma version=7", "1 [version=7] []"},
        {"#pragma version 7 # or later", "1 [version] [7 # or later]"},
    });
}

TEST(ScanPragmas, ThePragmaMayBeEmpty) {
    expectHeaders({
        {"#pragma", "1 [] []"},
        {"#pragma\n", "1 [] []"},
        {"#pragma \t ", "1 [] []"},
        {"#pragma\r\n", "1 [] []"},
        {"#pragma\v", "1 [\v] []"},
    });
}

TEST(ScanPragmas, WhatBeginsAPragmaLine) {
    expectHeaders({
        {" \t\v\f\r#pragma a", "1 [a] []"},
        {"#pragma\va b", "1 [\va] [b]"},
        {"#pragma\fa b", "1 [\fa] [b]"},
        {"#pragma\ra b", "1 [a] [b]"},
        {"#pragmaversion 7", ""},
        {"#pragma_version 7", ""},
        {"#pragma: version 7", ""},
        {"#pragma\xA0 version 7", ""},
        {"#pragma\0version 7"sv, ""},
        {"#Pragma version 7", ""},
        {"#PRAGMA version 7", ""},
        {"# pragma version 7", ""},
        {"##pragma version 7", ""},
        {"#prag", ""},
        {"#", ""},
    });
}

TEST(ScanPragmas, CarriageReturnsAreTrimmed) {
    expectHeaders({
        {"#pragma version 7\r\n#pragma foo\r\n", "1 [version] [7], 2 [foo] []"},
        {"#pragma foo bar\r\r\n", "1 [foo] [bar]"},
        {"#pragma foo b\rar", "1 [foo] [b\rar]"},
        {"\r\n#pragma foo", "2 [foo] []"},
    });
}

TEST(ScanPragmas, OtherBlanksStayInNameAndValue) {
    expectHeaders({
        {"#pragma version\v7", "1 [version\v7] []"},
        {"#pragma version 7\v", "1 [version] [7\v]"},
        {"#pragma version 7\f", "1 [version] [7\f]"},
        {"#pragma version\r7", "1 [version\r7] []"},
    });
}

TEST(ScanPragmas, RemarksAndBlankLinesDoNotEndTheHeader) {
    expectHeaders({
        {"\n\n# a remark\n   \n#pragma a\n\v\f\n#pragma b\n", "5 [a] [], 7 [b] []"},
        {"#pragma a\n#pragmaless\n#pragma b", "1 [a] [], 3 [b] []"},
    });
}

TEST(ScanPragmas, TheFirstLineOfCodeEndsTheHeader) {
    expectHeaders({
        {"#pragma a\nlet x = 1\n#pragma b", "1 [a] []"},
        {"let x = 1 #pragma a", ""},
        {"\0\n#pragma a"sv, ""},
        {"\xA0\n#pragma a", ""},
        {"\"\n#pragma a\n\"", ""},
        {"", ""},
        {"\n", ""},
    });
}

TEST(ScanPragmas, OneByteOrderMarkIsSkipped) {
    expectHeaders({
        {"\xEF\xBB\xBF#pragma a", "1 [a] []"},
        {"\xEF\xBB\xBF\n#pragma a", "2 [a] []"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF#pragma a", ""},
        {"\n\xEF\xBB\xBF#pragma a", ""},
        {"\xEF\xBB#pragma a", ""},
        {"\xEF\xBB\xBF", ""},
    });
}

TEST(ScanPragmas, UnknownOnesAreAllButTheVersion) {
    const PragmaInfo info =
        scanPragmas("#pragma a 1\n#pragma version 5\n#pragma Version 7\n#pragma");
    EXPECT_EQ(list(info.pragmas), "1 [a] [1], 2 [version] [5], 3 [Version] [7], 4 [] []");
    EXPECT_EQ(list(info.unknown), "1 [a] [1], 3 [Version] [7], 4 [] []");
    EXPECT_EQ(info.requiredVersion, "5");
}

TEST(ScanPragmas, TheLastVersionCounts) {
    EXPECT_EQ(scanPragmas("").requiredVersion, "");
    EXPECT_EQ(scanPragmas("#pragma foo 7").requiredVersion, "");
    EXPECT_EQ(scanPragmas("#pragma version").requiredVersion, "");
    EXPECT_EQ(scanPragmas("#pragma version 7\n#pragma version 5").requiredVersion, "5");
    EXPECT_EQ(scanPragmas("#pragma version 5\n#pragma version 7").requiredVersion, "7");
    EXPECT_EQ(scanPragmas("#pragma version 7\n#pragma version").requiredVersion, "");
    EXPECT_EQ(scanPragmas("#pragma version 5\nx\n#pragma version 7").requiredVersion, "5");
}

struct VersionRow {
    std::string_view current, required;
    bool isEnough;
};

template <std::size_t count>
void expectVersions(const VersionRow (&rows)[count]) {
    for (const VersionRow& row : rows) {
        SCOPED_TRACE(std::string(row.current) + " for " + std::string(row.required));
        EXPECT_EQ(versionAtLeast(row.current, row.required), row.isEnough);
    }
}

TEST(VersionAtLeast, ComparesComponentByComponent) {
    expectVersions({
        {"6", "5", true},
        {"6", "6", true},
        {"6", "7", false},
        {"6", "60", false},
        {"10", "9", true},
        {"6.1.2", "6.1.2", true},
        {"6.1.2", "6.1.3", false},
        {"6.1.2", "6.1.1", true},
        {"6.2", "6.10", false},
        {"6.10", "6.2", true},
    });
}

TEST(VersionAtLeast, TheFirstDifferenceDecides) {
    expectVersions({
        {"6", "5.9.9", true},
        {"6.0.9", "6.1.0", false},
        {"6.1.0", "6.0.9", true},
        {"7.0", "6.9.9.9", true},
    });
}

TEST(VersionAtLeast, MissingComponentsOfTheCurrentVersionAreZero) {
    expectVersions({
        {"6", "6.0", true},
        {"6", "6.0.0.0", true},
        {"6", "6.0.1", false},
        {"6", "6.1", false},
        {"6", "6.-1", true},
        {"", "0", true},
        {"", "1", false},
    });
}

TEST(VersionAtLeast, FurtherComponentsOfTheCurrentVersionAreNotLookedAt) {
    expectVersions({
        {"6.1", "6", true},
        {"6.-1", "6", true},
        {"6.0.-1", "6.0", true},
        {"5.9", "6", false},
    });
}

TEST(VersionAtLeast, ComponentsAreReadAsFarAsTheyAreIntegers) {
    expectVersions({
        {"6", "abc", true},   {"6", "", true},      {"6", "6abc", true}, {"6", "7abc", false},
        {"6", "06", true},    {"6", "007", false},  {"6", "0x10", true}, {"6", "1e9", true},
        {"6", "6 9", true},   {"6", "7 9", false},  {"6", "6.x", true},  {"6", "6.x.1", false},
        {"6", ".9", true},    {"6", "6..1", false}, {"6", "6.", true},   {"6", "6.9.", false},
        {"6", "\"7\"", true}, {"6", "v7", true},    {"6", "6,9", true},
    });
}

TEST(VersionAtLeast, ComponentsMayHaveBlanksAndASignBeforeThem) {
    expectVersions({
        {"6", " 7", false},
        {"6", " \t\n\v\f\r7", false},
        {"6", "+7", false},
        {"6", " +6", true},
        {"6", "-7", true},
        {"6", "6. 1", false},
        {"6", "6.\v1", false},
        {"6", "6.+1", false},
        {"6", "+ 7", true},
        {"6", "+-7", true},
        {"6", "++7", true},
        {"-7", "-8", true},
        {"-8", "-7", false},
        {"6", "\0007"sv, true},
    });
}

TEST(VersionAtLeast, ComponentsTooLargeStayLarge) {
    expectVersions({
        {"6", "2147483647", false},
        {"6", "2147483648", false},
        {"6", "4294967296", false},
        {"6", "4294967302", false},
        {"6", "18446744073709551616", false},
        {"6", "18446744073709551621", false},
        {"6", "99999999999999999999999999999999999999", false},
        {"6", "6.99999999999999999999999999999999999999", false},
        {"6", "-2147483649", true},
        {"6", "-4294967289", true},
        {"6", "-99999999999999999999999999999999999999", true},
        {"6", "00000000000000000000000000000000000006", true},
        {"99999999999999999999", "6", true},
        {"99999999999999999999", "99999999999999999999", true},
    });
}

struct Checked {
    bool runs;
    std::string output, errors;
};

Checked check(std::string_view source, std::string_view fileName) {
    std::istringstream in;
    std::ostringstream out, err;
    Session session(in, out, err);
    const bool runs = checkPragmas(scanPragmas(source), fileName, session);
    return {runs, out.str(), err.str()};
}

TEST(CheckPragmas, SaysNothingWhereAllIsWell) {
    for (const char* source : {"", "#pragma version 6", "#pragma version", "#pragma version abc"}) {
        SCOPED_TRACE(source);
        const Checked checked = check(source, "a.pellum");
        EXPECT_TRUE(checked.runs);
        EXPECT_EQ(checked.output, "");
        EXPECT_EQ(checked.errors, "");
    }
}

TEST(CheckPragmas, WarnsOfUnknownPragmasInOrder) {
    const Checked checked = check("# a remark\n#pragma foo bar\n#pragma\n", "some/a b.plm");
    EXPECT_TRUE(checked.runs);
    EXPECT_EQ(checked.output, "");
    EXPECT_EQ(checked.errors,
              "pellum: warning: unknown pragma 'foo' at some/a b.plm:2\n"
              "pellum: warning: unknown pragma '' at some/a b.plm:3\n");
}

TEST(CheckPragmas, RefusesANewerVersion) {
    const Checked checked = check("#pragma version 6.0.1", "a.pellum");
    EXPECT_FALSE(checked.runs);
    EXPECT_EQ(checked.output, "");
    EXPECT_EQ(checked.errors, "pellum: a.pellum requires Pellum >= 6.0.1 (this is 6)\n");
}

TEST(CheckPragmas, WarnsBeforeItRefuses) {
    const Checked checked = check("#pragma version 7\n#pragma foo", "a.pellum");
    EXPECT_FALSE(checked.runs);
    EXPECT_EQ(checked.errors,
              "pellum: warning: unknown pragma 'foo' at a.pellum:2\n"
              "pellum: a.pellum requires Pellum >= 7 (this is 6)\n");
}

}  // namespace

}  // namespace pellum::test
