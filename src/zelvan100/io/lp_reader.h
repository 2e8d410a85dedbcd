#pragma once
// The reader of LP files. Its expressions and objectives are in lp_expressions.cpp.

#include <cstdint>
#include <string_view>
#include <vector>

#include "io/lp.h"
#include "io/name_table.h"

namespace zelvan {

// What an expression holds besides its terms, which go into the row under construction.
struct Expression {
    bool any = false;
    bool has_terms = false;
    double constant = 0.0;
};

class LpReader {
public:
    LpReader(const Source& source, const Warn& warn) : source_(source), warn_(warn), lexer_(source.text) {}
    ModelData read();

private:
    void read_model_name();
    void read_sections();
    void objective();
    std::vector<double> take_objective();
    void objective_among_several();
    void pwl_terms();
    PwlPoints pwl_points();
    void expect(std::string_view text);
    void constraints();
    void constraint();
    void bounds();
    void bound();
    void set_bound(int col, LpToken op, double value, bool value_first);
    void types(void (LpReader::*set_type)(int col));
    void make_integer(int col);
    void make_binary(int col);
    void make_semicontinuous(int col);
    void sets();

    Expression expression(double scale, bool several_lines);
    void add_term(std::string_view name, double coeff);
    void bracket(double factor);
    void product(double coeff);
    int factor_column();
    QuadTerms take_products();
    void close_quad_row(std::string_view name, char sense, double rhs);
    void close_row(std::string_view name, double lower, double upper);
    void one_sided(int line, std::string_view name, LpToken op, double rhs);
    bool at_operator() const;
    LpToken take_operator();
    bool at_value() const;
    double value(const char* what);
    int new_column(std::string_view name);
    int known_column(std::string_view name);
    [[noreturn]] void unexpected(const char* expected) const;
    void settle();

    const Source& source_;
    const Warn& warn_;
    LpLexer lexer_;
    ModelData out_;
    std::string_view objective_label_;
    NameTable col_names_, row_names_;
    std::vector<std::int64_t> entry_;  // by column: its entry in the current row, or -1
    QuadTerms products_;               // of the brackets in the expression at the cursor, as they come
    bool has_bracket_ = false;         // there was one, perhaps without products
    std::vector<std::uint8_t> bound_flags_;
};

}  // namespace zelvan
