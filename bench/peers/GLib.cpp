#include <glib.h>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

std::string gLibEscape(const std::string& text) {
  char* const escaped = g_uri_escape_string(text.c_str(), nullptr, FALSE);
  std::string result = escaped;
  g_free(escaped);
  return result;
}

}  // namespace tavlo::bench::peers
