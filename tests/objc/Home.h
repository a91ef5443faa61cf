// The home directory of a test program: a temporary folder of its own, in place of the one that the password database
// names. Foundation asks there, and looks at no environment variable.
#pragma once

#include <filesystem>

namespace tavlo::test {

[[nodiscard]] const std::filesystem::path& home();

}  // namespace tavlo::test
