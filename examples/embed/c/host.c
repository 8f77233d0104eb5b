/* A C program that embeds Pellum: it gives programs a function, runs one, reads the result, and
 * stops what does not end by itself. */
#include <pellum/pellum.h>

#include <stdio.h>
#include <string.h>

static void show(void* user, const char* text, size_t length) {
    fwrite(text, 1, length, (FILE*)user);
}

/* square(number) */
static pellum_value* square(pellum_engine* engine, pellum_value* const* arguments, size_t count,
                            void* user) {
    double number;
    (void)count, (void)user;
    if (pellum_as_float(arguments[0], &number) != PELLUM_OK) {
        pellum_fail(engine, "square: that is no number");
        return NULL;
    }
    return pellum_float(number * number);
}

static pellum_status run(pellum_engine* engine, const char* source, pellum_value** result) {
    const pellum_status status = pellum_run(engine, source, strlen(source), "snippet", result);
    if (status != PELLUM_OK) printf("%s\n", pellum_error_diagnostic(engine));
    return status;
}

int main(void) {
    pellum_options options = {0};
    options.output = show;
    options.user = stdout;
    options.max_steps = 1000000;
    options.max_memory = 16 << 20;
    pellum_engine* const engine = pellum_engine_new(&options);
    pellum_value* result;
    double length;
    if (!engine) return 1;

    pellum_define(engine, "square", square, NULL, 1, 1);
    if (run(engine, "print('working')\nreturn sqrt(square(3) + square(4))", &result) == PELLUM_OK &&
        pellum_as_float(result, &length) == PELLUM_OK) {
        printf("the result is %g\n", length);
    }
    pellum_value_free(result);

    run(engine, "try\n    square('three')\ncatch e\n    print('caught:', e)\nend", NULL);
    run(engine, "let all = []\nwhile true do push(all, repeat('x', 1000)) end", NULL);
    pellum_set_global(engine, "all", NULL);
    run(engine, "print('the engine goes on')", NULL);
    pellum_engine_free(engine);
    return 0;
}
