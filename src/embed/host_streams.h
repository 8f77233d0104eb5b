// The functions of a host as the streams of a console.
#pragma once

#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace pellum::embed {

// What a function of the host throws passes through the stream that asked for it, which fails then.
class OutputToHost final : public std::streambuf {
public:
    explicit OutputToHost(std::function<void(std::string_view)> output)
        : output_(std::move(output)) {}

protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
        if (output_) output_({text, static_cast<std::size_t>(count)});
        return count;
    }
    int_type overflow(int_type byte) override {
        const char text = traits_type::to_char_type(byte);
        if (!traits_type::eq_int_type(byte, traits_type::eof())) xsputn(&text, 1);
        return traits_type::not_eof(byte);
    }

private:
    std::function<void(std::string_view)> output_;
};

class InputFromHost final : public std::streambuf {
public:
    explicit InputFromHost(std::function<std::optional<std::string>()> input)
        : input_(std::move(input)) {}

protected:
    int_type underflow() override {
        std::optional<std::string> line;
        if (input_) line = input_();
        if (!line) return traits_type::eof();
        line_ = std::move(*line) + '\n';
        setg(line_.data(), line_.data(), line_.data() + line_.size());
        return traits_type::to_int_type(line_.front());
    }

private:
    std::function<std::optional<std::string>()> input_;
    std::string line_;
};

struct HostStreams {
    HostStreams(std::function<void(std::string_view)> output,
                std::function<std::optional<std::string>()> input)
        : outBuffer(std::move(output)), inBuffer(std::move(input)), in(&inBuffer), out(&outBuffer) {
        out.exceptions(std::ios::badbit);
    }

    // After what the host has thrown, and after the end of the input, which may go on.
    void clear() {
        in.clear();
        out.clear();
    }

    OutputToHost outBuffer;
    InputFromHost inBuffer;
    std::istream in;
    std::ostream out;
};

}  // namespace pellum::embed
