#include "driver/session.h"

#include "driver/run_main.h"
#include "value/format.h"

#include <new>
#include <ostream>

namespace pellum {

void Session::writeLine(std::string_view beginning, std::string_view separator,
                        std::string_view rest) {
    const auto writeNow = [&] { err_ << beginning << separator << rest << '\n' << std::flush; };
    try {
        console.flush();
    } catch (const OutputError&) {
        writeNow();
        throw;
    }
    writeNow();
}

void Session::complain(const std::exception& failure) {
    const bool isMemory = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr;
    complain(isMemory ? "out of memory" : failure.what());
}

void Session::diagnose(const PellumError& error, std::string_view source, std::string_view name) {
    diagnose(renderError(error, source, name, terminal_.diagnostics));
}

void Session::diagnose(const ThrownValue& thrown) {
    diagnose(renderThrown(toDisplayString(thrown.value), terminal_.diagnostics));
}

int Session::run(const std::function<int()>& work) {
    try {
        try {
            const int status = work();
            console.flush();
            return status;
        } catch (const std::exception& failure) {
            complain(failure);
        }
    } catch (const OutputError& failure) {
        if (failure.readerIsGone) return exitSuccess;
        err_ << program << ": cannot write to standard output\n" << std::flush;
    }
    return exitFailure;
}

}  // namespace pellum
