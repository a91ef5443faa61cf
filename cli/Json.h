// JSON: documents in, with the line of each value, and values out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/Value.h"

namespace tavlo::cli {

struct JsonMember;

// One value of a document. Members stand in the document's order, a key that is given twice included.
struct JsonNode {
  enum class Kind : std::uint8_t { null, boolean, integer, real, text, list, object };

  Kind kind = Kind::null;
  std::size_t line = 0;             // counted from 1: where the value begins
  Value scalar;                     // of every kind but list and object
  std::vector<JsonNode> items;      // of a list
  std::vector<JsonMember> members;  // of an object
};

struct JsonMember {
  std::string key;
  std::size_t line = 0;
  JsonNode value;
};

// The text with each NUL as its JSON escape. What names a key in an exception's text needs it: that ends at a NUL.
[[nodiscard]] std::string withNulShown(std::string_view text);

class JsonError : public std::runtime_error {
 public:
  JsonError(std::size_t line, const std::string& what) : std::runtime_error(what), line_(line) {}
  [[nodiscard]] std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

inline constexpr std::size_t kDeepestJson = 64;

// UTF-8, with or without a byte order mark. Integers are read whole up to 128 bits. Throws JsonError for a text
// that is no JSON, nesting deeper than `deepest` and an integer beyond 128 bits.
[[nodiscard]] JsonNode parseJson(std::string_view document, std::size_t deepest = kDeepestJson);

// One line, without blanks; maps in their own order; "/" and text outside ASCII as they are. What is no UTF-8
// becomes U+FFFD. A real that JSON has no number for becomes null, a kind that it does not know its text form.
[[nodiscard]] std::string toJson(const Value& value);

}  // namespace tavlo::cli
