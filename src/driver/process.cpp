#include "driver/process.h"

#include "driver/descriptors.h"
#include "driver/ending.h"
#include "driver/run_main.h"
#include "value/host_stack.h"

#include <cstdlib>
#include <exception>
#include <new>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace pellum {

namespace {

void (*volatile actionBeforeEnd)() noexcept = nullptr;

// The last resort. An exception that finds no memory for itself comes here without one.
[[noreturn]] void endOnTerminate() noexcept {
    const char* problem = "pellum: out of memory\n";
    try {
        if (std::current_exception()) throw;
    } catch (const std::bad_alloc&) {
    } catch (...) {
        problem = "pellum: internal error\n";
    }
    if (ending::output && !ending::output->isWriting()) ending::output->drain();
    ending::beforeForcedEnd();
    writeAll(errDescriptor, problem);
    std::_Exit(exitFailure);
}

// Containers that grow give memory back and ask for more all the time. Handing each piece to the
// system and having it cleared again may take as long as the work itself.
void keepFreedMemory() noexcept {
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 4 << 20);
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
}

}  // namespace

void prepareProcess() noexcept {
    keepFreedMemory();
    std::set_terminate(endOnTerminate);
    raiseHostStackLimit();
    ending::prepareProcess();
}

void onForcedEnd(void (*action)() noexcept) noexcept { actionBeforeEnd = action; }

void ending::beforeForcedEnd() noexcept {
    if (actionBeforeEnd) actionBeforeEnd();
}

StandardStreams::StandardStreams()
    : outBuffer_(outDescriptor),
      errBuffer_(errDescriptor),
      inBuffer_(inDescriptor),
      in(&inBuffer_),
      out(&outBuffer_),
      err(&errBuffer_) {
    if (isTerminal(outDescriptor)) out << std::unitbuf;
    ending::output = &outBuffer_;
    ending::handleRequests();
}

StandardStreams::~StandardStreams() { ending::output = nullptr; }

}  // namespace pellum
