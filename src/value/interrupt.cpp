#include "value/interrupt.h"

namespace pellum {

void throwInterrupted() {
    interruptIsWanted = false;
    throw Interrupted();
}

}  // namespace pellum
