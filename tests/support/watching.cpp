#include "support/watching.h"

#include "support/files.h"

#include <unistd.h>

#include <string>

namespace pellum::test {

namespace {

constexpr int steps = 6000;
constexpr useconds_t stepLength = 10'000;

// Field `number` of what the system says about the process, counted from its state as number 0.
std::string statField(pid_t child, int number) {
    const std::string stat = readFile("/proc/" + std::to_string(child) + "/stat");
    std::size_t at = stat.rfind(')') + 2;  // behind the name, which may hold anything
    for (; number > 0; --number) at = stat.find(' ', at) + 1;
    return stat.substr(at, stat.find(' ', at) - at);
}

}  // namespace

bool waitForWork(pid_t child) {
    constexpr int userTime = 11;
    const long wanted = sysconf(_SC_CLK_TCK) / 3;
    for (int step = 0; step < steps; ++step) {
        if (std::stol(statField(child, userTime)) >= wanted) return true;
        usleep(stepLength);
    }
    return false;
}

bool waitForSleep(pid_t child) {
    int asleep = 0;
    for (int step = 0; step < steps; ++step) {
        asleep = statField(child, 0) == "S" ? asleep + 1 : 0;
        if (asleep == 30) return true;
        usleep(stepLength);
    }
    return false;
}

}  // namespace pellum::test
