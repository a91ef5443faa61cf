// Lines in any order, as a server could send them: each is taken or refused as the header of ResponseHead says, and
// what is known then is what the lines of the last head say. The first two bytes of an input are the limit.
#include <algorithm>
#include <cctype>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Promise.h"
#include "platform/linux/ResponseHead.h"

namespace {

using tavlo::fuzz::require;
using tavlo::linux_platform::ResponseHead;

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return text;
}

std::string trimmed(std::string text) {
  while (!text.empty() && std::string_view(" \t\r\n").find(text.back()) != std::string_view::npos) text.pop_back();
  return text.erase(0, std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// The value of the line, if it is a field of this name.
std::optional<std::string> fieldOf(const std::string& line, const std::string& name) {
  const std::size_t colon = line.find(':');
  if (lowered(line.substr(0, colon)) != name) return std::nullopt;
  return trimmed(colon == std::string::npos ? "" : line.substr(colon + 1));
}

bool isNumber(const std::string& text) {
  constexpr std::string_view kLargest = "9223372036854775807";
  if (text.empty() || !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) return false;
  const std::string digits = text.substr(std::min(text.find_first_not_of('0'), text.size() - 1));
  return digits.size() < kLargest.size() || (digits.size() == kLargest.size() && digits <= kLargest);
}

// The lines so far, those of the last head and the interim ones in front of it apart.
class Model {
 public:
  explicit Model(std::size_t limit) : limit_(limit) {}

  bool add(const std::string& line) {
    if (line.starts_with("HTTP/") && (!begun_ || ended())) {
      if (!code().starts_with('1')) counted_ = 0;
      lines_.clear();
      begun_ = true;
    }
    if (line.find('\0') != std::string::npos || line.size() > limit_ - counted_) return false;
    const auto before = length();
    counted_ += line.size();
    lines_.push_back(line);
    if (const auto value = fieldOf(line, "content-length")) {
      return isNumber(*value) && (!before || *before == std::stoull(*value));
    }
    const auto coding = fieldOf(line, "transfer-encoding");
    return !coding || lowered(*coding) == "chunked";
  }

  [[nodiscard]] bool isComplete() const { return begun_ && ended() && !code().starts_with('1'); }

  [[nodiscard]] std::optional<std::uint64_t> length() const {
    for (const std::string& line : lines_) {
      if (const auto value = fieldOf(line, "content-length")) return std::stoull(*value);
    }
    return std::nullopt;
  }

  [[nodiscard]] bool delimitsBody() const {
    const bool chunked = std::any_of(lines_.begin(), lines_.end(), [](const std::string& line) {
      return fieldOf(line, "transfer-encoding").has_value();
    });
    return length() || chunked || code().starts_with("204") || code().starts_with("304");
  }

 private:
  [[nodiscard]] bool ended() const {
    return std::any_of(lines_.begin(), lines_.end(), [](const std::string& line) { return trimmed(line).empty(); });
  }
  [[nodiscard]] std::string code() const {
    if (!begun_ || lines_.empty()) return "";
    const std::size_t blank = lines_.front().find(' ');
    return blank == std::string::npos ? "" : trimmed(lines_.front().substr(blank));
  }

  std::size_t limit_;
  std::size_t counted_ = 0;
  bool begun_ = false;
  std::vector<std::string> lines_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t limit = data[0] * std::size_t{256} + data[1];
  std::string_view rest = tavlo::fuzz::textOf(data + 2, size - 2);
  ResponseHead head(limit);
  Model model(limit);
  while (!rest.empty()) {
    const std::string line(rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1));
    rest.remove_prefix(line.size());
    const std::vector<char> exact(line.begin(), line.end());  // so that tools see one byte too far
    const bool taken = head.add({exact.data(), exact.size()});
    require(taken == model.add(line), "a line is refused for what it says, and for no other reason");
    if (!taken) return 0;
    require(head.isComplete() == model.isComplete(), "a head is complete with its blank line, an interim one never");
    require(head.contentLength() == model.length(), "the length is the one that the last head gives");
    require(head.contentLength().value_or(0) <= std::numeric_limits<std::int64_t>::max(), "a length has 63 bits");
    require(head.delimitsBody() == model.delimitsBody(), "a body says where it ends by a length, chunks or its status");
  }
  return 0;
}
