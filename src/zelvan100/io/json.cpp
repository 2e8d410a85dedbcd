#include "io/json.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "core/model.h"
#include "io/number.h"
#include "io/source.h"

namespace zelvan {

namespace {

void put_escape(std::string& json, unsigned code) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", code);
    json += escape;
}

// Bytes that are not UTF-8 stand as U+DC00 and their value, as Python's "surrogateescape" does and undoes.
void put_text(std::string& json, std::string_view text) {
    json += '"';
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        const std::size_t length = character_length(text);
        if (length == 0 || first < 0x20) {
            put_escape(json, length == 0 ? 0xDC00u + first : first);
        } else {
            if (first == '"' || first == '\\') json += '\\';
            json += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    json += '"';
}

// JSON has no infinities: they stand as +-1e100, the value that means infinite everywhere in the library.
void put_number(std::string& json, double value) {
    if (std::isinf(value)) value = std::copysign(kInfinity, value);
    append_number(json, value);
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
