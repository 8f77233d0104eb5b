// launch REPORT COUNT PROGRAM ARGUMENT...
//
// Runs a program COUNT times, one run after another, and writes one line to the file descriptor
// REPORT: its CPU time in microseconds, summed over the runs, the largest peak of its memory in
// kilobytes, and 1 if a run failed, else 0. The system counts the memory of whoever starts a
// program as the program's own until the program begins, so it must be started by something this
// small.
#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

long microseconds(const timeval& time) { return time.tv_sec * 1000000L + time.tv_usec; }

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    const int report = std::atoi(argv[1]);
    const int count = std::atoi(argv[2]);
    long cpu = 0;
    long peak = 0;
    bool hasFailed = false;
    for (int run = 0; run < count; ++run) {
        const pid_t child = fork();
        if (child < 0) return 1;
        if (child == 0) {
            close(report);
            execvp(argv[3], argv + 3);
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) != child) return 1;
        cpu += microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
        if (usage.ru_maxrss > peak) peak = usage.ru_maxrss;
        if (status != 0) hasFailed = true;
    }
    dprintf(report, "%ld %ld %d\n", cpu, peak, hasFailed ? 1 : 0);
    return 0;
}
