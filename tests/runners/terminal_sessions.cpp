// Sessions at a terminal, each in a folder of its own in which the history is kept as well.
#include "runners/runners.h"

#include "support/files.h"
#include "support/pseudo_terminal.h"
#include "support/registration.h"
#include "support/terminal_session.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

using Step = TerminalSession::Step;

class Player {
public:
    Player(fs::path file, const TerminalSession& session)
        : file_(std::move(file)), session_(session) {
        for (const CommandCase::File& needed : session.files) {
            fs::create_directories((folder_.path() / needed.name).parent_path());
            writeFile(folder_.path() / needed.name, needed.contents);
        }
    }

    void play() {
        PseudoTerminal::Options options;
        options.arguments = session_.arguments;
        options.folder = folder_.path();
        // Where a name stands twice, the first counts.
        options.environment = session_.environment;
        options.environment.insert(options.environment.end(),
                                   {"TERM=xterm", "HOME=" + folder_.path().string()});
        PseudoTerminal terminal(options);
        if (options.arguments.empty()) {
            ASSERT_TRUE(terminal.waitForText("\n>>"));
        }
        for (const Step& step : session_.steps) {
            if (!playStep(step, terminal)) return;
        }
        EXPECT_EQ(terminal.screen().unknown(), "");
    }

private:
    // False where going on makes no sense.
    bool playStep(const Step& step, PseudoTerminal& terminal) {
        const Screen& screen = terminal.screen();
        switch (step.kind) {
            case Step::Kind::Type: terminal.type(bytesOfKeys(step.text)); return true;
            case Step::Kind::Paste: terminal.type(asPasted(step.text)); return true;
            case Step::Kind::MarkedPaste:
                EXPECT_TRUE(screen.marksPastes());
                terminal.type("\x1b[200~" + asPasted(step.text) + "\x1b[201~");
                return true;
            case Step::Kind::Screen: return expect(step, terminal, [&] { return screen.text(); });
            case Step::Kind::MarkedScreen:
                return expect(step, terminal, [&] { return screen.markedText(); });
            case Step::Kind::History: return expect(step, terminal, [&] { return history(); });
            case Step::Kind::Resize: {
                const Size size = parseSize(step.text);
                terminal.resize(size.columns, size.rows);
                return true;
            }
            case Step::Kind::Status: break;
        }
        const auto status = terminal.waitForEnd();
        if (status && std::to_string(*status) == step.text) {
            EXPECT_TRUE(terminal.isAsUsual()) << "the terminal is left in another mode";
            EXPECT_FALSE(screen.marksPastes());
            return true;
        }
        ADD_FAILURE_AT(file_.c_str(), static_cast<int>(step.line))
            << "the status is " << (status ? std::to_string(*status) : "still unknown")
            << "\non the screen:\n"
            << screen.text();
        return false;
    }

    template <typename Given>
    bool expect(const Step& step, PseudoTerminal& terminal, Given given) {
        const std::string wanted = withoutBlanksAtEnds(step.text);
        if (terminal.waitUntil([&] { return given() == wanted; })) return true;
        ADD_FAILURE_AT(file_.c_str(), static_cast<int>(step.line))
            << firstDifference("what is there", wanted, given()).value_or("") << "\nall of it:\n"
            << given();
        return false;
    }

    static std::string withoutBlanksAtEnds(std::string_view text) {
        std::string result;
        std::size_t end = 0;
        for (const std::string& line : splitLines(text)) {
            result += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
            if (result.size() > 1 && result[result.size() - 2] != '\n') end = result.size();
        }
        return result.substr(0, end);
    }

    // As terminals send it.
    static std::string asPasted(std::string text) {
        std::replace(text.begin(), text.end(), '\n', '\r');
        return text;
    }

    std::string history() const {
        const fs::path path = folder_.path() / ".local/state/pellum/history";
        return fs::exists(path) ? readFile(path) : std::string();
    }

    TemporaryFolder folder_;
    fs::path file_;
    const TerminalSession& session_;
};

void play(const fs::path& file) {
    const TerminalSession session = parseTerminalSession(readFile(file));
#if !defined(PELLUM_LIBEDIT)
    if (file.string().find("terminal/editing") != std::string::npos) {
        GTEST_SKIP() << "built without libedit";
    }
#endif
    Player(file, session).play();
}

}  // namespace

void registerTerminalSessions() {
    if (!mayRun("terminal/")) return;
    for (const fs::path& path : filesUnder("tests/terminal", ".session")) {
        addTest(suiteName(path.parent_path()), path.stem().string(), path, [=] { play(path); });
    }
}

}  // namespace pellum::test
