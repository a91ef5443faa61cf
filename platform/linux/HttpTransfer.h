// HttpTransfer: fetches of http and https URLs, one at a time, over connections that are kept for the next one.
//
// Values   the body, byte for byte as the server sent it: chunks are joined, nothing is decompressed. A body of
//          length zero is data, and so is that of a redirect that names no target.
// Absent   a status of 400 and above, a body shorter than announced, a redirect to anything but http and https,
//          a certificate or host name that does not hold, a head that ResponseHead refuses, a limit exceeded,
//          no memory, no connection.
// Threads  a transfer belongs to one thread at a time; cancel() may be called by any.
// Throws   nothing but std::bad_alloc from makeHttpTransfer().
//
// Certificates are checked against the file given, else against the system's. A proxy is taken from the
// environment (http_proxy, https_proxy, no_proxy).
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/DownloadLimits.h"

namespace tavlo::linux_platform {

class HttpTransfer {
 public:
  HttpTransfer() = default;
  HttpTransfer(const HttpTransfer&) = delete;
  HttpTransfer& operator=(const HttpTransfer&) = delete;
  virtual ~HttpTransfer() = default;

  [[nodiscard]] virtual std::optional<std::string> fetch(const std::string& url) noexcept = 0;

  // Ends the fetch under way at once, and every later one before it begins.
  virtual void cancel() noexcept = 0;
};

// How a transfer names itself to servers, in printable ASCII.
inline constexpr const char* kUserAgent = "TavloUtility";

// nullptr when the library is built without HTTP, or is out of resources.
[[nodiscard]] std::unique_ptr<HttpTransfer> makeHttpTransfer(
    const DownloadLimits& limits, const std::optional<std::filesystem::path>& certificateAuthorities,
    const std::string& userAgent = kUserAgent);

// Sets up what all transfers of the process share, once; the first transfer does so by itself. It registers
// exit handlers, and what is registered later runs earlier.
void prepareHttp() noexcept;

}  // namespace tavlo::linux_platform
