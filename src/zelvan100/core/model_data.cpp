#include "core/model_data.h"

#include <algorithm>
#include <cmath>

namespace zelvan {

void Columns::push_back(double lower, double upper, double cost, char vtype, std::string_view name) {
    lb.push_back(clipped(lower));
    ub.push_back(clipped(upper));
    obj.push_back(cost);
    type.push_back(vtype);
    names.push_back(name);
    tags.resize(size());
    optional.resize(size());
}

void Rows::push_back(char row_sense, double right, std::string_view name) {
    close_row();
    sense.push_back(row_sense);
    rhs.push_back(right);
    lower.push_back(-kInfinity);
    names.push_back(name);
    tags.resize(size());
    optional.resize(size());
}

void Rows::push_back_range(double left, double right, std::string_view name) {
    push_back('R', right, name);
    lower.back() = left;
}

void SosSets::push_back(int sos_type, std::string_view name) {
    close_row();
    type.push_back(static_cast<char>(sos_type));
    names.push_back(name);
    tags.resize(size());
    optional.resize(size());
}

void QuadRows::push_back(char row_sense, double right, std::string_view name) {
    close_row();
    quad_start.push_back(static_cast<std::int64_t>(quad.size()));
    sense.push_back(row_sense);
    rhs.push_back(right);
    names.push_back(name);
    tags.resize(size());
    optional.resize(size());
}

int Families::size(Kind kind) const {
    int size = 0;
    for_each_family(*this, [&](const auto& family) {
        if (family.kKind == kind) size = family.size();
    });
    return size;
}

bool Families::has_objects() const {
    bool any = false;
    for_each_family(*this, [&](const auto& family) { any = any || family.size() > 0; });
    return any;
}

const Identity& Families::family(Kind kind) const {
    const Identity* found = &cols;
    for_each_family(*this, [&](const auto& family) {
        if (family.kKind == kind) found = &family;
    });
    return *found;
}

Identity& Families::family(Kind kind) {
    return const_cast<Identity&>(static_cast<const Families*>(this)->family(kind));
}

const char* point_fault(const PwlPoints& points, std::size_t k) {
    const auto [x, y] = points[k];
    if (!(std::abs(x) < kInfinityThreshold && std::abs(y) < kInfinityThreshold)) return "is not finite";
    if (k > 0 && x < points[k - 1].first) return "lies left of the point before it";
    return k > 1 && x == points[k - 2].first ? "is the third with the same x" : nullptr;
}

bool ModelData::is_mip() const {
    return sos.size() > 0 || std::any_of(cols.type.begin(), cols.type.end(), [](char type) { return type != 'C'; });
}

ColumnMajor by_columns(const SparseRows& rows, int num_cols) {
    ColumnMajor matrix;
    matrix.start.assign(num_cols + 1, 0);
    matrix.row.resize(rows.col.size());
    matrix.val.resize(rows.col.size());
    for (int j : rows.col) ++matrix.start[j + 1];
    for (int j = 0; j < num_cols; ++j) matrix.start[j + 1] += matrix.start[j];
    std::vector<std::int64_t> next(matrix.start.begin(), matrix.start.end() - 1);
    for (std::size_t i = 0; i + 1 < rows.start.size(); ++i) {
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) {
            const std::int64_t to = next[rows.col[k]]++;
            matrix.row[to] = static_cast<int>(i);
            matrix.val[to] = rows.val[k];
        }
    }
    return matrix;
}

std::string ModelData::name_of(Kind kind, int i) const {
    const char* name = family(kind).names.get(i);
    return name ? name : default_name(kind, i);
}

void ModelData::drop_names() {
    for_each_family(*this, [](auto& family) {
        family.names.clear();
        family.names.resize(family.size());
    });
}

}  // namespace zelvan
