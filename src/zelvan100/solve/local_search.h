#pragma once
// Feasible points of problems with products.

#include <functional>
#include <memory>
#include <vector>

#include "solve/search.h"

namespace zelvan {

// Successive linear programs: products are replaced by their tangents at a point, and the step from one point to the
// next is held within a region that shrinks where the tangents mislead.
class LocalSearch {
public:
    // `problem` has products.
    LocalSearch(const Problem& problem, Context& context);
    ~LocalSearch();
    LocalSearch(const LocalSearch&) = delete;
    LocalSearch& operator=(const LocalSearch&) = delete;

    // From x, with its integers rounded, on. `offer` takes each point, its products made right, and tells whether the
    // model holds there.
    void run(std::vector<double> x, const std::function<bool(const std::vector<double>&)>& offer);

private:
    void set_tangents(const std::vector<double>& x);
    void set_region(const std::vector<double>& x, double part);
    double objective(const std::vector<double>& x) const;

    const std::vector<Product>& products_;
    const Problem& whole_;
    Problem problem_;
    Context& context_;
    std::unique_ptr<HighsSession> session_;
    std::shared_ptr<ConePool> cones_;
};

}  // namespace zelvan
