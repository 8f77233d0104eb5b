#include "format/pellum_fmt.h"

int main(int argc, char** argv) {
    return pellum::tools::toolMain(pellum::tools::pellumFmt, argc, argv);
}
