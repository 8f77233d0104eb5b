#include "embed/home.h"

namespace pellum::embed {

struct Error::Details {
    Failure failure;
    std::string message;
    std::string diagnostic;
    std::string source;
    std::uint32_t line;
    std::uint32_t column;
    Value thrown;
};

// Made while there is memory, by the first engine.
Error Inside::outOfMemory() noexcept {
    static const auto details = std::make_shared<const Error::Details>(Error::Details{
        Failure::OutOfMemory, "out of memory", "pellum: out of memory", {}, 0, 0, {}});
    return Error(details);
}

Error Inside::errorOf(Failure failure, std::string message, std::string diagnostic,
                      std::string source, std::uint32_t line, std::uint32_t column,
                      embed::Value thrown) {
    return Error(std::make_shared<const Error::Details>(
        Error::Details{failure, std::move(message), std::move(diagnostic), std::move(source), line,
                       column, std::move(thrown)}));
}

void throwMisuse(const std::string& message) {
    std::string diagnostic = "pellum: " + message;
    throw Inside::errorOf(Failure::Misuse, message, std::move(diagnostic));
}

Error::Error(std::shared_ptr<const Details> details) noexcept : details_(std::move(details)) {}
Error::Error(const Value& thrown)
    : Error(Inside::errorOf(Failure::Thrown, thrown.text(), renderThrown(thrown.text()), {}, 0, 0,
                            thrown)) {}
Error::Error(const Error&) noexcept = default;
Error& Error::operator=(const Error&) noexcept = default;
Error::~Error() = default;

Failure Error::failure() const noexcept { return details_->failure; }
const char* Error::what() const noexcept { return details_->message.c_str(); }
const std::string& Error::source() const noexcept { return details_->source; }
std::uint32_t Error::line() const noexcept { return details_->line; }
std::uint32_t Error::column() const noexcept { return details_->column; }
const std::string& Error::diagnostic() const noexcept { return details_->diagnostic; }
const Value& Error::thrown() const noexcept { return details_->thrown; }

}  // namespace pellum::embed
