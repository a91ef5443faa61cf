// The platform's blocking fetch of a URL.
//
// Values   the contents, whole, byte for byte as the server sent them; contents of length zero are data.
// Absent   the text is no URL, or the fetch failed.
// Threads  any thread, any time. The call blocks until the fetch ends.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavlo::platform {

class UrlData {
 public:
  UrlData() = default;
  UrlData(const UrlData&) = delete;
  UrlData& operator=(const UrlData&) = delete;
  virtual ~UrlData() = default;

  [[nodiscard]] virtual std::optional<std::string> dataWithContentsOfUrl(std::string_view url) = 0;
};

}  // namespace tavlo::platform
