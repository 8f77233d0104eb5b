// The library of line editing, loaded when it is first needed, so that programs that read nothing
// at a terminal start without it. Only the executable has it, and only where the library's header
// was there at build time.
#pragma once

#include <histedit.h>

namespace pellum {

#define PELLUM_LIBEDIT_FUNCTIONS(FUNCTION) \
    FUNCTION(el_init)                      \
    FUNCTION(el_wset)                      \
    FUNCTION(el_wget)                      \
    FUNCTION(el_wgets)                     \
    FUNCTION(el_wline)                     \
    FUNCTION(el_winsertstr)                \
    FUNCTION(el_cursor)                    \
    FUNCTION(el_resize)                    \
    FUNCTION(el_source)                    \
    FUNCTION(history_winit)                \
    FUNCTION(history_w)

struct Libedit {
#define PELLUM_LIBEDIT_POINTER(name) decltype(&::name) name = nullptr;
    PELLUM_LIBEDIT_FUNCTIONS(PELLUM_LIBEDIT_POINTER)
#undef PELLUM_LIBEDIT_POINTER
};

// Null where there is no such library on this machine.
const Libedit* loadLibedit();

}  // namespace pellum
