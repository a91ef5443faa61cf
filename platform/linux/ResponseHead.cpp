#include "platform/linux/ResponseHead.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace tavlo::linux_platform {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
  return std::equal(text.begin(), text.end(), lowercase.begin(), lowercase.end(),
                    [](char a, char b) { return lower(a) == b; });
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

bool ResponseHead::add(std::string_view line) {
  if ((!begun_ || ended_) && line.starts_with("HTTP/")) begin(line);
  if (line.size() > limit_ - size_ || line.find('\0') != std::string_view::npos) return false;
  size_ += line.size();
  if (trimmed(line).empty()) ended_ = true;

  const std::size_t colon = std::min(line.find(':'), line.size());
  const std::string_view name = line.substr(0, colon);
  const std::string_view value = trimmed(line.substr(std::min(colon + 1, line.size())));
  if (equalsIgnoringCase(name, "content-length")) return addLength(value);
  if (!equalsIgnoringCase(name, "transfer-encoding")) return true;
  chunked_ = equalsIgnoringCase(value, "chunked");
  return chunked_;
}

void ResponseHead::begin(std::string_view statusLine) {
  if (!interim_) size_ = 0;
  const std::string_view code = trimmed(statusLine.substr(std::min(statusLine.find(' '), statusLine.size())));
  begun_ = true;
  ended_ = false;
  interim_ = code.starts_with('1');
  bodiless_ = code.starts_with("204") || code.starts_with("304");
  chunked_ = false;
  length_.reset();
}

bool ResponseHead::addLength(std::string_view value) {
  std::int64_t length = -1;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), length);
  if (error != std::errc{} || end != value.data() + value.size() || value.front() == '-') return false;
  if (length_ && *length_ != static_cast<std::uint64_t>(length)) return false;
  length_ = static_cast<std::uint64_t>(length);
  return true;
}

}  // namespace tavlo::linux_platform
