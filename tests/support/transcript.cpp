#include "support/transcript.h"

#include "support/text.h"

#include <sstream>

namespace pellum::test {

namespace {

class TranscriptReader {
public:
    Transcript read(std::string_view text) {
        for (const std::string& line : splitLines(text)) readLine(line);
        return std::move(transcript_);
    }

private:
    void readLine(std::string_view line) {
        const std::string_view mark = line.substr(0, 2);
        const std::string_view rest = line.substr(mark.size());
        // An editor may have removed the blank behind a prompt with nothing typed.
        const std::string_view prompt = line.substr(0, 3);
        if (prompt == ">> " || prompt == ".. " || line == ">>" || line == "..") {
            print(std::string(mark) + " ");
            if (type(line.substr(prompt.size())) == Typed::EndOnly) print("\n");
        } else if (mark == "! ") {
            transcript_.errors += std::string(rest) + "\n";
            transcript_.merged += std::string(rest) + "\n";
        } else if (mark == "< ") {
            type(rest);
        } else if (mark == "~ ") {
            print(rest);
        } else if (mark == "| ") {
            print(std::string(rest) + "\n");
        } else if (line.starts_with("$ pellum")) {
            std::istringstream words{std::string(line.substr(8))};
            for (std::string word; words >> word;) transcript_.arguments.push_back(word);
        } else if (mark != "# ") {
            print(std::string(line) + "\n");
        }
    }

    void print(std::string_view text) {
        transcript_.output += text;
        transcript_.merged += text;
    }

    enum class Typed { Line, EndOnly };

    Typed type(std::string_view text) {
        if (!text.ends_with("^D")) {
            transcript_.input += std::string(text) + "\n";
            return Typed::Line;
        }
        transcript_.input += text.substr(0, text.size() - 2);
        return text == "^D" ? Typed::EndOnly : Typed::Line;
    }

    Transcript transcript_;
};

}  // namespace

Transcript parseTranscript(std::string_view text) { return TranscriptReader().read(text); }

}  // namespace pellum::test
