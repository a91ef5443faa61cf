#include "common/Format.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace tavlo {
namespace {

// As std::to_chars writes it, which is as C does, but never with a locale's decimal point.
template <class... Precision>
void appendNumber(std::string& out, auto value, Precision... precision) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what was written is read
  std::array<char, 512> digits;  // a double in fixed notation takes at most 309 digits, a point and 6 more
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value, precision...).ptr);
}

void appendTwoDigits(std::string& out, unsigned value) {
  out += static_cast<char>('0' + value / 10);
  out += static_cast<char>('0' + value % 10);
}

void appendDate(std::string& out, double secondsSince2001) {
  namespace chrono = std::chrono;
  constexpr auto kReference = chrono::sys_days(chrono::year(2001) / 1 / 1);
  constexpr double kFarthest = 9e11;  // within the years that the calendar knows
  if (!(std::fabs(secondsSince2001) < kFarthest)) {
    appendNumber(out, secondsSince2001, std::chars_format::general, 16);
    return;
  }
  const auto time = kReference + chrono::seconds(static_cast<std::int64_t>(std::floor(secondsSince2001)));
  const auto days = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(days);
  const chrono::hh_mm_ss clock(time - days);
  const auto year = static_cast<int>(date.year());
  if (year >= 0 && year < 1000) out.append(year < 10 ? 3 : year < 100 ? 2 : 1, '0');
  appendNumber(out, year);
  out += '-';
  appendTwoDigits(out, static_cast<unsigned>(date.month()));
  out += '-';
  appendTwoDigits(out, static_cast<unsigned>(date.day()));
  out += ' ';
  appendTwoDigits(out, static_cast<unsigned>(clock.hours().count()));
  out += ':';
  appendTwoDigits(out, static_cast<unsigned>(clock.minutes().count()));
  out += ':';
  appendTwoDigits(out, static_cast<unsigned>(clock.seconds().count()));
  out += " +0000";
}

// Writes text forms, and stops where shared contents would make the text endless.
class TextForm {
 public:
  explicit TextForm(std::string& out) : out_(out), start_(out.size()) {}

  void append(const Value& value) {
    switch (value.kind()) {
      case Value::Kind::null: out_ += "<null>"; break;
      case Value::Kind::boolean: appendBoolean(out_, *value.ifBoolean()); break;
      case Value::Kind::integer: out_ += value.ifInteger()->decimal(); break;
      case Value::Kind::real: appendNumber(out_, value.ifReal()->value, std::chars_format::general, 16); break;
      case Value::Kind::date: appendDate(out_, value.ifDate()->seconds); break;
      case Value::Kind::text: out_ += *value.ifText(); break;
      case Value::Kind::data: out_ += *value.ifData(); break;
      case Value::Kind::url: out_ += value.ifUrl()->text; break;
      case Value::Kind::uid: appendNumber(out_, value.ifUid()->index); break;
      case Value::Kind::list: appendList(*value.ifList()); break;
      case Value::Kind::set: appendList(*value.ifSet()); break;
      case Value::Kind::map: appendMap(*value.ifMap()); break;
      case Value::Kind::object: out_ += value.ifObject()->className; break;
    }
  }

 private:
  static constexpr std::size_t kLongest = 1U << 20U;
  static constexpr int kDeepest = 512;

  void appendList(const ValueList& items) {
    appendAll('(', items, ", ", ')', [this](const Value& item) { append(item); });
  }

  void appendMap(const ValueMap& map) {
    appendAll('{', map, "; ", '}', [this](const ValueMap::Entry& entry) {
      append(entry.first);
      out_ += " = ";
      append(entry.second);
    });
  }

  template <class Items, class AppendItem>
  void appendAll(char open, const Items& items, std::string_view separator, char close, AppendItem appendItem) {
    out_ += open;
    ++depth_;
    bool first = true;
    for (const auto& item : items) {
      if (!first) out_ += separator;
      first = false;
      if (depth_ > kDeepest || out_.size() - start_ > kLongest) {
        out_ += "...";
        break;
      }
      appendItem(item);
    }
    --depth_;
    out_ += close;
  }

  std::string& out_;
  std::size_t start_;
  int depth_ = 0;
};

}  // namespace

void appendText(std::string& out, const Text& text) { out += text ? std::string_view(*text) : kAbsent; }

void appendBoolean(std::string& out, bool value) { out += value ? '1' : '0'; }

void appendInteger(std::string& out, std::int32_t value) { appendNumber(out, value); }

void appendFixed(std::string& out, double value) { appendNumber(out, value, std::chars_format::fixed, 6); }

void appendTextForm(std::string& out, const std::optional<Value>& value) {
  if (value) {
    TextForm(out).append(*value);
  } else {
    out += kAbsent;
  }
}

std::string textForm(const Value& value) {
  std::string text;
  TextForm(text).append(value);
  return text;
}

}  // namespace tavlo
