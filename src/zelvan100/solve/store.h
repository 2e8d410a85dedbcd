#pragma once

#include <vector>

#include "core/model_data.h"
#include "core/solution.h"
#include "param/param.h"
#include "solve/highs.h"

namespace zelvan {

// The status of a row of this sense as that of its slack (attribute CBasis), and back as that of the row.
int slack_status(int side_status, char sense);
int side_status(int slack_status, char sense);
// Fills the values of a solution, whose status and is_mip are set, in the terms of the model.
void store_result(const ModelData& data, SolverResult result, Solution& solution);
// Solutions of a MIP as they are found, in the columns of the model: the best ones, each once.
class Pool {
public:
    // `sense` is that of the model.
    Pool(std::size_t capacity, int sense) : capacity_(capacity), sense_(sense) {}
    void add(double objective, std::vector<double> x);
    bool wants(double objective) const;
    // Fills the pool of a solution, whose x comes first.
    void store(const ParamValues& params, Solution& solution);

private:
    struct Found {
        double objective;
        std::vector<double> x;
    };
    const std::size_t capacity_;
    const int sense_;
    std::vector<Found> found_;  // best first
};

}  // namespace zelvan
