// Writing a file that is not there yet.
#pragma once

#include <string>
#include <string_view>

namespace tavlo::cli {

// Makes the file with these bytes. Throws Failure when there is something of that name, which then stays as it is, and
// when it cannot be written, and then nothing is left.
void writeNewFile(const std::string& path, std::string_view bytes);

}  // namespace tavlo::cli
