// Memory that runs out at each allocation of a change to a model: the state is that before the call, or the one after
// it where the library could do without; the same call made again succeeds.
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"

namespace {

// Which allocation fails while `armed`: number `left`, and with `lasting` all those behind it.
struct {
    bool armed = false, lasting = false, failed = false;
    long left = 0;
} shortage;

void* allocate(std::size_t size) {
    if (shortage.armed) {
        const long left = shortage.left--;
        if (left == 0 || (left < 0 && shortage.lasting)) {
            shortage.failed = true;
            return nullptr;
        }
    }
    return std::malloc(size ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using Call = int (*)(ZVNmodel*);
using Base = ZVNmodel* (*)(ZVNenv*);

template <class Body>
int without_memory(long allocation, bool lasting, Body&& body) {
    shortage = {true, lasting, false, allocation};
    const int code = body();
    shortage.armed = false;
    return code;
}

// ---- What can be read of a model, as text

std::string text_of(double value) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

std::string value_of(ZVNmodel* model, const char* name, int type, int at) {
    char letter = 0, *text = nullptr;
    int number = 0;
    double value = 0.0;
    const bool whole = at < 0;
    switch (type) {
        case 0:
            OK(model, ZVNgetcharattrelement(model, name, at, &letter));
            return {letter};
        case 1:
            OK(model, whole ? ZVNgetintattr(model, name, &number) : ZVNgetintattrelement(model, name, at, &number));
            return std::to_string(number);
        case 2:
            OK(model, whole ? ZVNgetdblattr(model, name, &value) : ZVNgetdblattrelement(model, name, at, &value));
            return text_of(value);
        default:
            OK(model, whole ? ZVNgetstrattr(model, name, &text) : ZVNgetstrattrelement(model, name, at, &text));
            return text;
    }
}

std::string attributes(ZVNmodel* model) {
    const char* const sizes[] = {nullptr, "NumVars", "NumConstrs", "NumSOS", "NumQConstrs", "NumGenConstrs"};
    std::string state;
    for (int i = 0; i < ZVNgetnumattributes(model); ++i) {
        char* name = nullptr;
        int type = 0, kind = 0, settable = 0;
        OK(model, ZVNgetattrname(model, i, &name));
        OK(model, ZVNgetattrinfo(model, name, &type, &kind, &settable));
        if (!ZVNisattravailable(model, name)) continue;
        if (name == std::string_view("Runtime") || name == std::string_view("Work")) continue;
        state += std::string("\n") + name;
        const int count = kind ? int_attr(model, sizes[kind]) : 0;
        if (kind == 0) state += " " + value_of(model, name, type, -1);
        for (int at = 0; at < count; ++at) state += " " + value_of(model, name, type, at);
    }
    return state;
}

std::string rows(ZVNmodel* model) {
    const int count = int_attr(model, "NumConstrs");
    int entries = 0;
    OK(model, ZVNgetconstrs(model, &entries, nullptr, nullptr, nullptr, 0, count));
    std::vector<int> beg(count + 1), ind(entries + 1);
    std::vector<double> val(entries + 1);
    OK(model, ZVNgetconstrs(model, &entries, beg.data(), ind.data(), val.data(), 0, count));
    std::string state = "\nrows";
    for (int i = 0; i < count; ++i) state += " " + std::to_string(beg[i]);
    for (int k = 0; k < entries; ++k) state += " " + std::to_string(ind[k]) + ":" + text_of(val[k]);
    return state;
}

std::string sets(ZVNmodel* model) {
    const int count = int_attr(model, "NumSOS");
    int members = 0;
    OK(model, ZVNgetsos(model, &members, nullptr, nullptr, nullptr, nullptr, 0, count));
    std::vector<int> types(count + 1), beg(count + 1), ind(members + 1);
    std::vector<double> weights(members + 1);
    OK(model, ZVNgetsos(model, &members, types.data(), beg.data(), ind.data(), weights.data(), 0, count));
    std::string state = "\nsets";
    for (int i = 0; i < count; ++i) state += " " + std::to_string(types[i]) + "@" + std::to_string(beg[i]);
    for (int k = 0; k < members; ++k) state += " " + std::to_string(ind[k]) + ":" + text_of(weights[k]);
    return state;
}

std::string quadratic_terms(int count, const int* row, const int* col, const double* val) {
    std::string state;
    for (int k = 0; k < count; ++k)
        state += " " + std::to_string(row[k]) + "*" + std::to_string(col[k]) + ":" + text_of(val[k]);
    return state;
}

std::string quadratic(ZVNmodel* model) {
    int row[9], col[9], ind[9], count = 0, entries = 0;
    double val[9], linear[9];
    OK(model, ZVNgetq(model, &count, row, col, val));
    std::string state = "\nquadratic" + quadratic_terms(count, row, col, val);
    for (int i = 0; i < int_attr(model, "NumQConstrs"); ++i) {
        OK(model, ZVNgetqconstr(model, i, &entries, ind, linear, &count, row, col, val));
        state += " |";
        for (int k = 0; k < entries; ++k) state += " " + std::to_string(ind[k]) + ":" + text_of(linear[k]);
        state += quadratic_terms(count, row, col, val);
    }
    return state;
}

std::string found_names(ZVNmodel* model) {
    std::string state = "\nfound";
    for (const char* name :
         {"x", "y", "z", "renamed", "extra", "many1", "r0", "r1", "r2", "row", "rows1", "range", "q1"}) {
        int col = -2, row = -2, quadratic = -2;
        OK(model, ZVNgetvarbyname(model, name, &col));
        OK(model, ZVNgetconstrbyname(model, name, &row));
        OK(model, ZVNgetqconstrbyname(model, name, &quadratic));
        state += " " + std::to_string(col) + "/" + std::to_string(row) + "/" + std::to_string(quadratic);
    }
    return state;
}

std::string points(ZVNmodel* model) {
    std::string state = "\npoints";
    for (int j = 0; j < int_attr(model, "NumVars"); ++j) {
        int count = 0;
        OK(model, ZVNgetpwlobj(model, j, &count, nullptr, nullptr));
        std::vector<double> x(count + 1), y(count + 1);
        OK(model, ZVNgetpwlobj(model, j, &count, x.data(), y.data()));
        state += " |";
        for (int k = 0; k < count; ++k) state += " " + text_of(x[k]) + "," + text_of(y[k]);
    }
    return state;
}

std::string describe(ZVNmodel* model) {
    std::string state;
    for (int objective = 0; objective < std::max(1, int_attr(model, "NumObj")); ++objective) {
        OK(model, ZVNsetintparam(ZVNgetenv(model), "ObjNumber", objective));
        state += attributes(model);
    }
    OK(model, ZVNsetintparam(ZVNgetenv(model), "ObjNumber", 0));
    return state + rows(model) + sets(model) + quadratic(model) + found_names(model) + points(model);
}

// ---- The changes

char* text(const char* literal) { return const_cast<char*>(literal); }

const char kLong[] = "a text that is longer than what a string holds without memory of its own";

struct Change {
    const char* name;
    Call call;
};

const int kAll[] = {0, 1, 2};
const double kNumbers[] = {1, 2, 3};

// Three columns, three rows and a set.
ZVNmodel* unsolved_model(ZVNenv* env) {
    ZVNmodel* model = nullptr;
    const double obj[] = {5, 4, 3}, ub[] = {4, 4, 4};
    char* cols[] = {text("x"), text("y"), text("z")};
    CHECK_CODE(ZVNnewmodel(env, &model, "base", 3, obj, nullptr, ub, nullptr, cols), 0, ZVNgeterrormsg(env));
    const int beg[] = {0, 3, 6}, ind[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
    const double val[] = {2, 3, 1, 4, 1, 2, 3, 4, 2}, rhs[] = {5, 11, 8};
    char* names[] = {text("r0"), text("r1"), text("r2")};
    OK(model, ZVNaddconstrs(model, 3, 9, beg, ind, val, "<<<", rhs, names));
    OK(model, ZVNsetintattr(model, "ModelSense", ZVN_MAXIMIZE));
    const int type = 2;
    OK(model, ZVNaddsos(model, 1, 3, &type, beg, ind, rhs));
    OK(model, ZVNsetstrattrelement(model, "VTag", 1, "tag"));
    return model;
}

ZVNmodel* linear_model(ZVNenv* env) {
    ZVNmodel* model = unsolved_model(env);
    OK(model, ZVNoptimize(model));
    return model;
}

// With a quadratic objective and two quadratic constraints.
ZVNmodel* quadratic_model(ZVNenv* env) {
    ZVNmodel* model = unsolved_model(env);
    OK(model, ZVNsetobjective(model, 0, 0, 3, kAll, kNumbers, 3, kAll, kAll, kNumbers));
    for (const char* name : {"q0", "q1"})
        OK(model, ZVNaddqconstr(model, 2, kAll, kNumbers, 3, kAll, kAll, kNumbers, ZVN_LESS_EQUAL, 9, name));
    OK(model, ZVNupdatemodel(model));
    return model;
}

const Change kChanges[] = {
    {"ZVNaddvar", [](ZVNmodel* m) { return ZVNaddvar(m, 3, kAll, kNumbers, 1, -1, 7, ZVN_INTEGER, "extra"); }},
    {"ZVNaddvars",
     [](ZVNmodel* m) {
         const int beg[] = {0, 1, 3}, ind[] = {2, 0, 1};
         char* names[] = {text("many0"), text("many1"), text(kLong)};
         return ZVNaddvars(m, 3, 3, beg, ind, kNumbers, kNumbers, nullptr, kNumbers, "CIB", names);
     }},
    {"ZVNaddconstr", [](ZVNmodel* m) { return ZVNaddconstr(m, 3, kAll, kNumbers, ZVN_GREATER_EQUAL, 1, "row"); }},
    {"ZVNaddconstrs",
     [](ZVNmodel* m) {
         const int beg[] = {0, 2}, ind[] = {2, 0, 1};
         char* names[] = {text(kLong), text("rows1")};
         return ZVNaddconstrs(m, 2, 3, beg, ind, kNumbers, "<=", kNumbers, names);
     }},
    {"ZVNaddrangeconstr", [](ZVNmodel* m) { return ZVNaddrangeconstr(m, 3, kAll, kNumbers, 1, 9, "range"); }},
    {"ZVNdelvars", [](ZVNmodel* m) { return ZVNdelvars(m, 1, kAll + 1); }},
    {"ZVNdelconstrs", [](ZVNmodel* m) { return ZVNdelconstrs(m, 2, kAll); }},
    {"ZVNsetobjective",
     [](ZVNmodel* m) { return ZVNsetobjective(m, 1, 2.5, 3, kAll, kNumbers, 0, nullptr, nullptr, nullptr); }},
    {"ZVNsetobjectiven",
     [](ZVNmodel* m) { return ZVNsetobjectiven(m, 2, 3, 0.5, 0.1, 0.1, kLong, 1.5, 3, kAll, kNumbers); }},
    {"ZVNsetpwlobj", [](ZVNmodel* m) { return ZVNsetpwlobj(m, 2, 3, kNumbers, kNumbers); }},
    {"bounds", [](ZVNmodel* m) { return ZVNsetdblattrlist(m, "UB", 3, kAll, kNumbers); }},
    {"types", [](ZVNmodel* m) { return ZVNsetcharattrlist(m, "VType", 3, kAll, "BCI"); }},
    {"senses", [](ZVNmodel* m) { return ZVNsetcharattrlist(m, "Sense", 3, kAll, "=>="); }},
    {"right-hand side", [](ZVNmodel* m) { return ZVNsetdblattrelement(m, "RHS", 1, 8.5); }},
    {"starts", [](ZVNmodel* m) { return ZVNsetdblattrlist(m, "Start", 3, kAll, kNumbers); }},
    {"hints", [](ZVNmodel* m) { return ZVNsetintattrlist(m, "BranchPriority", 3, kAll, kAll); }},
    {"names of columns",
     [](ZVNmodel* m) {
         char* names[] = {text("renamed"), text(kLong), text("x")};
         return ZVNsetstrattrlist(m, "VarName", 3, kAll, names);
     }},
    {"name of a row", [](ZVNmodel* m) { return ZVNsetstrattrelement(m, "ConstrName", 1, kLong); }},
    {"tag of a column", [](ZVNmodel* m) { return ZVNsetstrattrelement(m, "VTag", 1, kLong); }},
    {"tag of a row", [](ZVNmodel* m) { return ZVNsetstrattrelement(m, "CTag", 1, kLong); }},
    {"name of the model", [](ZVNmodel* m) { return ZVNsetstrattr(m, "ModelName", kLong); }},
    {"ZVNaddsos",
     [](ZVNmodel* m) {
         const int types[] = {1, 2}, beg[] = {0, 2};
         const int members[] = {0, 1, 0, 1, 2};
         const double weights[] = {1, 2, 1, 2, 3};
         return ZVNaddsos(m, 2, 5, types, beg, members, weights);
     }},
    {"ZVNdelsos", [](ZVNmodel* m) { return ZVNdelsos(m, 1, kAll); }},
    {"name of an objective", [](ZVNmodel* m) { return ZVNsetstrattr(m, "ObjNName", kLong); }},
    {"weight of an objective", [](ZVNmodel* m) { return ZVNsetdblattr(m, "ObjNWeight", 2.5); }},
    {"constant", [](ZVNmodel* m) { return ZVNsetdblattr(m, "ObjCon", 4.5); }},
};

int add_products(ZVNmodel* m) {
    const int row[] = {2, 1, 1, 0}, col[] = {0, 1, 1, 2};
    const double val[] = {1, 2, 3, 4};
    return ZVNaddqconstr(m, 2, kAll, kNumbers, 4, row, col, val, ZVN_EQUAL, 1, "row");
}

const Change kQuadraticChanges[] = {
    {"ZVNaddqconstr", add_products},
    {"ZVNaddqconstr again", add_products},
    {"ZVNaddvar", kChanges[0].call},
    {"ZVNdelvars", [](ZVNmodel* m) { return ZVNdelvars(m, 1, kAll + 1); }},
    {"ZVNdelqconstrs", [](ZVNmodel* m) { return ZVNdelqconstrs(m, 1, kAll); }},
    {"quadratic objective",
     [](ZVNmodel* m) { return ZVNsetobjective(m, 1, 2.5, 3, kAll, kNumbers, 2, kAll, kAll + 1, kNumbers); }},
    {"linear objective",
     [](ZVNmodel* m) { return ZVNsetobjective(m, 1, 2.5, 3, kAll, kNumbers, 0, nullptr, nullptr, nullptr); }},
    {"senses", [](ZVNmodel* m) { return ZVNsetcharattrlist(m, "QCSense", 2, kAll, "=>"); }},
    {"right-hand side", [](ZVNmodel* m) { return ZVNsetdblattrelement(m, "QCRHS", 1, 8.5); }},
    {"names",
     [](ZVNmodel* m) {
         char* names[] = {text("renamed"), text(kLong)};
         return ZVNsetstrattrlist(m, "QCName", 2, kAll, names);
     }},
    {"tag", [](ZVNmodel* m) { return ZVNsetstrattrelement(m, "QCTag", 1, kLong); }},
    {"forces", [](ZVNmodel* m) { return ZVNsetintattrlist(m, "IISQConstrForce", 2, kAll, kAll); }},
};

// ---- The tests

void check_state(ZVNmodel* model, const std::string& expected, const char* change, const char* when, long allocation) {
    const std::string state = describe(model);
    if (state == expected) return;
    failures++;
    std::size_t at = 0;
    while (at < state.size() && at < expected.size() && state[at] == expected[at]) ++at;
    const auto line = [at](const std::string& text) {
        const std::size_t start = text.rfind('\n', at) + 1;
        return text.substr(start, text.find('\n', start) - start);
    };
    printf("%s, %s, allocation %ld:\n  expected %s\n  found    %s\n", change, when, allocation, line(expected).c_str(),
           line(state).c_str());
}

// What the solver, which follows the changes of the model that it holds, makes of it.
std::string answer(ZVNmodel* model) {
    if (const int code = ZVNoptimize(model)) return "refused with " + std::to_string(code);
    const int status = int_attr(model, "Status");
    double objective = 0.0;
    if (status == ZVN_OPTIMAL) OK(model, ZVNgetdblattr(model, "ObjVal", &objective));
    char buffer[64];
    snprintf(buffer, sizeof buffer, "status %d, objective %.9g", status, objective);
    return buffer;
}

// The state after the changes and their update, and the answer from there.
struct End {
    std::string state, answer;
};

End end_of(ZVNenv* env, Base base_model, const std::vector<Change>& changes) {
    ZVNmodel* model = base_model(env);
    for (const Change& change : changes) OK(model, change.call(model));
    OK(model, ZVNupdatemodel(model));
    End end{describe(model), {}};
    end.answer = answer(model);
    ZVNfreemodel(model);
    return end;
}

// Each allocation of the call that queues a change. Half of the runs update before they call again: what a failed call
// left behind would show there, and in the others as done twice.
void fail_in_call(ZVNenv* env, Base base_model, const Change& change, bool lasting) {
    const std::string before = end_of(env, base_model, {}).state, after = end_of(env, base_model, {change}).state;
    for (long allocation = 0;; ++allocation) {
        ZVNmodel* model = base_model(env);
        const int code = without_memory(allocation, lasting, [&] { return change.call(model); });
        const bool done = !shortage.failed;
        if (code) {
            CHECK(code == ZVN_ERROR_OUT_OF_MEMORY);
            check_state(model, before, change.name, "after the failed call", allocation);
            if (lasting) {
                OK(model, ZVNupdatemodel(model));
                check_state(model, before, change.name, "after the update without it", allocation);
            }
            OK(model, change.call(model));
        }
        OK(model, ZVNupdatemodel(model));
        check_state(model, after, change.name, "after the update", allocation);
        ZVNfreemodel(model);
        if (done) return;
    }
}

// Each allocation of the update.
void fail_in_update(ZVNenv* env, Base base_model, const char* name, const std::vector<Change>& changes, bool lasting) {
    const std::string before = end_of(env, base_model, {}).state;
    const End after = end_of(env, base_model, changes);
    for (long allocation = 0;; ++allocation) {
        ZVNmodel* model = base_model(env);
        for (const Change& change : changes) OK(model, change.call(model));
        const int code = without_memory(allocation, lasting, [&] { return ZVNupdatemodel(model); });
        const bool done = !shortage.failed;
        if (code) {
            CHECK(code == ZVN_ERROR_OUT_OF_MEMORY);
            check_state(model, before, name, "after the failed update", allocation);
            OK(model, ZVNupdatemodel(model));
        }
        check_state(model, after.state, name, "after the update", allocation);
        // Solving takes its time, so only after one kind of failure.
        if (const std::string found = lasting ? after.answer : answer(model); found != after.answer) {
            failures++;
            printf("%s, allocation %ld:\n  expected %s\n  found    %s\n", name, allocation, after.answer.c_str(),
                   found.c_str());
        }
        ZVNfreemodel(model);
        if (done) return;
    }
}

void fail_in_all(ZVNenv* env, Base base_model, const std::vector<Change>& changes, bool lasting) {
    for (const Change& change : changes) {
        fail_in_call(env, base_model, change, lasting);
        fail_in_update(env, base_model, change.name, {change}, lasting);
    }
    fail_in_update(env, base_model, "all changes", changes, lasting);
}

}  // namespace

int main() {
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);  // what was found stays when a fault ends the program
    ZVNenv* env = silent_env();
    for (bool lasting : {false, true}) {
        fail_in_all(env, linear_model, {std::begin(kChanges), std::end(kChanges)}, lasting);
        fail_in_all(env, quadratic_model, {std::begin(kQuadraticChanges), std::end(kQuadraticChanges)}, lasting);
    }
    ZVNfreeenv(env);
    return failures != 0;
}
