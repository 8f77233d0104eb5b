#include "driver/session.h"

#include "value/format.h"

#include <ostream>

namespace pellum {

void Session::diagnose(std::string_view line) {
    const auto writeLine = [&] { err_ << line << '\n' << std::flush; };
    try {
        console.flush();
    } catch (const OutputError&) {
        writeLine();
        throw;
    }
    writeLine();
}

void Session::diagnose(const PellumError& error, std::string_view source, std::string_view name) {
    diagnose(renderError(error, source, name));
}

void Session::diagnose(const ThrownValue& thrown) {
    diagnose("Error: " + toDisplayString(thrown.value));
}

}  // namespace pellum
