#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/model_data.h"
#include "io/io.h"

namespace zelvan {

// The names under which a writer shows columns, rows and sets: their own, or the default one where that can't stand
// in the format or stands for two. Warns where a name is replaced.
class WrittenNames {
public:
    using Holds = bool (*)(std::string_view name);
    WrittenNames(const ModelData& data, Holds holds, Holds holds_label, const char* format, const Warn& warn);

    std::string_view col(int j) const { return cols_.get(j); }
    std::string_view row(int i) const { return rows_.get(i); }
    std::string_view sos(int k) const { return sos_.get(k); }
    std::string_view quad_row(int i) const { return quad_rows_.get(i); }  // no row has it
    // "" when the model has none, or one that spans lines.
    std::string model_name() const { return model_name_; }
    // "" when the objective has none, or none that tells it from rows and other objectives.
    const std::string& objective(std::size_t k) const { return objectives_[k]; }
    // Whether a row or objective has the name.
    bool is_taken(std::string_view name) const;

private:
    void collect_objectives(const ModelData& data, Holds holds, std::string& fault);

    Names cols_, rows_, sos_, quad_rows_;
    std::vector<std::string> objectives_;
    std::string model_name_;
};

}  // namespace zelvan
