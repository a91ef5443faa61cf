// TextWriter: a text being built. What it holds lies in the writer itself, which asks for no memory until there is
// more than kRoom, so that a request costs one allocation, of its own size.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlo {

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): of the buffer only what was written is read
class TextWriter {
 public:
  static constexpr std::size_t kRoom = 4096;  // bytes

  TextWriter() = default;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  TextWriter(const TextWriter&) = delete;
  TextWriter& operator=(const TextWriter&) = delete;
  ~TextWriter() = default;

  void append(std::string_view text) {
    if (text.size() > room()) return appendLong(text);
    end_ = std::copy(text.begin(), text.end(), end_);  // unlike memcpy() also of a text that lies nowhere
  }
  void append(char c) {
    makeRoom(1);
    *end_++ = c;
  }
  // The first `length` bytes. All are copied, which takes no loop.
  template <std::size_t size>
  void append(const std::array<char, size>& text, std::size_t length) {
    makeRoom(size);
    std::copy(text.begin(), text.end(), end_);
    end_ += length;
  }
  void appendUrlEncoded(std::string_view value);
  void appendInteger(std::int32_t value) {  // signed decimal
    if (0 <= value && value <= 9) return append(static_cast<char>('0' + value));
    appendLongInteger(value);
  }

  [[nodiscard]] bool empty() const { return end_ == buffer_.data() && flushed_.empty(); }

  // What was written. The writer is empty then.
  [[nodiscard]] std::string take();
  // What was written, until more is or it is cleared.
  [[nodiscard]] std::string_view view();
  void clear();

 private:
  [[nodiscard]] std::size_t room() const { return static_cast<std::size_t>(buffer_.data() + kRoom - end_); }
  void makeRoom(std::size_t size) {
    if (room() < size) flush();
  }
  void flush();
  void appendLong(std::string_view text);
  void appendLongInteger(std::int32_t value);

  std::string flushed_;             // what had no more room
  std::array<char, kRoom> buffer_;  // what comes behind it, up to end_
  char* end_ = buffer_.data();
};

}  // namespace tavlo
