// ResponseHead: what the lines of an HTTP/1 response's head say, judged strictly.
//
// Values   lines as they come, each with its line end: status line, fields, the blank line, and the trailer
//          fields of a chunked body. Several heads may follow one another: interim ones (1xx), redirects.
// Absent   add() is false for a line that makes the whole response no data: a NUL in it; a length that is not
//          digits alone, is no 63-bit number or differs from an earlier one of its head; a transfer coding
//          other than "chunked"; or a head beyond the limit. Interim heads count towards the next one's.
// Threads  one object belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tavlo::linux_platform {

class ResponseHead {
 public:
  explicit ResponseHead(std::size_t limit) : limit_(limit) {}

  [[nodiscard]] bool add(std::string_view line);

  // The last head, from its status line on, has ended and is not an interim one.
  [[nodiscard]] bool isComplete() const { return begun_ && ended_ && !interim_; }

  [[nodiscard]] std::optional<std::uint64_t> contentLength() const { return length_; }

  // The body says where it ends, by a length or by chunks, and does not just end with the connection.
  [[nodiscard]] bool delimitsBody() const { return length_ || chunked_ || bodiless_; }

 private:
  void begin(std::string_view statusLine);
  bool addLength(std::string_view value);

  std::size_t limit_;
  std::size_t size_ = 0;
  bool begun_ = false;
  bool ended_ = false;
  bool interim_ = false;
  bool bodiless_ = false;
  bool chunked_ = false;
  std::optional<std::uint64_t> length_;
};

}  // namespace tavlo::linux_platform
