// A program that embeds Pellum: it runs a snippet, gives it a function, reads the result, and stops
// what does not end by itself.
#include <pellum/pellum.hpp>

#include <iostream>
#include <string>

int main() {
    pellum::Options options;
    options.output = [](std::string_view text) { std::cout << text; };
    options.maxSteps = 1'000'000;
    options.maxMemory = 16 << 20;
    pellum::Engine engine(options);

    const auto price = [](pellum::Engine&, const pellum::Values& args) -> pellum::Value {
        return args[0].asString() == "tea" ? 250 : 320;
    };
    engine.define("price", price, 1, 1);
    try {
        const std::string source =
            "let order = {tea: 2, cake: 1}\n"
            "let total = 0\n"
            "for what in order do total += price(what) * order[what] end\n"
            "print('the order comes to', total)\n"
            "return {total: total, things: len(order)}\n";
        const pellum::Value order = engine.run(source, "order");
        std::cout << "total: " << order.get("total").asInt() << ", of "
                  << order.get("things").text() << " things\n";

        engine.run("while true do total += 1 end", "endless");
    } catch (const pellum::Error& error) {
        std::cout << error.diagnostic() << '\n';
    }
    std::cout << "and still: " << engine.run("return total > 1000").text() << '\n';
}
