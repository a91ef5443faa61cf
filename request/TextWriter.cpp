#include "request/TextWriter.h"

#include <charconv>
#include <limits>
#include <utility>

#include "request/UrlEncode.h"

namespace tavlo {

void TextWriter::appendUrlEncoded(std::string_view value) {
  constexpr std::size_t kStretch = kRoom / 4;
  static_assert(urlEncodedRoom(kStretch) <= kRoom);
  while (!value.empty()) {
    const std::string_view stretch = value.substr(0, kStretch);
    makeRoom(urlEncodedRoom(stretch.size()));
    end_ = writeUrlEncoded(end_, stretch);
    value.remove_prefix(stretch.size());
  }
}

void TextWriter::appendLongInteger(std::int32_t value) {
  constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::digits10 + 2;  // and a sign
  makeRoom(kLongest);
  end_ = std::to_chars(end_, end_ + kLongest, value).ptr;
}

std::string TextWriter::take() {
  if (flushed_.empty()) return {buffer_.data(), std::exchange(end_, buffer_.data())};
  flush();
  return std::exchange(flushed_, {});
}

std::string_view TextWriter::view() {
  if (flushed_.empty()) return {buffer_.data(), end_};
  flush();
  return flushed_;
}

void TextWriter::clear() {
  flushed_.clear();
  end_ = buffer_.data();
}

void TextWriter::flush() { flushed_.append(buffer_.data(), std::exchange(end_, buffer_.data())); }

void TextWriter::appendLong(std::string_view text) {
  flush();
  flushed_ += text;
}

}  // namespace tavlo
