#include "param/param.h"

#include <cmath>

#include "core/error.h"
#include "core/number_text.h"

namespace zelvan {

namespace {

constexpr const char* kTypeNames[] = {"", "an integer", "a double", "a string"};

// Also refuses NaN.
void check_range(const ParamSpec& spec, double value) {
    if (value >= spec.minimum && value <= spec.maximum) return;
    throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Value " + number_text(value) + " of parameter '" + spec.name +
                                                  "' is out of range [" + number_text(spec.minimum) + ", " +
                                                  number_text(spec.maximum) + "]");
}

}  // namespace

void check_param_type(int i, int type) {
    const ParamSpec& spec = param_spec(i);
    if (spec.type != type)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Parameter '") + spec.name + "' takes " +
                                                    kTypeNames[spec.type] + ", not " + kTypeNames[type]);
}

ParamValues::ParamValues() { reset(); }

void ParamValues::set_int(int i, int value) {
    check_param_type(i, 1);
    check_range(param_spec(i), value);
    numbers_[i] = value;
}

void ParamValues::set_dbl(int i, double value) {
    check_param_type(i, 2);
    if (std::fabs(value) > kInfinity) value = std::copysign(kInfinity, value);
    check_range(param_spec(i), value);
    numbers_[i] = value;
}

void ParamValues::set_str(int i, std::string value) {
    check_param_type(i, 3);
    auto texts = std::make_shared<std::vector<std::string>>(*texts_);
    (*texts)[i] = std::move(value);
    texts_ = std::move(texts);
}

bool ParamValues::is_default(int i) const {
    const ParamSpec& spec = param_spec(i);
    return spec.type == 3 ? (*texts_)[i] == spec.deflt_text : numbers_[i] == spec.deflt;
}

void ParamValues::reset() {
    std::vector<double> numbers;
    std::vector<std::string> texts;
    for (int i = 0; i < num_params(); ++i) {
        numbers.push_back(param_spec(i).deflt);
        texts.emplace_back(param_spec(i).deflt_text);
    }
    texts_ = std::make_shared<const std::vector<std::string>>(std::move(texts));
    numbers_ = std::move(numbers);
}

}  // namespace zelvan
