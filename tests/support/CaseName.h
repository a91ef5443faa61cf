// Rows of a case list show in a failure under their own `name`.
#pragma once

#include <string>

namespace tavlo::test {

inline constexpr auto kCaseName = [](const auto& row) { return std::string(row.param.name); };

}  // namespace tavlo::test
