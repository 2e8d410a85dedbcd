#pragma once

#include <string>

namespace zelvan {

class Model;

// The solution as JSON: an object "SolutionInfo" with status and figures, and, with a solution, the list
// "Vars" of names and values. Throws Error when the model was not solved.
std::string json_solution(const Model& model);

}  // namespace zelvan
