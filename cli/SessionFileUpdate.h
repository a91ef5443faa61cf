// Keeping a position in a session file (docs/session-file.md).
#pragma once

#include <string>

#include "common/Text.h"

namespace tavlo::cli {

struct KeptPosition {
  Text latitude;
  Text longitude;
  Text address;
};

// Puts the three into the "package" of the file; all else in it stays, only its blanks and line breaks do not. A file
// that is missing is made. It gets mode 0600, and a reader, or a crash, meets the old file or the new one, whole.
// Throws Failure: the file is no session file, or cannot be written; then it stays as it was.
void keepInSessionFile(const std::string& path, const KeptPosition& position);

}  // namespace tavlo::cli
