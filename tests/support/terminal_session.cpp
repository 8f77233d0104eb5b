#include "support/terminal_session.h"

#include "support/text.h"

#include <algorithm>
#include <stdexcept>

namespace pellum::test {

namespace {

struct Key {
    std::string_view name, bytes;
};

constexpr Key keys[] = {
    {"Enter", "\r"},
    {"Tab", "\t"},
    {"Backspace", "\x7f"},
    {"Escape", "\x1b"},
    {"Up", "\x1b[A"},
    {"Down", "\x1b[B"},
    {"Right", "\x1b[C"},
    {"Left", "\x1b[D"},
    {"Home", "\x1b[H"},
    {"End", "\x1b[F"},
    {"Delete", "\x1b[3~"},
    {"Ctrl-Left", "\x1b[1;5D"},
    {"Ctrl-Right", "\x1b[1;5C"},
};

std::string bytesOfKey(std::string_view name) {
    const auto found = std::find_if(std::begin(keys), std::end(keys),
                                    [&](const Key& key) { return key.name == name; });
    if (found != std::end(keys)) return std::string(found->bytes);
    constexpr std::string_view control = "Ctrl-";
    if (name.starts_with(control) && name.size() == control.size() + 1) {
        return std::string(1, static_cast<char>(name.back() & 0x1F));
    }
    return "<" + std::string(name) + ">";
}

using Kind = TerminalSession::Step::Kind;

struct Heading {
    std::string_view text;
    Kind kind;
};

constexpr Heading headings[] = {
    {"type", Kind::Type},       {"paste", Kind::Paste},
    {"screen", Kind::Screen},   {"paste (marked)", Kind::MarkedPaste},
    {"history", Kind::History}, {"screen (marked)", Kind::MarkedScreen},
};

class SessionReader {
public:
    TerminalSession read(std::string_view text) {
        const std::vector<std::string> lines = splitKeepingNewlines(text);
        for (std::size_t at = 0; at < lines.size();) {
            if (!isHeading(lines[at])) {
                readPreamble(trim(lines[at++]));
                continue;
            }
            const std::size_t line = at + 1;
            const std::string heading(trim(std::string_view(lines[at]).substr(4)));
            std::string body;
            for (++at; at < lines.size() && !isHeading(lines[at]); ++at) body += lines[at];
            readSection(heading, body, line);
        }
        if (result_.steps.empty()) throw std::runtime_error("nothing is expected");
        return std::move(result_);
    }

private:
    static bool isHeading(const std::string& line) { return line.starts_with("--- "); }

    void readPreamble(std::string_view line) {
        if (line.starts_with("$ pellum")) {
            for (std::string_view rest = trim(line.substr(8)); !rest.empty();) {
                const std::size_t end = std::min(rest.find(' '), rest.size());
                result_.arguments.emplace_back(rest.substr(0, end));
                rest = trim(rest.substr(end));
            }
        } else if (!line.starts_with('#') && !line.empty()) {
            throw std::runtime_error("neither remark nor command: " + std::string(line));
        }
    }

    void readSection(const std::string& heading, const std::string& body, std::size_t line) {
        const auto found =
            std::find_if(std::begin(headings), std::end(headings),
                         [&](const Heading& known) { return known.text == heading; });
        if (found != std::end(headings)) {
            result_.steps.push_back({found->kind, body, line});
        } else if (heading.starts_with("file ")) {
            result_.files.push_back({heading.substr(5), body});
        } else if (heading == "environment") {
            result_.environment = splitLines(body);
        } else if (heading.starts_with("size ")) {
            result_.steps.push_back({Kind::Resize, heading.substr(5), line});
        } else if (heading.starts_with("status ")) {
            result_.steps.push_back({Kind::Status, heading.substr(7), line});
        } else {
            throw std::runtime_error("unknown section: " + heading);
        }
    }

    TerminalSession result_;
};

}  // namespace

TerminalSession parseTerminalSession(std::string_view text) { return SessionReader().read(text); }

std::string bytesOfKeys(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = text[at] == '<' ? text.find_first_of("> \n", at) : text.npos;
        if (end != text.npos && text[end] == '>') {
            bytes += bytesOfKey(text.substr(at + 1, end - at - 1));
            at = end;
        } else if (text[at] != '\n') {
            bytes += text[at];
        }
    }
    return bytes;
}

Size parseSize(std::string_view text) {
    const std::size_t cross = text.find('x');
    if (cross == text.npos) throw std::runtime_error("no size: " + std::string(text));
    return {std::stoul(std::string(text.substr(0, cross))),
            std::stoul(std::string(text.substr(cross + 1)))};
}

}  // namespace pellum::test
