#include <curl/curl.h>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

std::string curlEscape(std::string_view text) {
  char* const escaped = curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size()));
  std::string result = escaped;
  curl_free(escaped);
  return result;
}

}  // namespace tavlo::bench::peers
