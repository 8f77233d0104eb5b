#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace pellum::test {

namespace {

[[noreturn]] void failWithErrno(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() { close(); }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    void close() {
        if (isOpen()) ::close(std::exchange(number_, -1));
    }

private:
    int number_;
};

struct Pipe {
    FileDescriptor readEnd, writeEnd;
};

Pipe makePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) failWithErrno("pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// Writing to a child that has stopped reading must be an error here, not the end of the tests.
void ignoreBrokenPipes() {
    static const bool done = [] { return signal(SIGPIPE, SIG_IGN) != SIG_ERR; }();
    if (!done) failWithErrno("signal");
}

// Appends what can be read from `stream` to `text`; closes it at its end.
void readSome(FileDescriptor& stream, std::string& text) {
    std::array<char, 65536> buffer;
    const ssize_t count = read(stream.number(), buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        stream.close();
    }
}

// Writes what fits of `rest`; closes the stream once nothing is left or nobody reads any more.
void writeSome(FileDescriptor& stream, std::string_view& rest) {
    const ssize_t count = write(stream.number(), rest.data(), rest.size());
    if (count >= 0) {
        rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR && errno != EAGAIN) {
        rest = {};
    }
    if (rest.empty()) stream.close();
}

pollfd watched(const FileDescriptor& stream, short events) { return {stream.number(), events, 0}; }

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) failWithErrno("waitpid");
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

Outcome Process::run() const {
    ignoreBrokenPipes();
    // Everything that allocates is done before the fork.
    std::vector<char*> argumentPointers;
    argumentPointers.push_back(const_cast<char*>(executable.c_str()));
    for (const std::string& argument : arguments) {
        argumentPointers.push_back(const_cast<char*>(argument.c_str()));
    }
    argumentPointers.push_back(nullptr);
    Pipe in = makePipe(), out = makePipe(), errors = makePipe();
    FileDescriptor file;
    if (!outputFile.empty()) {
        file = FileDescriptor(open(outputFile.c_str(), O_WRONLY | O_CLOEXEC));
        if (!file.isOpen()) failWithErrno("open");
    }

    if (!readsOutput) out.readEnd.close();

    const pid_t child = fork();
    if (child < 0) failWithErrno("fork");
    if (child == 0) {
        // Whoever plays the tests in the background may ignore the others.
        for (const int each : {SIGPIPE, SIGINT, SIGTERM, SIGHUP}) signal(each, SIG_DFL);
        const int output = file.isOpen() ? file.number() : out.writeEnd.number();
        dup2(in.readEnd.number(), STDIN_FILENO);
        dup2(output, STDOUT_FILENO);
        dup2(mergesErrors ? output : errors.writeEnd.number(), STDERR_FILENO);
        // Whatever our own caller has left open must not count against a limit on files.
        for (int inherited = STDERR_FILENO + 1; inherited < 256; ++inherited) {
            fcntl(inherited, F_SETFD, FD_CLOEXEC);
        }
        if (chdir(folder.c_str()) != 0 || (prepare && !prepare())) _exit(126);
        execv(executable.c_str(), argumentPointers.data());
        _exit(127);
    }

    in.readEnd.close();
    out.writeEnd.close();
    errors.writeEnd.close();
    // A pipe that is full must not stop us from reading what the child has to say meanwhile.
    fcntl(in.writeEnd.number(), F_SETFL, O_NONBLOCK);
    if (started) started(child);
    Outcome outcome;
    std::string_view rest = input;
    if (rest.empty()) in.writeEnd.close();
    while (in.writeEnd.isOpen() || out.readEnd.isOpen() || errors.readEnd.isOpen()) {
        // A closed stream has the number -1, which poll passes over.
        std::array<pollfd, 3> streams = {watched(in.writeEnd, POLLOUT),
                                         watched(out.readEnd, POLLIN),
                                         watched(errors.readEnd, POLLIN)};
        if (poll(streams.data(), streams.size(), -1) < 0 && errno != EINTR) failWithErrno("poll");
        if (streams[0].revents) writeSome(in.writeEnd, rest);
        if (streams[1].revents) readSome(out.readEnd, outcome.output);
        if (readsOnce && !outcome.output.empty()) out.readEnd.close();
        if (streams[2].revents) readSome(errors.readEnd, outcome.errors);
        if (watch && (streams[1].revents || streams[2].revents)) watch(child, outcome);
    }
    outcome.status = waitFor(child);
    return outcome;
}

Outcome runCommand(std::vector<std::string> words) {
    Process process;
    process.executable = "/usr/bin/env";
    process.arguments = std::move(words);
    return process.run();
}

}  // namespace pellum::test
