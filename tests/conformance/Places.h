// Where the world of a case has its directories.
#pragma once

#include <string_view>

namespace tavlo::conformance {

inline constexpr std::string_view kDocuments = "/app/Documents";
inline constexpr std::string_view kDocumentsUrl = "file:///app/Documents/";
inline constexpr std::string_view kResources = "/app/Resources";

}  // namespace tavlo::conformance
