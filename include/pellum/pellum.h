/* Pellum in a C program: the interface of pellum.hpp in a flat form. Usable from C99 and C++.
 *
 * Ownership: what `pellum_engine_new` and the functions that make or yield a `pellum_value *`
 * return belongs to the caller, who ends it with `pellum_engine_free` and `pellum_value_free`.
 * Arguments are never taken over, but for what a `pellum_native` returns. Text that is yielded
 * belongs to whom it was asked of, and lasts as long as that is neither changed nor freed.
 *
 * Errors: functions that can fail return a pellum_status; where that is not PELLUM_OK, results are
 * set to NULL or 0, and the engine remembers what went wrong until its next failure. Where a value
 * is not of the kind that is asked for, that is PELLUM_MISUSE. Nothing is thrown out of a function
 * here.
 *
 * NULL: an engine that is NULL is PELLUM_MISUSE. A value that is NULL counts as nil. A result that
 * is not wanted may be given as NULL. Text that is NULL counts as empty. Freeing NULL does nothing.
 *
 * Threads: an engine with its values is used by one thread at a time; different engines do not
 * know of each other. Only `pellum_interrupt` may be called at any time.
 */
#ifndef PELLUM_PELLUM_H
#define PELLUM_PELLUM_H

#include <pellum/export.h>

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct pellum_engine pellum_engine;
typedef struct pellum_value pellum_value;

typedef enum pellum_status {
    PELLUM_OK = 0,
    PELLUM_SYNTAX,        /* the source is no program */
    PELLUM_RUNTIME,       /* an error of the program that it did not catch */
    PELLUM_THROWN,        /* a value that it threw with `error` and did not catch */
    PELLUM_STEPS,         /* max_steps */
    PELLUM_MEMORY,        /* max_memory */
    PELLUM_INTERRUPTED,   /* pellum_interrupt */
    PELLUM_OUT_OF_MEMORY, /* the system has refused memory */
    PELLUM_MISUSE         /* the host has asked for what makes no sense; nothing has happened */
} pellum_status;

typedef enum pellum_kind {
    PELLUM_NIL = 0,
    PELLUM_BOOL,
    PELLUM_INT,
    PELLUM_FLOAT,
    PELLUM_STRING,
    PELLUM_LIST,
    PELLUM_MAP,
    PELLUM_FUNCTION
} pellum_kind;

/* Receives what programs print. */
typedef void (*pellum_output)(void* user, const char* text, size_t length);

/* Yields the next line without its newline, to last until the next call, or 0 at the end. */
typedef int (*pellum_input)(void* user, const char** line, size_t* length);

/* A function of the host. Returns a value, which then belongs to the engine, or NULL for nil. To
 * fail, it calls `pellum_fail` and returns NULL. */
typedef pellum_value* (*pellum_native)(pellum_engine* engine, pellum_value* const* arguments,
                                       size_t count, void* user);

/* All zero is fine: no output, no input, no limits. */
typedef struct pellum_options {
    pellum_output output;
    pellum_input input;
    void* user;         /* for both */
    uint64_t max_steps; /* of a run; 0: no limit */
    size_t max_memory;  /* bytes that the engine may hold; 0: no limit */
    int interruptible;  /* whether pellum_interrupt does anything */
} pellum_options;

/* NULL where memory does not suffice. `options` may be NULL. */
PELLUM_API pellum_engine* pellum_engine_new(const pellum_options* options);
PELLUM_API void pellum_engine_free(pellum_engine* engine);

/* Runs a program of `length` bytes; `name` stands in errors. Yields what it returns. */
PELLUM_API pellum_status pellum_run(pellum_engine* engine, const char* source, size_t length,
                                    const char* name, pellum_value** result);
PELLUM_API pellum_status pellum_call(pellum_engine* engine, const pellum_value* function,
                                     const pellum_value* const* arguments, size_t count,
                                     pellum_value** result);
PELLUM_API void pellum_interrupt(pellum_engine* engine);

/* Globals. One that is not there is nil. */
PELLUM_API pellum_status pellum_get_global(pellum_engine* engine, const char* name,
                                           pellum_value** result);
PELLUM_API pellum_status pellum_set_global(pellum_engine* engine, const char* name,
                                           const pellum_value* value);

/* Makes a function of the host a global. `most` may be -1 for any number of arguments. */
PELLUM_API pellum_status pellum_define(pellum_engine* engine, const char* name,
                                       pellum_native native, void* user, int least, int most);

/* Lets the function of the host that runs fail with this message, or by throwing this value. */
PELLUM_API void pellum_fail(pellum_engine* engine, const char* message);
PELLUM_API void pellum_throw(pellum_engine* engine, const pellum_value* thrown);

/* The latest failure. Of an engine that is NULL: nothing and 0. */
PELLUM_API const char* pellum_error_message(const pellum_engine* engine);
PELLUM_API const char* pellum_error_diagnostic(const pellum_engine* engine);
PELLUM_API const char* pellum_error_source(const pellum_engine* engine);
PELLUM_API unsigned pellum_error_line(const pellum_engine* engine);
PELLUM_API unsigned pellum_error_column(const pellum_engine* engine);
PELLUM_API pellum_value* pellum_error_thrown(const pellum_engine* engine);

PELLUM_API uint64_t pellum_steps_taken(const pellum_engine* engine);
PELLUM_API size_t pellum_memory_used(const pellum_engine* engine);

/* New values; NULL where memory does not suffice. */
PELLUM_API pellum_value* pellum_nil(void);
PELLUM_API pellum_value* pellum_bool(int truth);
PELLUM_API pellum_value* pellum_int(int64_t number);
PELLUM_API pellum_value* pellum_float(double number);
PELLUM_API pellum_value* pellum_string(const char* text, size_t length);
PELLUM_API pellum_value* pellum_list(pellum_engine* engine);
PELLUM_API pellum_value* pellum_map(pellum_engine* engine);
PELLUM_API pellum_value* pellum_copy(const pellum_value* value); /* of a list: another handle */
PELLUM_API void pellum_value_free(pellum_value* value);

PELLUM_API pellum_kind pellum_kind_of(const pellum_value* value);
PELLUM_API int pellum_is_truthy(const pellum_value* value);
PELLUM_API pellum_status pellum_as_bool(const pellum_value* value, int* truth);
PELLUM_API pellum_status pellum_as_int(const pellum_value* value, int64_t* number);
PELLUM_API pellum_status pellum_as_float(const pellum_value* value, double* number);

/* The bytes of a string, with a NUL byte behind them. */
PELLUM_API pellum_status pellum_as_string(const pellum_value* value, const char** text,
                                          size_t* length);

/* What a program would print, as a new string value. */
PELLUM_API pellum_status pellum_text_of(const pellum_value* value, pellum_value** text);

/* Lists, by an index from 0, and maps, by a string or a number. */
PELLUM_API pellum_status pellum_size(const pellum_value* value, size_t* size);
PELLUM_API pellum_status pellum_get(const pellum_value* value, const pellum_value* index_or_key,
                                    pellum_value** result);
PELLUM_API pellum_status pellum_set(const pellum_value* value, const pellum_value* index_or_key,
                                    const pellum_value* element);
PELLUM_API pellum_status pellum_push(const pellum_value* list, const pellum_value* element);
/* The key of a map at a place from 0, in the order in which keys were added. */
PELLUM_API pellum_status pellum_key_at(const pellum_value* map, size_t place, pellum_value** key);

#ifdef __cplusplus
}
#endif

#endif
