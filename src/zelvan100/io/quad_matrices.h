#pragma once
// The quadratic matrices of MPS files, by the sections that hold them.

#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/model_data.h"
#include "io/name_table.h"
#include "io/source.h"

namespace zelvan {

struct MatrixForm {
    bool whole;     // both (i, j) and (j, i) are listed, otherwise one of them
    double factor;  // of x'Qx
};
// The sections QUADOBJ and QSECTION; QMATRIX; QCMATRIX.
inline constexpr MatrixForm kTriangleForm{false, 0.5}, kWholeForm{true, 0.5}, kRowForm{true, 1.0};

// Takes the matrices of a file one by one, each begun and then given its entries.
class MatrixReader {
public:
    MatrixReader(const Source& source, const NameTable& columns) : source_(source), columns_(columns) {}
    void begin_objective(int line, const MatrixForm& form) { begin(line, kObjective, "the objective", form); }
    // Of the row with that index in the model.
    void begin_row(int line, int row, std::string_view name, const MatrixForm& form) {
        begin(line, row, "row " + quoted(name), form);
    }
    // Of a row that the model leaves out.
    void begin_dropped(const MatrixForm& form) { current_ = &(dropped_ = {form, 0, {}, {}, {}}); }
    void add(int line, int i, int j, double value);
    // Gives the objective its terms, and makes quadratic constraints of the rows with a matrix.
    void settle(ModelData& data) const;

private:
    static constexpr int kObjective = -1;
    struct Entry {
        int low, high;    // columns in the order of their numbers
        double value[2];  // at (low, high), at (high, low)
        bool given[2];
        int line;
    };
    struct Matrix {
        MatrixForm form;
        int line;
        std::string owner;
        std::vector<Entry> entries;
        std::unordered_map<std::uint64_t, std::size_t> place;  // of a pair of columns
    };

    void begin(int line, int owner, const std::string& name, const MatrixForm& form);
    double coefficient(const MatrixForm& form, const Entry& entry) const;
    void append_terms(const Matrix& matrix, QuadTerms& terms) const;
    std::string pair_text(int i, int j) const;

    const Source& source_;
    const NameTable& columns_;
    std::map<int, Matrix> matrices_;  // by row, kObjective for the objective
    Matrix dropped_;
    Matrix* current_ = nullptr;
};

}  // namespace zelvan
