#include "io/quad_matrices.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/families.h"

namespace zelvan {

void MatrixReader::begin(int line, int owner, const std::string& name, const MatrixForm& form) {
    const auto [at, added] = matrices_.try_emplace(owner, Matrix{form, line, name, {}, {}});
    if (!added) source_.fail(line, "a second quadratic matrix of " + name);
    current_ = &at->second;
}

void MatrixReader::add(int line, int i, int j, double value) {
    const int low = std::min(i, j), high = std::max(i, j);
    const std::uint64_t pair = static_cast<std::uint64_t>(low) << 32 | static_cast<std::uint32_t>(high);
    const auto [at, added] = current_->place.try_emplace(pair, current_->entries.size());
    if (added) current_->entries.push_back({low, high, {0.0, 0.0}, {false, false}, line});
    Entry& entry = current_->entries[at->second];
    const int side = current_->form.whole && i > j ? 1 : 0;
    if (entry.given[side]) source_.fail(line, pair_text(i, j) + " have two entries in one matrix");
    entry.given[side] = true;
    entry.value[side] = value;
}

double MatrixReader::coefficient(const MatrixForm& form, const Entry& entry) const {
    const auto [one, other] = entry.value;
    if (entry.low == entry.high) return form.factor * one;
    if (!form.whole) return 2.0 * form.factor * one;
    // The halves of a number that is next to 0 may differ in its last digit.
    if (!(std::fabs(one - other) <= std::numeric_limits<double>::denorm_min()))
        source_.fail(entry.line, "the matrix is not symmetric in " + pair_text(entry.low, entry.high) +
                                     ", expected both entries of a pair");
    return form.factor * (one + other);
}

void MatrixReader::append_terms(const Matrix& matrix, QuadTerms& terms) const {
    for (const Entry& entry : matrix.entries) {
        const double value = coefficient(matrix.form, entry);
        if (!(std::fabs(value) < kInfinityThreshold))
            source_.fail(entry.line, "the entry of " + pair_text(entry.low, entry.high) + " is too large");
        if (value != 0.0) terms.push_back(entry.low, entry.high, value);
    }
}

void MatrixReader::settle(ModelData& data) const {
    Rows& rows = data.rows;
    std::vector<char> keep(rows.size(), 1);
    for (const auto& [owner, matrix] : matrices_) {
        if (owner == kObjective) {
            append_terms(matrix, data.quad_obj);
            continue;
        }
        if (rows.sense[owner] == 'R')
            source_.fail(matrix.line, matrix.owner + " has a range, which a quadratic constraint can't have");
        keep[owner] = 0;
        QuadRows& quadratic = data.qrows;
        const auto first = rows.start[owner], last = rows.start[owner + 1];
        quadratic.col.insert(quadratic.col.end(), rows.col.begin() + first, rows.col.begin() + last);
        quadratic.val.insert(quadratic.val.end(), rows.val.begin() + first, rows.val.begin() + last);
        append_terms(matrix, quadratic.quad);
        quadratic.push_back(rows.sense[owner], rows.rhs[owner], rows.names.has(owner) ? rows.names.get(owner) : "");
    }
    if (data.qrows.size() > 0) compact(rows, keep);
}

std::string MatrixReader::pair_text(int i, int j) const {
    return quoted(columns_.name(i)) + " and " + quoted(columns_.name(j));
}

}  // namespace zelvan
