#pragma once
// The parameters: one table, and the values of one environment.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelvan {

// Numbers of the parameters, in the order of the table in param/table.cpp.
enum class Param : int {
#define ZELVAN_PARAM(name) name,
#include "param/names.inc"
#undef ZELVAN_PARAM
};

struct ParamSpec {
    const char* name;
    int type;  // 1 int, 2 double, 3 string
    double minimum, maximum, deflt;
    const char* deflt_text;
    unsigned flags;
    const char* purpose;
    const char* effect;  // "" when nothing under the library honours it
};

inline constexpr unsigned kSilent = 16;
inline constexpr unsigned kOpaque = 32;

int num_params();
const ParamSpec& param_spec(int i);
// Number of the parameter of that name in any letter case, -1 when there is none.
int find_param(std::string_view name);
// Throws Error when parameter i is not of the type.
void check_param_type(int i, int type);

// Values of all parameters. The setters throw Error: value out of range, wrong type.
class ParamValues {
public:
    ParamValues();
    int get_int(Param p) const { return static_cast<int>(numbers_[static_cast<int>(p)]); }
    double get_dbl(Param p) const { return numbers_[static_cast<int>(p)]; }
    const std::string& get_str(Param p) const { return (*texts_)[static_cast<int>(p)]; }
    void set_int(int i, int value);
    void set_dbl(int i, double value);
    void set_str(int i, std::string value);
    bool is_default(int i) const;
    void reset();

private:
    std::vector<double> numbers_;
    std::shared_ptr<const std::vector<std::string>> texts_;  // shared by copies, as it hardly ever changes
};

}  // namespace zelvan
