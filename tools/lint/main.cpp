#include "lint/command.h"

int main(int argc, char** argv) {
    return pellum::tools::toolMain(pellum::lint::lintTool, argc, argv);
}
