// What the tests of the embedding interface share.
#pragma once

#include <pellum/pellum.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace pellum::test {

// The error that `work` ends with, if it does.
template <typename Work>
std::optional<embed::Error> errorOf(const Work& work) {
    try {
        work();
    } catch (const embed::Error& error) {
        return error;
    }
    return std::nullopt;
}

// The failure and the message, or "nothing".
template <typename Work>
std::string outcomeOf(const Work& work) {
    constexpr const char* names[] = {"",       "syntax",    "runtime",       "thrown", "steps",
                                     "memory", "interrupt", "out of memory", "misuse"};
    const std::optional<embed::Error> error = errorOf(work);
    if (!error) return "nothing";
    return std::string(names[static_cast<int>(error->failure())]) + ": " + error->what();
}

inline std::string outcomeOf(embed::Engine& engine, std::string_view source) {
    return outcomeOf([&] { engine.run(source); });
}

// What the source returns, as text.
inline std::string textOf(embed::Engine& engine, std::string_view source) {
    return engine.run(source).text();
}

}  // namespace pellum::test
