#include "driver/posix/libedit.h"

#include <initializer_list>
#include <type_traits>

#include <dlfcn.h>

namespace pellum {

namespace {

void* openLibrary() {
    // As Debian, other systems with Linux, and macOS call it.
    for (const char* name : {"libedit.so.2", "libedit.so.0", "libedit.3.dylib"}) {
        if (void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL)) return library;
    }
    return nullptr;
}

bool load(Libedit& functions) {
    void* library = openLibrary();
    if (!library) return false;
    bool isComplete = true;
    const auto find = [&](auto& function, const char* name) {
        function =
            reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
        if (!function) isComplete = false;
    };
#define PELLUM_FIND_FUNCTION(name) find(functions.name, #name);
    PELLUM_LIBEDIT_FUNCTIONS(PELLUM_FIND_FUNCTION)
#undef PELLUM_FIND_FUNCTION
    return isComplete;
}

}  // namespace

const Libedit* loadLibedit() {
    static Libedit functions;
    static const bool isLoaded = load(functions);
    return isLoaded ? &functions : nullptr;
}

}  // namespace pellum
