#include "core/model_data.h"

#include <algorithm>
#include <cmath>

namespace zelvan {

namespace {

void extend(std::map<int, OptionalValues>& optional, int size) {
    for (auto& [attr, values] : optional) values.values.resize(size, values.unset);
}

double side(double value) { return std::fabs(value) >= kInfinityThreshold ? std::copysign(kInfinity, value) : value; }

}  // namespace

void Columns::push_back(double lower, double upper, double cost, char vtype, std::string_view name) {
    lb.push_back(side(lower));
    ub.push_back(side(upper));
    obj.push_back(cost);
    type.push_back(vtype);
    names.push_back(name);
    tags.resize(size());
    extend(optional, size());
}

std::pair<double, double> Rows::sides(int i) const {
    const double right = side(rhs[i]);
    switch (sense[i]) {
        case '<':
            return {-kInfinity, right};
        case '>':
            return {right, kInfinity};
        case 'R':
            return {side(lower[i]), right};
        default:
            return {right, right};
    }
}

void Rows::push_back(char row_sense, double right, std::string_view name) {
    start.push_back(static_cast<std::int64_t>(col.size()));
    sense.push_back(row_sense);
    rhs.push_back(right);
    if (!lower.empty()) lower.push_back(-kInfinity);
    names.push_back(name);
    tags.resize(size());
    extend(optional, size());
}

void Rows::push_back_range(double left, double right, std::string_view name) {
    lower.resize(size(), -kInfinity);
    push_back('R', right, name);
    lower.resize(size(), -kInfinity);
    lower.back() = left;
}

bool ModelData::is_mip() const {
    return std::any_of(cols.type.begin(), cols.type.end(), [](char type) { return type != 'C'; });
}

ColumnMajor ModelData::by_columns() const {
    const int num_cols = cols.size();
    ColumnMajor matrix;
    matrix.start.assign(num_cols + 1, 0);
    matrix.row.resize(rows.col.size());
    matrix.val.resize(rows.col.size());
    for (int j : rows.col) ++matrix.start[j + 1];
    for (int j = 0; j < num_cols; ++j) matrix.start[j + 1] += matrix.start[j];
    std::vector<std::int64_t> next(matrix.start.begin(), matrix.start.end() - 1);
    for (int i = 0; i < rows.size(); ++i) {
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) {
            const std::int64_t to = next[rows.col[k]]++;
            matrix.row[to] = i;
            matrix.val[to] = rows.val[k];
        }
    }
    return matrix;
}

std::string ModelData::col_name(int j) const {
    const char* name = cols.names.get(j);
    return name ? name : default_col_name(j);
}

std::string ModelData::row_name(int i) const {
    const char* name = rows.names.get(i);
    return name ? name : default_row_name(i);
}

void ModelData::drop_names() {
    cols.names.clear();
    cols.names.resize(cols.size());
    rows.names.clear();
    rows.names.resize(rows.size());
}

}  // namespace zelvan
