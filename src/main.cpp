#include "driver/process.h"
#include "driver/run_main.h"

#include <iostream>

int main(int argc, char** argv) {
    pellum::prepareProcess();
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    return pellum::runMain(std::move(args), std::cin, std::cout, std::cerr);
}
