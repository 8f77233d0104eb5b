#include "support/surroundings.h"

#include "support/sanitizers.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace pellum::test {

namespace {

struct LimitName {
    std::string_view name;
    decltype(RLIMIT_STACK) resource;
};

constexpr LimitName limitNames[] = {
    {"stack", RLIMIT_STACK},  {"memory", RLIMIT_AS},     {"data", RLIMIT_DATA},
    {"files", RLIMIT_NOFILE}, {"written", RLIMIT_FSIZE}, {"seconds", RLIMIT_CPU},
};

rlim_t parseAmount(const std::string& text) {
    if (text == "unlimited") return RLIM_INFINITY;
    std::size_t length = 0;
    const rlim_t number = std::stoull(text, &length);
    const std::string unit = text.substr(length);
    if (unit == "K") return number << 10;
    if (unit == "M") return number << 20;
    if (unit.empty()) return number;
    throw std::runtime_error("no amount: " + text);
}

bool lead(int stream, const std::string& path) {
    if (path.empty()) return true;
    if (path == closedStream) return close(stream) == 0;
    const int file = open(path.c_str(), stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
    return file >= 0 && dup2(file, stream) >= 0 && close(file) == 0;
}

// The soft limit alone where the hard one may end a process by force.
bool setLimit(const Surroundings::Limit& limit) {
    rlimit both{};
    if (getrlimit(limit.resource, &both) != 0) return false;
    both.rlim_cur = std::min(limit.value, both.rlim_max);
    if (limit.resource != RLIMIT_CPU) both.rlim_max = both.rlim_cur;
    return setrlimit(limit.resource, &both) == 0;
}

}  // namespace

void Surroundings::addLimit(std::string_view text) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    for (const LimitName& known : limitNames) {
        if (known.name != text.substr(0, blank)) continue;
        limits.push_back({known.resource, parseAmount(std::string(text.substr(blank + 1)))});
        return;
    }
    throw std::runtime_error("unknown limit: " + std::string(text));
}

bool Surroundings::areUsual() const {
    return input.empty() && output.empty() && errors.empty() && limits.empty() && !environment;
}

bool Surroundings::enter() const {
    if (environment) {
        clearenv();
        for (const std::string& entry : *environment) putenv(const_cast<char*>(entry.c_str()));
    }
    return lead(STDIN_FILENO, input) && lead(STDOUT_FILENO, output) &&
           lead(STDERR_FILENO, errors) && std::all_of(limits.begin(), limits.end(), setLimit);
}

const char* Surroundings::whyImpossible() const {
    for (const std::string& path : {input, output, errors}) {
        if (path.starts_with("/dev/") && access(path.c_str(), F_OK) != 0) {
            return "there is no such device here";
        }
    }
    for (const Limit& limit : limits) {
        const bool isMemory = limit.resource == RLIMIT_AS || limit.resource == RLIMIT_DATA;
        if (isMemory && usesAddressSanitizer) return "the address sanitizer takes all addresses";
        if (limit.resource == RLIMIT_NOFILE && usesAddressSanitizer) {
            return "the sanitizers open pipes of their own";
        }
        rlimit both{};
        if (getrlimit(limit.resource, &both) == 0 && limit.value > both.rlim_max &&
            limit.value != RLIM_INFINITY) {
            return "the limits here are lower";
        }
    }
    return nullptr;
}

}  // namespace pellum::test
