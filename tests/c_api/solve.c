/* Builds models, solves them, reads the answers, and takes them through files: solve FOLDER. */
#include <stdlib.h>

#include "check.h"

/* max 5x + 4y + 3z with three resources, optimum 13 at (2, 0, 1); duals 1, 0, 1. */
static ZVNmodel* resources(ZVNenv* env) {
    ZVNmodel* model = NULL;
    const double profit[] = {5, 4, 3};
    char* names[] = {"x", "y", "z"};
    CHECK_CODE(ZVNnewmodel(env, &model, "resources", 3, profit, NULL, NULL, NULL, names), 0, ZVNgeterrormsg(env));
    const int beg[] = {0, 3, 6};
    const int ind[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
    const double val[] = {2, 3, 1, 4, 1, 2, 3, 4, 2};
    const double rhs[] = {5, 11, 8};
    char* rows[] = {"r0", "r1", "r2"};
    OK(model, ZVNaddconstrs(model, 3, 9, beg, ind, val, "<<<", rhs, rows));
    OK(model, ZVNsetintattr(model, "ModelSense", ZVN_MAXIMIZE));
    CHECK(int_attr(model, "NumConstrs") == 0); /* queued until the update */
    OK(model, ZVNupdatemodel(model));
    CHECK(int_attr(model, "NumConstrs") == 3 && int_attr(model, "NumVars") == 3 && int_attr(model, "NumNZs") == 9);
    return model;
}

static void check_resources(ZVNmodel* model) {
    double x[3], pi[3], slack[3], rc[3];
    const int all[] = {0, 1, 2};
    OK(model, ZVNoptimize(model));
    CHECK(int_attr(model, "Status") == ZVN_OPTIMAL);
    CHECK(close_to(dbl_attr(model, "ObjVal"), 13));
    OK(model, ZVNgetdblattrlist(model, "X", 3, all, x));
    OK(model, ZVNgetdblattrlist(model, "RC", 3, all, rc));
    OK(model, ZVNgetdblattrlist(model, "Pi", 3, all, pi));
    OK(model, ZVNgetdblattrlist(model, "Slack", 3, all, slack));
    CHECK(close_to(x[0], 2) && close_to(x[1], 0) && close_to(x[2], 1));
    CHECK(close_to(pi[0], 1) && close_to(pi[1], 0) && close_to(pi[2], 1));
    CHECK(close_to(rc[0], 0) && close_to(rc[1], -3) && close_to(rc[2], 0));
    CHECK(close_to(slack[0], 0) && close_to(slack[1], 1) && close_to(slack[2], 0));
}

static void linear_program(ZVNenv* env) {
    ZVNmodel* model = resources(env);
    check_resources(model);

    /* A column through existing rows, a bound and a deletion; each waits for the update. */
    const int rows[] = {0, 2};
    const double coeffs[] = {1, 1};
    OK(model, ZVNaddvar(model, 2, rows, coeffs, 4, 0, 1, ZVN_CONTINUOUS, "w"));
    OK(model, ZVNsetdblattrelement(model, "UB", 0, 1));
    CHECK(close_to(dbl_attr(model, "ObjVal"), 13));
    CHECK(dbl_at(model, "UB", 0) >= ZVN_INFINITY);
    OK(model, ZVNoptimize(model));
    CHECK(close_to(dbl_attr(model, "ObjVal"), 5 + 4 + 6));
    const int second = 1;
    OK(model, ZVNdelvars(model, 1, &second));
    OK(model, ZVNupdatemodel(model));
    char* name = NULL;
    OK(model, ZVNgetstrattrelement(model, "VarName", 1, &name));
    CHECK(name && strcmp(name, "z") == 0);
    int index = -2;
    OK(model, ZVNgetvarbyname(model, "w", &index));
    CHECK(index == 2);
    OK(model, ZVNgetvarbyname(model, "y", &index));
    CHECK(index == -1);
    int entries = 0, beg[3], ind[9];
    double val[9];
    OK(model, ZVNgetconstrs(model, &entries, beg, ind, val, 0, 3));
    CHECK(entries == 8 && beg[1] == 3 && beg[2] == 5 && ind[0] == 0 && val[0] == 2);
    ZVNfreemodel(model);
}

static int count_lines(const char* message, void* lines) {
    (void)message;
    ++*(int*)lines;
    return 0;
}

static void integer_program(ZVNenv* env) {
    ZVNmodel* model = NULL;
    const double value[] = {10, 13, 7, 8, 12}, weight[] = {3, 4, 2, 3, 5};
    const int ind[] = {0, 1, 2, 3, 4};
    CHECK_CODE(ZVNnewmodel(env, &model, "knapsack", 0, NULL, NULL, NULL, NULL, NULL), 0, ZVNgeterrormsg(env));
    OK(model, ZVNaddvars(model, 5, 0, NULL, NULL, NULL, NULL, NULL, NULL, "BBBBB", NULL));
    OK(model, ZVNaddconstr(model, 5, ind, weight, ZVN_LESS_EQUAL, 9, "weight"));
    OK(model, ZVNsetobjective(model, ZVN_MAXIMIZE, 100, 5, ind, value, 0, NULL, NULL, NULL));
    int lines = 0;
    ZVNenv* own = ZVNgetenv(model);
    OK(model, ZVNsetlogcallbackfunc(model, count_lines, &lines));
    OK(model, ZVNoptimize(model));
    CHECK(lines == 0);
    CHECK_CODE(ZVNsetintparam(own, "outputflag", 1), 0, ZVNgeterrormsg(own));
    lines = 0;
    OK(model, ZVNreset(model, 0));
    OK(model, ZVNoptimize(model));
    CHECK(lines > 0);
    CHECK(int_attr(model, "IsMIP") == 1 && int_attr(model, "Status") == ZVN_OPTIMAL);
    CHECK(int_attr(model, "SolCount") >= 1);
    CHECK(close_to(dbl_attr(model, "ObjVal"), 130)); /* items 0, 1, 2 */
    double dual = 0;
    REFUSED(model, ZVNgetdblattrelement(model, "Pi", 0, &dual), ZVN_ERROR_DATA_NOT_AVAILABLE, "Pi");
    ZVNfreemodel(model);
}

static void files(ZVNenv* env, const char* folder) {
    const char* endings[] = {".mps", ".lp", ".mps.gz", ".lp.gz"};
    ZVNmodel* model = resources(env);
    for (int k = 0; k < 4; k++) {
        char path[4096];
        snprintf(path, sizeof path, "%s/resources%s", folder, endings[k]);
        OK(model, ZVNwrite(model, path));
        ZVNmodel* again = NULL;
        CHECK_CODE(ZVNreadmodel(env, path, &again), 0, ZVNgeterrormsg(env));
        check_resources(again);
        ZVNmodel* copy = ZVNcopymodel(again);
        ZVNfreemodel(again);
        check_resources(copy);
        ZVNfreemodel(copy);
    }
    char* text = NULL;
    OK(model, ZVNoptimize(model));
    OK(model, ZVNgetjsonsolution(model, &text));
    CHECK(text && strstr(text, "\"ObjVal\""));
    ZVNfree(text);
    ZVNfreemodel(model);
}

/* A model keeps its environment's parameters, and stays usable when the environment is freed first. */
static void environment_first(void) {
    ZVNenv* env = silent_env();
    CHECK_CODE(ZVNsetdblparam(env, "TimeLimit", 60), 0, ZVNgeterrormsg(env));
    ZVNmodel* model = resources(env);
    ZVNfreeenv(env);
    double limit = 0;
    CHECK_CODE(ZVNgetdblparaminfo(ZVNgetenv(model), "TimeLimit", &limit, NULL, NULL, NULL), 0, ZVNgetmerrormsg(model));
    CHECK(limit == 60);
    check_resources(model);
    ZVNfreemodel(model);
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    int major = 0, minor = 0, technical = 0;
    ZVNversion(&major, &minor, &technical);
    CHECK(major == ZVN_VERSION_MAJOR && minor == ZVN_VERSION_MINOR && technical == ZVN_VERSION_TECHNICAL);
    CHECK(strlen(ZVNplatform()) > 0);
    ZVNenv* env = silent_env();
    linear_program(env);
    integer_program(env);
    files(env, argv[1]);
    ZVNfreeenv(env);
    environment_first();
    return failures ? EXIT_FAILURE : EXIT_SUCCESS;
}
