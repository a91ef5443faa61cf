// Outline: everything that a property list holds as one line, by which decoders are compared.
//
//   {"name" "clip one" "size" 1234 "tags" ["a" "b"] "at" @7200.5 "icon" <89504e47> "object" #3 "on" true}
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo::bench {

class Outline {
 public:
  void open(char bracket);
  void close(char bracket);
  void text(std::string_view text);
  void data(std::string_view bytes);
  void boolean(bool value);
  void integer(std::uint64_t value);
  void real(double value);
  void date(double secondsSince2001);
  void uid(std::uint64_t index);
  void other();

  [[nodiscard]] const std::string& line() const { return line_; }

 private:
  void add(std::string_view word);

  std::string line_;
};

[[nodiscard]] std::string outlineOf(const Value& value);

}  // namespace tavlo::bench
