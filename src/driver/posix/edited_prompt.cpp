#include "driver/posix/edited_prompt.h"

#include "builtins/console.h"
#include "driver/errors/utf8.h"
#include "driver/posix/history.h"
#include "driver/posix/libedit.h"
#include "driver/plain_prompt.h"
#include "driver/posix/terminal_mode.h"
#include "driver/terminal_output.h"
#include "value/interrupt.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>
#include <utility>

#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace pellum {

namespace {

// Keys that stand for what comes as a signal, or is no key at all.
constexpr wchar_t keyOfInterrupt = L'C' - L'@';
constexpr wchar_t keyOfRedraw = L'^' - L'@';
constexpr wchar_t keyOfPaste = L'_' - L'@';

constexpr std::string_view pasteBegins = "\x1b[200~";
constexpr std::string_view pasteEnds = "\x1b[201~";

// Whether the text, which is not empty, may be the beginning of something that belongs together.
bool isPiece(std::string_view text) {
    return text.size() < lengthFromFirstByte(text.front()) ||
           (text.size() < pasteBegins.size() && pasteBegins.starts_with(text));
}

static_assert(sizeof(wchar_t) == sizeof(char32_t));

std::wstring widened(std::string_view text) {
    std::wstring wide;
    while (!text.empty()) {
        const Utf8Character character = firstCharacter(text);
        wide += static_cast<wchar_t>(character.code);
        text.remove_prefix(character.length);
    }
    return wide;
}

std::string narrowed(std::wstring_view wide) {
    std::string text;
    for (const wchar_t c : wide) appendUtf8(text, static_cast<char32_t>(c));
    return text;
}

// While an object lives, this thread's characters are those of UTF-8, so that libedit can show all
// of them. The numbers and messages of the locale stay what they are.
class Utf8Locale {
public:
    Utf8Locale() noexcept : before_(uselocale(utf8())) {}
    ~Utf8Locale() { uselocale(before_); }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    static locale_t utf8() noexcept {
        static const locale_t found = [] {
            for (const char* name : {"C.UTF-8", "en_US.UTF-8", ""}) {
                const locale_t usable = newlocale(LC_CTYPE_MASK, name, locale_t{});
                if (usable) return usable;
            }
            return locale_t{};
        }();
        return found;
    }

    locale_t before_;
};

std::size_t widthOfTerminal() noexcept {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// As `ls` does: sorted down the columns.
std::string inColumns(const std::vector<std::string>& words) {
    constexpr std::size_t gap = 2;
    std::size_t widest = 0;
    for (const std::string& word : words) widest = std::max(widest, word.size());
    const std::size_t columns = std::max<std::size_t>(1, widthOfTerminal() / (widest + gap));
    const std::size_t rows = (words.size() + columns - 1) / columns;
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        std::string line;
        for (std::size_t at = row; at < words.size(); at += rows) {
            line.resize((at / rows) * (widest + gap), ' ');
            line += words[at];
        }
        text += line + "\n";
    }
    return text;
}

// A text with the newlines of Pellum and without what would move the cursor.
std::string withoutControls(std::string_view text) {
    std::string clean;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\r') {
            if (!text.substr(at + 1).starts_with('\n')) clean += '\n';
        } else if (static_cast<unsigned char>(text[at]) >= 0x20 || text[at] == '\n' ||
                   text[at] == '\t') {
            clean += text[at];
        }
    }
    return clean;
}

class EditedPrompt final : public PromptReader {
public:
    explicit EditedPrompt(TerminalInput& input) : input_(input), plain_(input) {}

    std::optional<std::string> readLine(std::string_view prompt) override;
    std::optional<std::string> readInput(std::string_view prompt) override;
    void remember(std::string_view input) override;
    void completeWith(Completer completer) override { completer_ = std::move(completer); }
    void endInterruptedLine() override {
        if (quiet_) writeToTerminal("^C");
        plain_.endInterruptedLine();
    }

private:
    enum class Purpose { Input, Answer };
    enum class Result { Line, End, Interrupt };
    using Event = TerminalInput::Event;

    static EditedPrompt& of(EditLine* editor);
    static wchar_t* showPrompt(EditLine* editor) { return of(editor).prompt_.data(); }
    // Called by libedit, through which no exception may pass: it waits until the line has ended.
    static int nextCharacter(EditLine* editor, wchar_t* character) {
        EditedPrompt& self = of(editor);
        try {
            return self.nextCharacter(*character);
        } catch (...) {
            self.failure_ = std::current_exception();
            return -1;
        }
    }
    // A command of the editor that is one of the functions below.
    template <unsigned char (EditedPrompt::*function)()>
    static unsigned char command(EditLine* editor, wint_t) {
        EditedPrompt& self = of(editor);
        try {
            return (self.*function)();
        } catch (...) {
            self.failure_ = std::current_exception();
            return CC_EOF;
        }
    }

    bool start();
    void define(const wchar_t* name, unsigned char (*function)(EditLine*, wint_t));
    // The keys of vi's command mode are a set of their own.
    void bind(const wchar_t* key, const wchar_t* name, bool isForCommands = false);
    std::optional<std::string> edit(std::string_view prompt, Purpose purpose);
    int nextCharacter(wchar_t& character);
    void insert(const std::wstring& text);
    unsigned char complete();
    unsigned char paste();
    unsigned char interrupt();
    unsigned char interruptCommand();
    unsigned char redraw();

    TerminalInput& input_;
    PlainPrompt plain_;
    const Libedit* libedit_ = nullptr;
    bool hasTried_ = false;  // to start
    bool isReady_ = false;
    std::unique_ptr<QuietTerminal> quiet_;  // for the whole session of a prompt
    History history_{stateFolder()};
    Completer completer_;

    // Never given back, since libedit would drop what has been typed ahead for whoever comes next.
    static inline EditLine* editor_ = nullptr;
    static inline HistoryW* inputs_ = nullptr;   // what has been run, also in earlier sessions
    static inline HistoryW* answers_ = nullptr;  // what `input` has read

    // Of the line that is being edited.
    std::wstring prompt_;
    Purpose purpose_ = Purpose::Input;
    Result result_ = Result::Line;
    bool isPasted_ = false;  // what comes now, up to the mark of its end
    std::exception_ptr failure_;
};

EditedPrompt& EditedPrompt::of(EditLine* editor) {
    void* self = nullptr;
    loadLibedit()->el_wget(editor, EL_CLIENTDATA, &self);
    return *static_cast<EditedPrompt*>(self);
}

// REQUIRES: the terminal is quiet, since libedit will leave it as it is now after each line.
bool EditedPrompt::start() {
    if (hasTried_) return isReady_;
    hasTried_ = true;
    libedit_ = loadLibedit();
    FILE* const complaints = std::fopen("/dev/null", "we");
    if (!complaints) return false;
    const Utf8Locale locale;
    editor_ = libedit_->el_init("pellum", stdin, stdout, complaints);
    inputs_ = libedit_->history_winit();
    answers_ = libedit_->history_winit();
    if (!editor_ || !inputs_ || !answers_) return false;

    HistEventW event;
    for (HistoryW* history : {inputs_, answers_}) {
        libedit_->history_w(history, &event, H_SETSIZE, static_cast<int>(History::maxEntries));
        libedit_->history_w(history, &event, H_SETUNIQUE, 1);
    }
    libedit_->el_wset(editor_, EL_CLIENTDATA, this);
    libedit_->el_wset(editor_, EL_SIGNAL, 0);
    libedit_->el_wset(editor_, EL_PROMPT, &EditedPrompt::showPrompt);
    libedit_->el_wset(editor_, EL_GETCFN,
                      static_cast<int (*)(EditLine*, wchar_t*)>(&EditedPrompt::nextCharacter));
    libedit_->el_wset(editor_, EL_EDITOR, L"emacs");
    define(L"pellum-complete", command<&EditedPrompt::complete>);
    define(L"pellum-paste", command<&EditedPrompt::paste>);
    define(L"pellum-interrupt", command<&EditedPrompt::interrupt>);
    define(L"pellum-interrupt-command", command<&EditedPrompt::interruptCommand>);
    define(L"pellum-redraw", command<&EditedPrompt::redraw>);
    bind(L"^R", L"em-inc-search-prev");
    bind(L"\\e[3~", L"ed-delete-next-char");
    bind(L"\\e[1;5C", L"em-next-word");
    bind(L"\\e[1;5D", L"ed-prev-word");
    bind(L"\\e[1~", L"ed-move-to-beg");
    bind(L"\\e[4~", L"ed-move-to-end");
    libedit_->el_source(editor_, nullptr);
    // Behind the user's settings, since the keys of vi would take their place.
    bind(L"^I", L"pellum-complete");
    bind(L"^C", L"pellum-interrupt");
    bind(L"^C", L"pellum-interrupt-command", true);
    for (const bool isForCommands : {false, true}) {
        bind(L"^_", L"pellum-paste", isForCommands);
        bind(L"^^", L"pellum-redraw", isForCommands);
    }
    // Between two lines the terminal stays quiet, so that what arrives then is not shown twice.
    constexpr wchar_t const* end = nullptr;
    libedit_->el_wset(editor_, EL_SETTY, L"-x", L"-echo", L"-icanon", end);
    libedit_->el_wset(editor_, EL_SETTY, L"-d", L"-inlcr", end);
    return isReady_ = true;
}

void EditedPrompt::define(const wchar_t* name, unsigned char (*function)(EditLine*, wint_t)) {
    libedit_->el_wset(editor_, EL_ADDFN, name, L"pellum", function);
}

void EditedPrompt::bind(const wchar_t* key, const wchar_t* name, bool isForCommands) {
    constexpr wchar_t const* end = nullptr;
    if (isForCommands) {
        libedit_->el_wset(editor_, EL_BIND, L"-a", key, name, end);
    } else {
        libedit_->el_wset(editor_, EL_BIND, key, name, end);
    }
}

std::optional<std::string> EditedPrompt::readInput(std::string_view prompt) {
    if (!quiet_ && terminalEditsLines() && loadLibedit()) {
        quiet_ = std::make_unique<QuietTerminal>();
        if (!start()) {
            quiet_.reset();
        } else {
            const Utf8Locale locale;
            HistEventW event;
            for (const std::string& input : history_.load()) {
                libedit_->history_w(inputs_, &event, H_ENTER, widened(input).c_str());
            }
        }
    }
    if (!quiet_) return plain_.readInput(prompt);
    return edit(prompt, Purpose::Input);
}

std::optional<std::string> EditedPrompt::readLine(std::string_view prompt) {
    const bool hasControls = std::ranges::any_of(
        prompt, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
    if (quiet_ && hasControls) {
        // libedit would show them instead of obeying them.
        writeToTerminal(prompt);
        prompt = {};
    }
    if (quiet_) return edit(prompt, Purpose::Answer);
    if (hasControls || !terminalEditsLines() || !loadLibedit()) return plain_.readLine(prompt);
    const QuietTerminal quiet;
    if (!start()) return plain_.readLine(prompt);
    return edit(prompt, Purpose::Answer);
}

std::optional<std::string> EditedPrompt::edit(std::string_view prompt, Purpose purpose) {
    // All that has arrived, so that many lines at once need no editing one by one.
    Event event;
    do {
        event = input_.wait(0);
        if (event == Event::Interrupt) throw Interrupted();
    } while (event == Event::Byte);
    if (auto line = input_.takePlainLine()) {
        writeToTerminal(std::string(prompt) + *line + "\n");
        return line;
    }

    const Utf8Locale locale;
    prompt_ = widened(prompt);
    purpose_ = purpose;
    result_ = Result::Line;
    HistoryW* const history = purpose == Purpose::Input ? inputs_ : answers_;
    libedit_->el_wset(editor_, EL_HIST, libedit_->history_w, history);
    int length = 0;
    const wchar_t* typed = libedit_->el_wgets(editor_, &length);
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    if (result_ == Result::Interrupt) throw Interrupted();
    if (!typed || length <= 0) return std::nullopt;
    std::wstring_view text(typed, static_cast<std::size_t>(length));
    if (text.ends_with(L'\n')) text.remove_suffix(1);
    if (purpose == Purpose::Answer && !text.empty()) {
        HistEventW added;
        libedit_->history_w(history, &added, H_ENTER, std::wstring(text).c_str());
    }
    std::string line = narrowed(text);
    if (line.size() > maxLineLength) throw LineTooLong();
    return line;
}

void EditedPrompt::remember(std::string_view input) {
    if (!quiet_) return;
    const Utf8Locale locale;
    HistEventW event;
    libedit_->history_w(inputs_, &event, H_ENTER, widened(input).c_str());
    history_.add(input);
}

// What libedit reads from: 1 for a character, 0 at the end, -1 where there will be none.
int EditedPrompt::nextCharacter(wchar_t& character) {
    for (;;) {
        if (result_ == Result::Interrupt) return -1;
        const std::string_view waiting = input_.waiting();
        Event event = Event::Timeout;
        if (waiting.empty()) {
            event = input_.wait();
        } else if (isPiece(waiting)) {
            event = input_.wait(50);
        }
        switch (event) {
            case Event::Timeout: {
                if (waiting.starts_with(pasteBegins)) {
                    input_.take(pasteBegins.size());
                    isPasted_ = true;
                    character = keyOfPaste;
                    return 1;
                }
                const Utf8Character next = firstCharacter(waiting);
                input_.take(next.length);
                character = static_cast<wchar_t>(next.code);
                return 1;
            }
            case Event::Byte: break;
            case Event::End: result_ = Result::End; return 0;
            // Both let the editor do what has to be done to the screen.
            case Event::Interrupt:
                result_ = Result::Interrupt;
                character = keyOfInterrupt;
                return 1;
            case Event::Signal:
                if (!QuietTerminal::mustBeRedrawn()) break;
                libedit_->el_resize(editor_);
                character = keyOfRedraw;
                return 1;
        }
    }
}

// Puts what is pasted into the line as it is, whatever its characters would do if they were typed.
// It is run when the user says so.
unsigned char EditedPrompt::paste() {
    if (!std::exchange(isPasted_, false)) return CC_ERROR;  // the key itself has been typed
    std::size_t seen = 0;
    std::size_t end;
    while ((end = input_.waiting().find(pasteEnds, seen)) == std::string_view::npos) {
        seen = input_.waiting().size() - std::min(input_.waiting().size(), pasteEnds.size() - 1);
        const Event event = input_.wait();
        if (event == Event::Interrupt) {
            result_ = Result::Interrupt;
            return interrupt();
        }
        if (event == Event::End) return CC_EOF;
    }
    const std::string text = withoutControls(input_.waiting().substr(0, end));
    input_.take(end + pasteEnds.size());
    if (purpose_ == Purpose::Answer) {
        input_.putBack(text);  // each line is an answer
    } else {
        insert(widened(std::string_view(text).substr(0, text.find_last_not_of('\n') + 1)));
    }
    return CC_REFRESH;
}

// Moves the cursor behind the end of the line, so that nothing that follows is written over it.
unsigned char EditedPrompt::interrupt() {
    const LineInfoW& line = *libedit_->el_wline(editor_);
    libedit_->el_cursor(editor_, static_cast<int>(line.lastchar - line.cursor));
    return CC_REFRESH;
}

// The same where the cursor of vi's commands can get no farther than onto the last character.
unsigned char EditedPrompt::interruptCommand() {
    interrupt();
    insert(L" ");
    return CC_REFRESH;
}

unsigned char EditedPrompt::redraw() { return CC_REDISPLAY; }

void EditedPrompt::insert(const std::wstring& text) {
    libedit_->el_winsertstr(editor_, text.c_str());
}

unsigned char EditedPrompt::complete() {
    const LineInfoW& line = *libedit_->el_wline(editor_);
    const std::string before =
        narrowed({line.buffer, static_cast<std::size_t>(line.cursor - line.buffer)});
    if (purpose_ == Purpose::Answer || !completer_) {
        insert(L"\t");
        return CC_REFRESH;
    }
    const Completion completion = completer_(before);
    const std::size_t lineStart = before.rfind('\n') + 1;
    if (before.find_first_not_of(" \t", lineStart) == before.npos) {
        insert(L"    ");
        return CC_REFRESH;
    }
    if (completion.candidates.empty()) return CC_ERROR;
    if (const std::string_view rest = completion.commonRest(); !rest.empty()) {
        insert(widened(rest));
        return CC_REFRESH;
    }
    if (completion.candidates.size() == 1) return CC_NORM;
    writeToTerminal("\n" + inColumns(completion.candidates));
    libedit_->el_wset(editor_, EL_REFRESH);  // below the list
    return CC_NORM;
}

}  // namespace

std::unique_ptr<PromptReader> makeEditedPrompt(TerminalInput& input) {
    return std::make_unique<EditedPrompt>(input);
}

}  // namespace pellum
