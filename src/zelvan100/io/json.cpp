#include "io/json.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "core/model.h"

namespace zelvan {

namespace {

void put_text(std::string& json, std::string_view text) {
    json += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            json += escaped;
        } else {
            json += c;
        }
    }
    json += '"';
}

// JSON has no infinities: they stand as +-1e100, the value that means infinite everywhere in the library.
void put_number(std::string& json, double value) {
    if (std::isinf(value)) value = std::copysign(kInfinity, value);
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    json.append(digits, end);
}

void put_field(std::string& json, const char* name, double value) {
    if (value == kUndefined) return;
    if (json.back() != '{') json += ", ";
    json += '"';
    json += name;
    json += "\": ";
    put_number(json, value);
}

}  // namespace

std::string json_solution(const Model& model) {
    const Solution& solution = model.solution;
    if (solution.status == ZVN_LOADED)
        throw Error(ZVN_ERROR_DATA_NOT_AVAILABLE, "The model has not been solved, so there is no solution to write");
    std::string json = "{\"SolutionInfo\": {";
    put_field(json, "Status", solution.status);
    put_field(json, "Runtime", solution.runtime);
    put_field(json, "Work", solution.work);
    put_field(json, "ObjVal", solution.obj_val);
    put_field(json, "ObjBound", solution.obj_bound);
    if (solution.is_mip) put_field(json, "MIPGap", solution.mip_gap);
    put_field(json, "IterCount", solution.iterations);
    put_field(json, "BarIterCount", solution.barrier_iterations);
    put_field(json, "NodeCount", solution.nodes);
    put_field(json, "SolCount", solution.count());
    json += '}';
    if (!solution.x.empty()) {
        json += ", \"Vars\": [";
        for (int j = 0; j < model.num_cols(); ++j) {
            if (j > 0) json += ", ";
            json += "{\"VarName\": ";
            put_text(json, model.data.col_name(j));
            json += ", \"X\": ";
            put_number(json, solution.x[j]);
            json += '}';
        }
        json += ']';
    }
    json += '}';
    return json;
}

}  // namespace zelvan
