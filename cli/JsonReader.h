// JsonReader: what the readers of JSON files share: errors that name the file, the line, the key and what was expected.
//
// A path names a value: "package.age", "trackerRecords[2].count".
//
// Throws   Failure, from everything here.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/Json.h"
#include "common/Text.h"

namespace tavlo::cli {

// The document, which `file` stands for in what is thrown.
[[nodiscard]] JsonNode parseJsonOf(const std::string& file, std::string_view document);

class JsonReader {
 public:
  explicit JsonReader(std::string file) : file_(std::move(file)) {}

 protected:
  // Takes a member's value in. False: there is no such member.
  using TakeMember = std::function<bool(const JsonMember& member, const std::string& path)>;

  [[noreturn]] void fail(std::size_t line, const std::string& path, const std::string& what) const;
  [[noreturn]] void failKind(const JsonNode& node, const std::string& path, const std::string& expected) const;

  // Each member once. `members` says in an error which ones there are.
  void readObject(const JsonNode& node, const std::string& path, std::string_view members,
                  const TakeMember& take) const;

  [[nodiscard]] Text textOf(const JsonNode& node, const std::string& path) const;

 private:
  std::string file_;
};

}  // namespace tavlo::cli
