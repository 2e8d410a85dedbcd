#pragma once
// A problem with a quadratic objective in the shapes that the methods of HiGHS take.

#include <vector>

#include "core/model_data.h"
#include "solve/problem.h"

namespace zelvan {

// Minimized, and without free rows. Its columns are those of the problem, further ones behind them.
class Reshaped {
public:
    enum class Shape {
        kActiveSet,  // with a column more that no bound stops
        kTwoSided,   // with a column for each row with two sides: next to free rows HiPO breaks on them
        kSquares,    // and with a column for each square of the objective
    };
    Reshaped(const Problem& original, Shape shape);

    const Problem& problem() const { return problem_; }
    // Multipliers of the rows of the original.
    std::vector<double> multipliers(const std::vector<double>& pi) const;

private:
    const Problem& original_;
    std::vector<int> rows_;  // of the original, that are rows of this
    const ModelData model_;
    const Problem problem_;
};

}  // namespace zelvan
