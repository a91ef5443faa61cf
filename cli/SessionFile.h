// The session file: one session as JSON (docs/session-file.md has the format).
//
//   {"package": {"device_model": "Phone 3"}, "identifiers": {"ApplicationId": "app-1"}}
//
// Absent   what is missing or null: texts are absent, integers 0, truth values false, the record list absent.
// Throws   Failure, whose line names the file, the line, the key and what was expected there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/Session.h"

namespace tavlo::cli {

inline constexpr std::size_t kLongestSessionFile = 16U << 20U;  // bytes

// "-" reads standard input.
[[nodiscard]] Session readSessionFile(const std::string& path);

// `name` stands for the file in what is thrown.
[[nodiscard]] Session parseSession(std::string_view document, const std::string& name);

}  // namespace tavlo::cli
