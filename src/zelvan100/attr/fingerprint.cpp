#include <bit>
#include <cstdint>

#include "attr/readers.h"

namespace zelvan {

namespace {

// Finalizer of splitmix64 (Steele, Lea, Flood 2014).
std::uint64_t mix(std::uint64_t h) {
    h = (h ^ (h >> 30)) * 0xbf58476d1ce4e5b9u;
    h = (h ^ (h >> 27)) * 0x94d049bb133111ebu;
    return h ^ (h >> 31);
}

struct Hash {
    std::uint64_t value = 0x9e3779b97f4a7c15u;

    void add(std::uint64_t word) { value = mix(value ^ word) + 0x9e3779b97f4a7c15u; }
    void add(double number) { add(std::bit_cast<std::uint64_t>(number + 0.0)); }  // -0.0 counts as 0.0
    void add(const std::vector<double>& numbers) {
        for (double number : numbers) add(number);
    }
};

// The order of the entries within a row doesn't matter.
std::uint64_t row_hash(const SparseRows& rows, int i) {
    std::uint64_t sum = 0;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) {
        Hash entry;
        entry.add(static_cast<std::uint64_t>(rows.col[k]));
        entry.add(rows.val[k]);
        sum += entry.value;
    }
    return sum;
}

std::uint64_t quad_hash(const QuadTerms& terms, std::size_t begin, std::size_t end) {
    std::uint64_t sum = 0;
    for (std::size_t k = begin; k < end; ++k) {
        Hash term;
        term.add(static_cast<std::uint64_t>(terms.row[k]));
        term.add(static_cast<std::uint64_t>(terms.col[k]));
        term.add(terms.val[k]);
        sum += term.value;
    }
    return sum;
}

}  // namespace

// Depends on what the model says, not on names, parameters, starts or hints.
double fingerprint(const Model& m) {
    const ModelData& data = m.data;
    Hash hash;
    hash.add(static_cast<std::uint64_t>(data.sense) + 1);
    hash.add(data.obj_constant);
    hash.add(static_cast<std::uint64_t>(data.cols.size()));
    hash.add(static_cast<std::uint64_t>(data.rows.size()));
    hash.add(data.cols.lb);
    hash.add(data.cols.ub);
    hash.add(data.cols.obj);
    for (char type : data.cols.type) hash.add(static_cast<std::uint64_t>(type));
    for (int i = 0; i < data.rows.size(); ++i) {
        const auto [lower, upper] = data.rows.sides(i);
        hash.add(lower);
        hash.add(upper);
        hash.add(row_hash(data.rows, i));
    }
    for (int k = 0; k < data.sos.size(); ++k) {
        hash.add(static_cast<std::uint64_t>(data.sos.type[k]));
        hash.add(row_hash(data.sos, k));
    }
    hash.add(quad_hash(data.quad_obj, 0, data.quad_obj.size()));
    for (int i = 0; i < data.qrows.size(); ++i) {
        hash.add(static_cast<std::uint64_t>(data.qrows.sense[i]));
        hash.add(data.qrows.rhs[i]);
        hash.add(row_hash(data.qrows, i));
        hash.add(quad_hash(data.qrows.quad, data.qrows.quad_start[i], data.qrows.quad_start[i + 1]));
    }
    for (std::size_t k = 0; k < data.objectives.size(); ++k) {
        const Objective& objective = data.objectives[k];
        hash.add(static_cast<std::uint64_t>(static_cast<std::int64_t>(objective.priority)));
        hash.add({objective.weight, objective.abs_tol, objective.rel_tol, k ? objective.constant : 0.0});
        for (std::size_t e = 0; e < objective.coeff.col.size(); ++e) {
            hash.add(static_cast<std::uint64_t>(objective.coeff.col[e]));
            hash.add(objective.coeff.val[e]);
        }
    }
    for (const auto& [col, points] : data.pwl_obj) {
        hash.add(static_cast<std::uint64_t>(col));
        for (const auto& [x, y] : points) hash.add({x, y});
    }
    return static_cast<std::int32_t>(hash.value ^ (hash.value >> 32));
}

}  // namespace zelvan
