#include "common/Path.h"

#include <algorithm>
#include <string>

namespace tavlo {
namespace {

constexpr std::string_view kKept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:=@_~";

}  // namespace

Text appendedPathComponent(Text directory, std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of('/'), name.size()));
  if (!directory || directory->empty()) return std::nullopt;
  if (name.empty()) return directory;
  while (directory->ends_with('/')) directory->pop_back();
  directory->append("/").append(name);
  return directory;
}

Text fileUrl(const Text& path) {
  if (!path || !path->starts_with('/') || path->find('\0') != std::string::npos) return std::nullopt;
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char c : *path) {
    if (kKept.find(c) != std::string_view::npos) {
      url += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      url += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
  }
  return url;
}

}  // namespace tavlo
