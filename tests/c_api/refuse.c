/* Bad calls are refused with a code and a sentence, change nothing and never crash: refuse FOLDER. */
#include <stdlib.h>

#include "check.h"

static ZVNmodel* small(ZVNenv* env) {
    ZVNmodel* model = NULL;
    const int ind[] = {0, 1};
    const double val[] = {1, 1};
    CHECK_CODE(ZVNnewmodel(env, &model, "small", 2, NULL, NULL, NULL, "CI", NULL), 0, ZVNgeterrormsg(env));
    OK(model, ZVNaddconstr(model, 2, ind, val, ZVN_LESS_EQUAL, 1, "row"));
    OK(model, ZVNupdatemodel(model));
    return model;
}

/* Every function that takes a model, on one that can't be used. */
static void unusable_model(ZVNmodel* model) {
    int i = 0, zero = 0;
    double d = 0;
    char c = 'C', *s = NULL;
    const int codes[] = {
        ZVNupdatemodel(model),
        ZVNreset(model, 0),
        ZVNread(model, "a.mst"),
        ZVNwrite(model, "a.mps"),
        ZVNgetjsonsolution(model, &s),
        ZVNaddvar(model, 0, NULL, NULL, 0, 0, 1, 'C', NULL),
        ZVNaddvars(model, 1, 0, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),
        ZVNaddconstr(model, 0, NULL, NULL, '<', 0, NULL),
        ZVNaddconstrs(model, 0, 0, NULL, NULL, NULL, NULL, NULL, NULL),
        ZVNaddrangeconstr(model, 0, NULL, NULL, 0, 1, NULL),
        ZVNdelvars(model, 1, &zero),
        ZVNdelconstrs(model, 1, &zero),
        ZVNdelsos(model, 1, &zero),
        ZVNdelqconstrs(model, 1, &zero),
        ZVNdelgenconstrs(model, 1, &zero),
        ZVNaddqconstr(model, 0, NULL, NULL, 0, NULL, NULL, NULL, '<', 0, NULL),
        ZVNgetqconstr(model, 0, &i, NULL, NULL, &i, NULL, NULL, NULL),
        ZVNgetqconstrbyname(model, "x", &i),
        ZVNgetvarbyname(model, "x", &i),
        ZVNgetconstrbyname(model, "x", &i),
        ZVNgetconstrs(model, &i, NULL, NULL, NULL, 0, 1),
        ZVNsetobjective(model, 1, 0, 0, NULL, NULL, 0, NULL, NULL, NULL),
        ZVNsetobjectiven(model, 0, 0, 1, 0, 0, "", 0, 0, NULL, NULL),
        ZVNsetpwlobj(model, 0, 0, NULL, NULL),
        ZVNgetpwlobj(model, 0, &i, NULL, NULL),
        ZVNgetq(model, &i, NULL, NULL, NULL),
        ZVNsetlogcallbackfunc(model, NULL, NULL),
        ZVNgetattrname(model, 0, &s),
        ZVNgetattrinfo(model, "X", &i, &i, &i),
        ZVNprefetchattr(model, "X"),
        ZVNgetintattr(model, "NumVars", &i),
        ZVNgetdblattr(model, "ObjVal", &d),
        ZVNgetstrattr(model, "ModelName", &s),
        ZVNsetintattr(model, "ModelSense", 1),
        ZVNsetdblattr(model, "ObjCon", 1),
        ZVNsetstrattr(model, "ModelName", "m"),
        ZVNgetcharattrelement(model, "VType", 0, &c),
        ZVNgetintattrelement(model, "VBasis", 0, &i),
        ZVNgetdblattrelement(model, "LB", 0, &d),
        ZVNgetstrattrelement(model, "VarName", 0, &s),
        ZVNsetcharattrelement(model, "VType", 0, 'C'),
        ZVNsetintattrelement(model, "BranchPriority", 0, 1),
        ZVNsetdblattrelement(model, "LB", 0, 1),
        ZVNsetstrattrelement(model, "VarName", 0, "x"),
        ZVNgetcharattrlist(model, "VType", 1, &zero, &c),
        ZVNgetintattrlist(model, "VBasis", 1, &zero, &i),
        ZVNgetdblattrlist(model, "LB", 1, &zero, &d),
        ZVNgetstrattrlist(model, "VarName", 1, &zero, &s),
        ZVNsetcharattrlist(model, "VType", 1, &zero, &c),
        ZVNsetintattrlist(model, "BranchPriority", 1, &zero, &i),
        ZVNsetdblattrlist(model, "LB", 1, &zero, &d),
        ZVNsetstrattrlist(model, "VarName", 1, &zero, &s),
        ZVNoptimize(model),
    };
    for (size_t k = 0; k < sizeof codes / sizeof *codes; k++) {
        if (codes[k] != ZVN_ERROR_NULL_ARGUMENT) {
            printf("call %zu on an unusable model gives %d\n", k, codes[k]);
            failures++;
        }
    }
    CHECK(strlen(ZVNgetmerrormsg(model)) > 0);
    CHECK(ZVNgetenv(model) == NULL && ZVNcopymodel(model) == NULL);
    CHECK(ZVNgetnumattributes(model) >= 0 && ZVNisattravailable(model, "X") == 0);
    ZVNterminate(model);
    ZVNsetsignal(model);
    ZVNfreemodel(model);
}

static void unusable_env(ZVNenv* env) {
    int i = 0;
    unsigned flags = 0;
    double d = 0;
    char text[ZVN_MAX_STRLEN], *s = NULL;
    const char* help = NULL;
    ZVNmodel* model = NULL;
    const int codes[] = {
        ZVNstartenv(env),
        ZVNsetlogcallbackfuncenv(env, NULL, NULL),
        ZVNgetcommstats(env, &d, &d, &d, &d, &d, &d),
        ZVNgetparamname(env, 0, &s),
        ZVNgetparamflags(env, "Threads", &flags),
        ZVNgetparamhelp(env, "Threads", &help, &help),
        ZVNgetintparaminfo(env, "Threads", &i, NULL, NULL, NULL),
        ZVNgetdblparaminfo(env, "TimeLimit", &d, NULL, NULL, NULL),
        ZVNgetstrparaminfo(env, "LogFile", text, NULL),
        ZVNgetlongstrparam(env, "LogFile", text, sizeof text, &i),
        ZVNsetintparam(env, "Threads", 1),
        ZVNsetdblparam(env, "TimeLimit", 1),
        ZVNsetstrparam(env, "LogFile", ""),
        ZVNfixtuneparam(env, "Threads"),
        ZVNresetparams(env),
        ZVNreadparams(env, "a.prm"),
        ZVNwriteparams(env, "a.prm"),
        ZVNnewmodel(env, &model, "m", 0, NULL, NULL, NULL, NULL, NULL),
        ZVNreadmodel(env, "a.mps", &model),
    };
    for (size_t k = 0; k < sizeof codes / sizeof *codes; k++) {
        if (codes[k] != ZVN_ERROR_NULL_ARGUMENT) {
            printf("call %zu on an unusable environment gives %d\n", k, codes[k]);
            failures++;
        }
    }
    CHECK(model == NULL && strlen(ZVNgeterrormsg(env)) > 0 && ZVNgetparamtype(env, "Threads") < 0);
    ZVNmsg(env, "nobody hears this\n");
    ZVNfreeenv(env);
}

static void bad_arguments(ZVNmodel* model) {
    int i = 0, out[] = {0, 2}, twice[] = {1, 1}, below = -1;
    double d = 0, val[] = {1, 1}, nan_value[] = {1, NAN};
    char* s = NULL;
    REFUSED(model, ZVNgetdblattrelement(model, "LB", 2, &d), ZVN_ERROR_INDEX_OUT_OF_RANGE, "2");
    REFUSED(model, ZVNgetdblattrelement(model, "RHS", -1, &d), ZVN_ERROR_INDEX_OUT_OF_RANGE, "-1");
    REFUSED(model, ZVNgetdblattrlist(model, "LB", 2, out, val), ZVN_ERROR_INDEX_OUT_OF_RANGE, "2");
    REFUSED(model, ZVNsetdblattrlist(model, "UB", 2, out, val), ZVN_ERROR_INDEX_OUT_OF_RANGE, "2");
    REFUSED(model, ZVNdelvars(model, 1, &below), ZVN_ERROR_INDEX_OUT_OF_RANGE, "-1");
    REFUSED(model, ZVNdelconstrs(model, 2, out), ZVN_ERROR_INDEX_OUT_OF_RANGE, "2");
    REFUSED(model, ZVNdelsos(model, 1, out), ZVN_ERROR_INDEX_OUT_OF_RANGE, "0");
    REFUSED(model, ZVNgetconstrs(model, &i, NULL, NULL, NULL, 0, 2), ZVN_ERROR_INDEX_OUT_OF_RANGE, "0 to 1");
    REFUSED(model, ZVNaddconstr(model, 2, out, val, '<', 0, NULL), ZVN_ERROR_INDEX_OUT_OF_RANGE, "2");
    REFUSED(model, ZVNaddconstr(model, 2, twice, val, '<', 0, NULL), ZVN_ERROR_DUPLICATES, "1");
    CHECK(ZVNaddconstr(model, 2, twice, val, '?', 0, NULL) != 0 && strchr(ZVNgetmerrormsg(model), '?'));
    CHECK(ZVNaddvar(model, 0, NULL, NULL, 0, 0, 1, 'Q', NULL) != 0 && strchr(ZVNgetmerrormsg(model), 'Q'));
    CHECK(ZVNsetdblattrlist(model, "LB", 2, twice, nan_value) != 0);
    CHECK(ZVNaddrangeconstr(model, 0, NULL, NULL, 2, 1, "empty") != 0);
    REFUSED(model, ZVNgetdblattr(model, "NoSuch", &d), ZVN_ERROR_UNKNOWN_ATTRIBUTE, "NoSuch");
    REFUSED(model, ZVNgetdblattr(model, "ObjVal", &d), ZVN_ERROR_DATA_NOT_AVAILABLE, "ObjVal");
    CHECK(ZVNgetdblattr(model, "NumVars", &d) != 0);      /* an int */
    CHECK(ZVNgetintattrelement(model, "LB", 0, &i) != 0); /* a double */
    CHECK(ZVNgetstrattr(model, "VarName", &s) != 0);      /* of a variable, not the model */
    CHECK(ZVNsetintattr(model, "NumVars", 3) != 0);       /* not settable */
    REFUSED(model, ZVNgetdblattr(model, "ObjVal", NULL), ZVN_ERROR_NULL_ARGUMENT, "");
    REFUSED(model, ZVNgetdblattr(model, NULL, &d), ZVN_ERROR_NULL_ARGUMENT, "");
    REFUSED(model, ZVNgetvarbyname(model, NULL, &i), ZVN_ERROR_NULL_ARGUMENT, "");
    REFUSED(model, ZVNwrite(model, NULL), ZVN_ERROR_NULL_ARGUMENT, "");
    OK(model, ZVNupdatemodel(model));
    CHECK(int_attr(model, "NumVars") == 2 && int_attr(model, "NumConstrs") == 1 && int_attr(model, "NumNZs") == 2);
    CHECK(dbl_at(model, "UB", 0) >= ZVN_INFINITY);
}

static void bad_parameters(ZVNenv* env) {
    double d = 0;
    CHECK_CODE(ZVNsetintparam(env, "NoSuch", 1), ZVN_ERROR_UNKNOWN_PARAMETER, ZVNgeterrormsg(env));
    CHECK(strstr(ZVNgeterrormsg(env), "NoSuch"));
    CHECK_CODE(ZVNsetintparam(env, "Threads", -5), ZVN_ERROR_VALUE_OUT_OF_RANGE, ZVNgeterrormsg(env));
    CHECK(strstr(ZVNgeterrormsg(env), "Threads"));
    CHECK_CODE(ZVNsetdblparam(env, "TimeLimit", -1), ZVN_ERROR_VALUE_OUT_OF_RANGE, ZVNgeterrormsg(env));
    CHECK(ZVNsetdblparam(env, "MIPGap", NAN) != 0);
    CHECK(ZVNgetdblparaminfo(env, "Threads", &d, NULL, NULL, NULL) != 0);
    CHECK(ZVNgetparamtype(env, "NoSuch") < 0 && ZVNgetparamtype(env, NULL) < 0);
}

static void write_text(const char* path, const char* text) {
    FILE* stream = fopen(path, "wb");
    CHECK(stream != NULL);
    if (!stream) return;
    CHECK(fputs(text, stream) >= 0);
    CHECK(fclose(stream) == 0);
}

/* A file at fault gives a code, a sentence with its name, and no model. */
static void bad_file(ZVNenv* env, const char* path) {
    ZVNmodel* model = NULL;
    CHECK(ZVNreadmodel(env, path, &model) != 0);
    CHECK(model == NULL);
    if (!strstr(ZVNgeterrormsg(env), path)) {
        printf("'%s' isn't in: %s\n", path, ZVNgeterrormsg(env));
        failures++;
    }
}

static void bad_files(ZVNenv* env, ZVNmodel* model, const char* folder) {
    const char* contents[][2] = {
        {"empty.mps", ""},
        {"truncated.mps", "NAME a\nROWS\n N cost\n L row\nCOLUMNS\n x row\n"},
        {"noend.mps", "NAME a\nROWS\n N cost\n"},
        {"number.mps", "NAME a\nROWS\n N cost\n L row\nCOLUMNS\n x row 1..5\nENDATA\n"},
        {"unknownrow.mps", "NAME a\nROWS\n N cost\nCOLUMNS\n x nowhere 1\nENDATA\n"},
        {"binary.lp",
         "\x7f"
         "ELF\x01\x02\x03"},
        {"unfinished.lp", "Minimize\n x + \nSubject To\n c: x + y >="},
        {"notgzip.mps.gz", "NAME a\n"},
    };
    char path[4096];
    for (size_t k = 0; k < sizeof contents / sizeof *contents; k++) {
        snprintf(path, sizeof path, "%s/%s", folder, contents[k][0]);
        write_text(path, contents[k][1]);
        bad_file(env, path);
    }
    snprintf(path, sizeof path, "%s/missing.mps", folder);
    bad_file(env, path);
    bad_file(env, folder);
    snprintf(path, sizeof path, "%s/nofolder/small.mps", folder);
    REFUSED(model, ZVNwrite(model, path), ZVN_ERROR_FILE_WRITE, path);
    snprintf(path, sizeof path, "%s/small.unknownending", folder);
    CHECK(ZVNwrite(model, path) != 0 && ZVNread(model, path) != 0);
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    ZVNenv* env = NULL;
    CHECK(ZVNemptyenvadvinternal(NULL, 0, 10, 0, 3, NULL, NULL, NULL, NULL, 0, 0, NULL) == ZVN_ERROR_NULL_ARGUMENT);
    CHECK(ZVNemptyenvadvinternal(&env, 0, 9, 0, 3, NULL, NULL, NULL, NULL, 0, 0, NULL) == ZVN_ERROR_INVALID_ARGUMENT);
    CHECK(ZVNemptyenvadvinternal(&env, 0, 10, 0, 3, "host", NULL, NULL, NULL, 0, 0, NULL) == ZVN_ERROR_NOT_SUPPORTED);
    CHECK(env == NULL);

    env = silent_env();
    ZVNmodel* model = small(env);
    ZVNenv* own = ZVNgetenv(model);
    bad_arguments(model);
    bad_parameters(env);
    bad_files(env, model, argv[1]);
    ZVNfreeenv(own); /* not the caller's to free: nothing happens */
    OK(model, ZVNoptimize(model));
    ZVNfreemodel(model);
    ZVNfreeenv(env);
    unusable_model(NULL);
    unusable_model(model);
    unusable_env(NULL);
    unusable_env(env);
    unusable_env(own);
    return failures ? EXIT_FAILURE : EXIT_SUCCESS;
}
