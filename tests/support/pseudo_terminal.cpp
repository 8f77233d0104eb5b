#include "support/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <system_error>

namespace pellum::test {

namespace {

constexpr std::chrono::seconds patience(60);

[[noreturn]] void failWithErrno(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int openMaster() {
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) failWithErrno("pty");
    return master;
}

}  // namespace

PseudoTerminal::PseudoTerminal(const Options& options)
    : master_(openMaster()), screen_(options.columns, options.rows) {
    const std::string name = ptsname(master_);
    std::vector<std::string> arguments = {options.program};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<std::string> environment = options.environment;
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    resize(options.columns, options.rows);

    child_ = fork();
    if (child_ < 0) failWithErrno("fork");
    if (child_ == 0) {
        // Whoever plays the tests in the background may ignore them.
        for (const int each : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) signal(each, SIG_DFL);
        setsid();
        const int terminal = open(name.c_str(), O_RDWR);
        if (terminal < 0 || ioctl(terminal, TIOCSCTTY, 0) != 0) _exit(126);
        for (const int stream : {0, 1, 2}) dup2(terminal, stream);
        if (!options.echoes) {
            termios modes{};
            tcgetattr(terminal, &modes);
            modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(terminal, TCSANOW, &modes);
        }
        for (int inherited = 3; inherited < 256; ++inherited) close(inherited);
        if (chdir(options.folder.c_str()) != 0) _exit(126);
        execve(argumentPointers[0], argumentPointers.data(), environmentPointers.data());
        _exit(127);
    }
    fcntl(master_, F_SETFL, O_NONBLOCK);
}

PseudoTerminal::~PseudoTerminal() {
    if (!hasEnded_) kill(child_, SIGKILL);
    close(master_);
    if (!hasEnded_) waitpid(child_, nullptr, 0);
}

bool PseudoTerminal::readSome(int milliseconds) {
    pollfd watched{master_, POLLIN, 0};
    if (poll(&watched, 1, milliseconds) <= 0) return false;
    std::array<char, 65536> buffer;
    const ssize_t count = read(master_, buffer.data(), buffer.size());
    if (count == 0 || (count < 0 && errno == EIO)) isHungUp_ = true;
    if (count <= 0) return false;
    screen_.show({buffer.data(), static_cast<std::size_t>(count)});
    return true;
}

void PseudoTerminal::type(std::string_view bytes) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!bytes.empty() && !isHungUp_ && std::chrono::steady_clock::now() < end) {
        const ssize_t count = write(master_, bytes.data(), bytes.size());
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
        // A terminal whose reader is slow takes no more until what it says has been read.
        readSome(count > 0 ? 0 : 10);
    }
}

void PseudoTerminal::resize(std::size_t columns, std::size_t rows) {
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    if (ioctl(master_, TIOCSWINSZ, &size) != 0) failWithErrno("size of a terminal");
}

bool PseudoTerminal::waitUntil(const std::function<bool()>& isThere) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!isThere()) {
        if (isHungUp_ || std::chrono::steady_clock::now() > end) return false;
        readSome(20);
    }
    return true;
}

bool PseudoTerminal::waitForText(std::string_view text) {
    return waitUntil([&] { return screen_.text().find(text) != std::string::npos; });
}

std::optional<int> PseudoTerminal::waitForEnd() {
    int status = 0;
    waitUntil([&] { return isHungUp_; });
    if (!isHungUp_ || waitpid(child_, &status, 0) != child_) return std::nullopt;
    hasEnded_ = true;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

bool PseudoTerminal::isAsUsual() const {
    termios now{};
    if (tcgetattr(master_, &now) != 0) failWithErrno("modes of a terminal");
    return (now.c_lflag & ICANON) != 0 && (now.c_lflag & ECHO) != 0 && (now.c_lflag & ISIG) != 0;
}

}  // namespace pellum::test
