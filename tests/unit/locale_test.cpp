// Numbers and letters are the same wherever the program runs, and whatever a program that embeds it
// has chosen for itself.
#include "support/files.h"
#include "support/playing.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <string>

namespace pellum::test {

namespace {

void expectTheUsual() {
    const std::string program =
        "print(1234567.5, 1234567, num(\"2.5\"), num(\" 1234.5e3\"), 1.5 + 0.25)\n"
        "print(split(\"1,5\", \",\"), hex(1234567), round(1234.5678, 2), \"${1234567}\")\n"
        "print(upper(\"ai\\n\"), lower(\"AI\"), split(\"a b\"), trim(\" a \"), "
        "capitalize(\"ibis\"))\n"
        "print([1][1234567])";
    for (const Engine engine : bothEngines) {
        const Outcome outcome = playInProcess(onEngine(engine, {"-c", program}), "");
        EXPECT_EQ(outcome.output,
                  "1234567.5 1234567 2.5 1234500.0 1.75\n"
                  "[\"1\", \"5\"] 0x12d687 1234.57 1234567\n"
                  "AI\n ai [\"a\", \"b\"] a Ibis\n");
        EXPECT_NE(outcome.errors.find("list index 1234567 out of range"), std::string::npos);
    }
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path());
    writeFile("program", "for i = 1, 1000 do let x = i end");
    EXPECT_EQ(playInProcess({"--bench", "program"}, "").output.find(','), std::string::npos);
}

TEST(Locale, OfTheHostMeansNothing) {
    const char* chosen = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "tr_TR.UTF-8", "de_DE"}) {
        if (!chosen) chosen = std::setlocale(LC_ALL, name);
    }
    if (!chosen) GTEST_SKIP() << "this machine has no locale that writes numbers with a comma";
    expectTheUsual();
    std::setlocale(LC_ALL, "C");
}

TEST(Locale, OfTheStreamsMeansNothing) {
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
    expectTheUsual();
    std::locale::global(before);
}

}  // namespace

}  // namespace pellum::test
