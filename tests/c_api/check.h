/* Checks of the C tests: each failure prints its place and the library's text, and the program goes on. */
#ifndef CHECK_H
#define CHECK_H

#include <math.h>
#include <stdio.h>
#include <string.h>

#include "zelvan100.h"

static int failures = 0;

#define CHECK(condition)                                                   \
    do {                                                                   \
        if (!(condition)) {                                                \
            printf("%s:%d: failed: %s\n", __FILE__, __LINE__, #condition); \
            failures++;                                                    \
        }                                                                  \
    } while (0)

#define CHECK_CODE(call, expected, text)                                                                       \
    do {                                                                                                       \
        int code_ = (call);                                                                                    \
        if (code_ != (expected)) {                                                                             \
            printf("%s:%d: %s gives %d (%s), not %d\n", __FILE__, __LINE__, #call, code_, (text), (expected)); \
            failures++;                                                                                        \
        }                                                                                                      \
    } while (0)

/* The call on a model succeeds. */
#define OK(model, call) CHECK_CODE(call, 0, ZVNgetmerrormsg(model))

/* The call on a model is refused with this code, and the sentence it leaves holds `word`. */
#define REFUSED(model, call, expected, word)                                                          \
    do {                                                                                              \
        CHECK_CODE(call, expected, ZVNgetmerrormsg(model));                                           \
        if (!strstr(ZVNgetmerrormsg(model), (word))) {                                                \
            printf("%s:%d: '%s' isn't in: %s\n", __FILE__, __LINE__, (word), ZVNgetmerrormsg(model)); \
            failures++;                                                                               \
        }                                                                                             \
    } while (0)

static inline int close_to(double a, double b) { return fabs(a - b) <= 1e-6 * (1 + fabs(b)); }

static inline double dbl_attr(ZVNmodel* model, const char* name) {
    double value = NAN;
    OK(model, ZVNgetdblattr(model, name, &value));
    return value;
}

static inline int int_attr(ZVNmodel* model, const char* name) {
    int value = -12345;
    OK(model, ZVNgetintattr(model, name, &value));
    return value;
}

static inline double dbl_at(ZVNmodel* model, const char* name, int i) {
    double value = NAN;
    OK(model, ZVNgetdblattrelement(model, name, i, &value));
    return value;
}

/* A started environment that prints nothing. */
static inline ZVNenv* silent_env(void) {
    ZVNenv* env = NULL;
    CHECK_CODE(ZVNemptyenvadvinternal(&env, 0, ZVN_VERSION_MAJOR, ZVN_VERSION_MINOR, ZVN_VERSION_TECHNICAL, NULL, NULL,
                                      NULL, NULL, 0, 0, NULL),
               0, "");
    CHECK_CODE(ZVNsetintparam(env, "OutputFlag", 0), 0, ZVNgeterrormsg(env));
    CHECK_CODE(ZVNstartenv(env), 0, ZVNgeterrormsg(env));
    return env;
}

#endif
