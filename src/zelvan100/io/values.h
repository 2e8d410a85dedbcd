#pragma once
// Files of one value for each column: lines of name and number, the number being the last word, so that a
// name may hold blanks; lines that start with '#' are comments.

#include <string>
#include <vector>

#include "core/model.h"

namespace zelvan {

// A solution (.sol), with its objective value in a comment.
void write_solution(const ModelData& data, const std::vector<double>& x, double objective, const std::string& path);
void write_solution(Model& model, const std::string& path);
// A start (.mst): the solution, or without one the values of attribute Start.
void write_start(Model& model, const std::string& path);
// Branching priorities (.ord) that are not 0.
void write_priorities(Model& model, const std::string& path);

// These queue the values as attribute Start or BranchPriority. Names that the model doesn't have are left
// out, with a line in the log. Throws Error with file and line, with nothing queued.
void read_start(Model& model, const std::string& path);
void read_priorities(Model& model, const std::string& path);

}  // namespace zelvan
