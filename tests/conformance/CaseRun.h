// Running a case, and saying where the component differs from it.
#pragma once

#include <string>
#include <vector>

#include "common/Value.h"

namespace tavlo::conformance {

struct Case {
  std::string file;  // without its ending
  std::string name;
  Value content;
};

// Of all files in `folder`, in the order of their names. Throws std::runtime_error for a file that is none.
[[nodiscard]] std::vector<Case> casesIn(const std::string& folder);

// One text for each difference, which names the case, the step, and what was expected and got. A case that cannot be
// run gives one, too.
[[nodiscard]] std::vector<std::string> differences(const Case& which);

}  // namespace tavlo::conformance
