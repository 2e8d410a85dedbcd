// Adding, removing and finding columns, rows and sets; objectives.

#include <algorithm>

#include "api/guard.h"
#include "core/clean.h"

using namespace zelvan;

int ZVNaddvar(ZVNmodel* model, int numnz, const int* ind, const double* val, double obj, double lb, double ub,
              char vtype, const char* name) {
    return change_model(model, [&](Model& m) {
        if (numnz == 0) return m.add_cols(1, &obj, &lb, &ub, &vtype, &name);
        require(ind, "ind");
        require(val, "val");
        m.add_col(numnz, ind, val, obj, lb, ub, vtype, name);
    });
}

int ZVNaddvars(ZVNmodel* model, int numvars, int numnz, const int* beg, const int* ind, const double* val,
               const double* obj, const double* lb, const double* ub, const char* vtype, char* const* names) {
    return change_model(model, [&](Model& m) {
        if (numnz == 0) return m.add_cols(numvars, obj, lb, ub, vtype, names);
        require(beg, "beg");
        require(ind, "ind");
        require(val, "val");
        m.add_cols_with_entries(numvars, numnz, beg, ind, val, obj, lb, ub, vtype, names);
    });
}

int ZVNaddconstr(ZVNmodel* model, int numnz, const int* ind, const double* val, char sense, double rhs,
                 const char* name) {
    return change_model(model, [&](Model& m) {
        if (numnz > 0) {
            require(ind, "ind");
            require(val, "val");
        }
        m.add_row(numnz, ind, val, sense, rhs, name);
    });
}

int ZVNaddconstrs(ZVNmodel* model, int numconstrs, int numnz, const int* rbeg, const int* ind, const double* val,
                  const char* sense, const double* rhs, char* const* names) {
    return change_model(model, [&](Model& m) {
        if (numnz > 0) {
            require(rbeg, "rbeg");
            require(ind, "ind");
            require(val, "val");
        }
        if (numconstrs > 0) {
            require(sense, "sense");
            require(rhs, "rhs");
        }
        m.add_rows(numconstrs, numnz, rbeg, ind, val, sense, rhs, names);
    });
}

int ZVNaddrangeconstr(ZVNmodel* model, int numnz, const int* ind, const double* val, double lower, double upper,
                      const char* name) {
    return change_model(model, [&](Model& m) {
        if (numnz > 0) {
            require(ind, "ind");
            require(val, "val");
        }
        m.add_range_row(numnz, ind, val, lower, upper, name);
    });
}

namespace {

void require_quadratic(int num, const int* qrow, const int* qcol, const double* qval) {
    if (num <= 0) return;
    require(qrow, "qrow");
    require(qcol, "qcol");
    require(qval, "qval");
}

// `count` terms from `first` on, into those arrays that there are.
void get_quadratic(const QuadTerms& terms, std::int64_t first, int count, int* qrow, int* qcol, double* qval) {
    if (qrow) std::copy_n(terms.row.begin() + first, count, qrow);
    if (qcol) std::copy_n(terms.col.begin() + first, count, qcol);
    if (qval) std::copy_n(terms.val.begin() + first, count, qval);
}

}  // namespace

int ZVNaddqconstr(ZVNmodel* model, int numlnz, const int* lind, const double* lval, int numqnz, const int* qrow,
                  const int* qcol, const double* qval, char sense, double rhs, const char* name) {
    return change_model(model, [&](Model& m) {
        if (numlnz > 0) {
            require(lind, "lind");
            require(lval, "lval");
        }
        require_quadratic(numqnz, qrow, qcol, qval);
        m.add_quad_row(numlnz, lind, lval, numqnz, qrow, qcol, qval, sense, rhs, name);
    });
}

int ZVNgetqconstr(ZVNmodel* model, int qconstr, int* numlnz, int* lind, double* lval, int* numqnz, int* qrow, int* qcol,
                  double* qval) {
    return read_model(model, [&](Model& m) {
        require(numlnz, "numlnz");
        require(numqnz, "numqnz");
        const QuadRows& rows = m.data.qrows;
        if (qconstr < 0 || qconstr >= rows.size())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE,
                        "Quadratic constraint " + std::to_string(qconstr) + " is not in the model");
        const std::int64_t first = rows.start[qconstr];
        *numlnz = static_cast<int>(rows.start[qconstr + 1] - first);
        if (lind) std::copy_n(rows.col.begin() + first, *numlnz, lind);
        if (lval) std::copy_n(rows.val.begin() + first, *numlnz, lval);
        *numqnz = static_cast<int>(rows.quad_start[qconstr + 1] - rows.quad_start[qconstr]);
        get_quadratic(rows.quad, rows.quad_start[qconstr], *numqnz, qrow, qcol, qval);
    });
}

int ZVNclean2(int* numnz, int* ind, double* val) {
    if (!numnz || *numnz < 0 || (*numnz > 0 && (!ind || !val))) return ZVN_ERROR_NULL_ARGUMENT;
    try {
        *numnz = merge_terms(*numnz, ind, val);
    } catch (const std::bad_alloc&) {
        return ZVN_ERROR_OUT_OF_MEMORY;
    }
    return 0;
}

int ZVNclean3(int* numqnz, int* qrow, int* qcol, double* qval) {
    if (!numqnz || *numqnz < 0 || (*numqnz > 0 && (!qrow || !qcol || !qval))) return ZVN_ERROR_NULL_ARGUMENT;
    try {
        *numqnz = merge_quadratic_terms(*numqnz, qrow, qcol, qval);
    } catch (const std::bad_alloc&) {
        return ZVN_ERROR_OUT_OF_MEMORY;
    }
    return 0;
}

namespace {

// The entries of rows or sets start .. start+num-1; without ind or val only their number and starts.
void get_rows(const SparseRows& rows, int size, Kind kind, int* numnz, int* beg, int* ind, double* val, int start,
              int num) {
    require(numnz, "numnz");
    if (start < 0 || num < 0 || start > size - num)
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE,
                    std::string("Not all ") + spec_of(kind).plural + " from " + std::to_string(start) + " to " +
                        std::to_string(static_cast<long long>(start) + num - 1) + " are in the model");
    const std::int64_t first = rows.start[start], count = rows.start[start + num] - first;
    if (count > ZVN_MAXINT)
        throw Error(ZVN_ERROR_EXCEED_2B_NONZEROS, "The rows have more than 2 billion entries; ask for fewer rows");
    *numnz = static_cast<int>(count);
    if (beg)
        for (int i = 0; i < num; ++i) beg[i] = static_cast<int>(rows.start[start + i] - first);
    if (!ind || !val) return;
    std::copy_n(rows.col.begin() + first, count, ind);
    std::copy_n(rows.val.begin() + first, count, val);
}

int delete_objects(ZVNmodel* model, Kind kind, int num, const int* ind) {
    return change_model(model, [&](Model& m) {
        if (num < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of deletions is negative");
        if (num > 0) require(ind, "ind");
        m.delete_objects(kind, num, ind);
    });
}

}  // namespace

int ZVNdelvars(ZVNmodel* model, int num, const int* ind) { return delete_objects(model, Kind::kColumn, num, ind); }

int ZVNdelconstrs(ZVNmodel* model, int num, const int* ind) { return delete_objects(model, Kind::kRow, num, ind); }

int ZVNdelsos(ZVNmodel* model, int num, const int* ind) { return delete_objects(model, Kind::kSos, num, ind); }

int ZVNdelqconstrs(ZVNmodel* model, int num, const int* ind) { return delete_objects(model, Kind::kQuadRow, num, ind); }

int ZVNdelgenconstrs(ZVNmodel* model, int num, const int* ind) {
    return delete_objects(model, Kind::kGeneral, num, ind);
}

int ZVNaddsos(ZVNmodel* model, int numsos, int nummembers, const int* types, const int* beg, const int* ind,
              const double* weight) {
    return change_model(model, [&](Model& m) {
        if (numsos > 0) {
            require(types, "types");
            if (nummembers > 0) require(beg, "beg");
        }
        if (nummembers > 0) {
            require(ind, "ind");
            require(weight, "weight");
        }
        m.add_sos(numsos, nummembers, types, beg, ind, weight);
    });
}

int ZVNgetsos(ZVNmodel* model, int* nummembers, int* types, int* beg, int* ind, double* weight, int start, int num) {
    return read_model(model, [&](Model& m) {
        const SosSets& sos = m.data.sos;
        get_rows(sos, sos.size(), Kind::kSos, nummembers, beg, ind, weight, start, num);
        if (types) std::copy_n(sos.type.begin() + start, num, types);
    });
}

namespace {

int find_by_name(ZVNmodel* model, Kind kind, const char* name, int* index) {
    return read_model(model, [&](Model& m) {
        require(name, "name");
        require(index, "index");
        *index = m.find(kind, name);
    });
}

}  // namespace

int ZVNgetvarbyname(ZVNmodel* model, const char* name, int* index) {
    return find_by_name(model, Kind::kColumn, name, index);
}

int ZVNgetconstrbyname(ZVNmodel* model, const char* name, int* index) {
    return find_by_name(model, Kind::kRow, name, index);
}

int ZVNgetqconstrbyname(ZVNmodel* model, const char* name, int* index) {
    return find_by_name(model, Kind::kQuadRow, name, index);
}

int ZVNgetconstrs(ZVNmodel* model, int* numnz, int* beg, int* ind, double* val, int start, int num) {
    return read_model(
        model, [&](Model& m) { get_rows(m.data.rows, m.num_rows(), Kind::kRow, numnz, beg, ind, val, start, num); });
}

int ZVNsetobjective(ZVNmodel* model, int sense, double constant, int lnz, const int* lind, const double* lval, int qnz,
                    const int* qrow, const int* qcol, const double* qval) {
    return change_model(model, [&](Model& m) {
        if (lnz > 0) {
            require(lind, "lind");
            require(lval, "lval");
        }
        require_quadratic(qnz, qrow, qcol, qval);
        Objective fields;
        fields.constant = constant;
        m.set_objective(-1, sense, std::move(fields), lnz, lind, lval,
                        m.checked_quad("the objective", qnz, qrow, qcol, qval));
    });
}

int ZVNsetobjectiven(ZVNmodel* model, int index, int priority, double weight, double abstol, double reltol,
                     const char* name, double constant, int lnz, const int* lind, const double* lval) {
    return change_model(model, [&](Model& m) {
        if (index < 0 || index >= kMaxObjectives)
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Objective number " + std::to_string(index) +
                                                          " is not between 0 and " +
                                                          std::to_string(kMaxObjectives - 1));
        if (lnz > 0) {
            require(lind, "lind");
            require(lval, "lval");
        }
        Objective fields;
        fields.priority = priority;
        fields.weight = weight;
        fields.abs_tol = abstol;
        fields.rel_tol = reltol;
        fields.constant = constant;
        if (name) fields.name = name;
        m.set_objective(index, 0, std::move(fields), lnz, lind, lval);
    });
}

int ZVNgetq(ZVNmodel* model, int* qnz, int* qrow, int* qcol, double* qval) {
    return read_model(model, [&](Model& m) {
        require(qnz, "qnz");
        const QuadTerms& terms = m.data.quad_obj;
        *qnz = static_cast<int>(terms.size());
        get_quadratic(terms, 0, *qnz, qrow, qcol, qval);
    });
}

int ZVNsetpwlobj(ZVNmodel* model, int var, int count, const double* x, const double* y) {
    return change_model(model, [&](Model& m) {
        if (count < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of points is negative");
        if (count > 0) {
            require(x, "x");
            require(y, "y");
        }
        PwlPoints points(count);
        for (int k = 0; k < count; ++k) points[k] = {x[k], y[k]};
        m.set_pwl_obj(var, std::move(points));
    });
}

int ZVNgetpwlobj(ZVNmodel* model, int var, int* npoints, double* x, double* y) {
    return read_model(model, [&](Model& m) {
        require(npoints, "npoints");
        if (var < 0 || var >= m.num_cols())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Variable " + std::to_string(var) + " is not in the model");
        const auto found = m.data.pwl_obj.find(var);
        *npoints = found == m.data.pwl_obj.end() ? 0 : static_cast<int>(found->second.size());
        for (int k = 0; k < *npoints; ++k) {
            if (x) x[k] = found->second[k].first;
            if (y) y[k] = found->second[k].second;
        }
    });
}
