#include "platform/linux/NominatimAnswer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <utility>
#include <vector>

#include "common/Utf8.h"

namespace tavlo::linux_platform {
namespace {

constexpr std::size_t kDeepest = 32;
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::array<std::string_view, 3> kPlaces{"city", "town", "village"};  // the best one first

// The library passes over the first member. Of a name that comes twice the last counts, so these are added at the end.
constexpr std::string_view kFirst = R"({"place_id":"0")";
constexpr std::string_view kLast =
    R"(,"lat":"0","lon":"0","boundingbox":["0","0","0","0"],"osm_type":"node","osm_id":"0","place_id":"0"})";

struct Key {
  std::size_t at;  // behind the quote
  std::string_view written;
  std::string name;
};

// What the key means: letters may be written as escapes, all other escapes are in no name that counts.
std::string nameOf(std::string_view written) {
  constexpr std::string_view kEscape = "\\u00";
  std::string name;
  for (; !written.empty(); written.remove_prefix(1)) {
    unsigned letter = 0;
    const char* const digits = written.data() + kEscape.size();
    if (written.starts_with(kEscape) && written.size() >= 6 &&
        std::from_chars(digits, digits + 2, letter, 16).ptr == digits + 2) {
      name += static_cast<char>(letter);
      written.remove_prefix(5);
    } else {
      name += written.front();
    }
  }
  return name;
}

// Goes through the text by brackets and strings only.
class Scan {
 public:
  explicit Scan(std::string_view text) : text_(text) {}

  // False where it is not one object whose brackets match.
  [[nodiscard]] bool run() {
    std::size_t at = text_.find_first_not_of(kBlanks);
    if (at == std::string_view::npos || text_[at] != '{') return false;
    for (; at < text_.size(); ++at) {
      if (text_[at] == '"') {
        at = string(at);
      } else if (!bracket(at)) {
        return false;
      }
      if (open_.empty()) break;
    }
    end_ = at;
    begin_ = text_.find('{') + 1;
    return open_.empty() && at < text_.size() && text_.find_first_not_of(kBlanks, at + 1) == std::string_view::npos;
  }

  // The object's brackets, the opening one excluded.
  [[nodiscard]] std::size_t begin() const { return begin_; }
  [[nodiscard]] std::size_t end() const { return end_; }
  [[nodiscard]] const std::vector<Key>& places() const { return places_; }

 private:
  // Where the string ends: at its closing quote, or with the text.
  std::size_t string(std::size_t at) {
    const std::size_t begin = at + 1;
    for (++at; at < text_.size() && text_[at] != '"'; ++at) {
      if (text_[at] == '\\') ++at;
    }
    const std::size_t next = at < text_.size() ? text_.find_first_not_of(kBlanks, at + 1) : std::string_view::npos;
    const bool isKey = next != std::string_view::npos && text_[next] == ':';
    const std::string_view written = text_.substr(begin, at - begin);
    if (isKey) key({.at = begin, .written = written, .name = nameOf(written)});
    return at;
  }

  void key(Key key) {
    if (open_.size() == 1) {
      inAddress_ = key.name == "address";
      if (inAddress_) places_.clear();  // a second one replaces the first
    }
    const bool isPlace = std::find(kPlaces.begin(), kPlaces.end(), key.name) != kPlaces.end();
    if (open_.size() == 2 && inAddress_ && isPlace) places_.push_back(std::move(key));
  }

  bool bracket(std::size_t at) {
    const char c = text_[at];
    if (c == '{' || c == '[') {
      open_ += c;
      return open_.size() <= kDeepest;
    }
    if (c != '}' && c != ']') return true;
    const bool matches = !open_.empty() && open_.back() == (c == '}' ? '{' : '[');
    if (matches) open_.pop_back();
    return matches;
  }

  const std::string_view text_;
  std::string open_;
  bool inAddress_ = false;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::vector<Key> places_;
};

std::string_view bestOf(const std::vector<Key>& places) {
  for (const std::string_view name : kPlaces) {
    if (std::any_of(places.begin(), places.end(), [&](const Key& key) { return key.name == name; })) return name;
  }
  return "";
}

}  // namespace

std::optional<std::string> preparedNominatimAnswer(std::string_view answer) {
  Scan scan(answer);
  if (!isUtf8(answer) || !scan.run()) return std::nullopt;

  const std::string_view best = bestOf(scan.places());
  std::string prepared(kFirst);
  std::size_t copied = scan.begin();
  if (answer.substr(copied, scan.end() - copied).find_first_not_of(kBlanks) != std::string_view::npos) prepared += ',';
  for (const Key& key : scan.places()) {
    prepared += answer.substr(copied, key.at - copied);
    prepared += key.name == best ? "city" : "-";
    copied = key.at + key.written.size();
  }
  prepared += answer.substr(copied, scan.end() - copied);
  return prepared.append(kLast);
}

}  // namespace tavlo::linux_platform
