#import "platform/apple/Bridge.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/Format.h"
#include "common/IntValue.h"
#include "common/PropertyList.h"
#include "common/Utf8.h"
#import "platform/apple/Retained.h"

namespace tavlo::apple_platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstOfTwo = 0xD800;
constexpr char32_t kSecondOfTwo = 0xDC00;
constexpr char32_t kAboveOneUnit = 0x10000;
constexpr char32_t kHalf = 0x400;

bool isFirst(char32_t unit) { return unit - kFirstOfTwo < kHalf; }
bool isSecond(char32_t unit) { return unit - kSecondOfTwo < kHalf; }

std::string utf8Of(NSString* string) {
  std::vector<unichar> units([string length]);
  if (!units.empty()) [string getCharacters:units.data() range:NSMakeRange(0, units.size())];
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t codePoint = units[i];
    if (isFirst(codePoint) && i + 1 < units.size() && isSecond(units[i + 1])) {
      codePoint = kAboveOneUnit + ((codePoint - kFirstOfTwo) * kHalf) + (units[++i] - kSecondOfTwo);
    }
    appendUtf8(text, codePoint);
  }
  return text;
}

// GNUstep Base makes no string of lone surrogates, and leaves a leading U+FEFF out, unless they come one by one.
NSString* stringOfUnits(const std::vector<unichar>& units) {
  NSMutableString* const string = [NSMutableString stringWithCapacity:units.size()];
  for (const unichar unit : units) [string appendFormat:@"%C", unit];
  return string;
}

// From the platform's objects to values.
class Reader {
 public:
  Value read(id object) {
    if ([object isKindOfClass:[NSString class]]) return Value(utf8Of(object));
    if ([object isKindOfClass:[NSDecimalNumber class]]) return decimal(object);
    if ([object isKindOfClass:[NSNumber class]]) return number(object);
    if ([object isKindOfClass:[NSDate class]]) return Value(Date{[object timeIntervalSinceReferenceDate]});
    if ([object isKindOfClass:[NSData class]]) return data(object);
    if ([object isKindOfClass:[NSURL class]]) return url(object);
    if ([object isKindOfClass:[NSNull class]]) return Value();
    if ([object isKindOfClass:[NSArray class]] || [object isKindOfClass:[NSDictionary class]] ||
        [object isKindOfClass:[NSSet class]]) {
      return collection(object);
    }
    return Value::object({.className = utf8Of(NSStringFromClass([object class])), .fields = ValueMap()});
  }

 private:
  static Value number(NSNumber* number) {
    static const Class booleans = [[NSNumber numberWithBool:YES] class];
    if ([number isKindOfClass:booleans]) return Value(static_cast<bool>([number boolValue]));
    switch (*[number objCType]) {
      case 'f': return Value(Real{.value = static_cast<double>([number floatValue]), .narrow = true});
      case 'd': return Value([number doubleValue]);
      case 'Q':
      case 'L': return Value(std::uint64_t{[number unsignedLongLongValue]});
      default: return Value(std::int64_t{[number longLongValue]});
    }
  }

  // Whole numbers stay whole, as wide as they are, also where they are written with an exponent.
  static Value decimal(NSDecimalNumber* number) {
    const std::string text = utf8Of([number stringValue]);
    const std::size_t end = std::min(text.find('E'), text.size());
    const bool hasExponent = end + 1 < text.size();
    std::int64_t zeros = hasExponent ? intValue(std::string_view(text).substr(end + 1)) : 0;
    std::array<std::uint64_t, 4> limbs{};  // of 32 bits each, the lowest first
    bool inFraction = false;
    for (const char c : std::string_view(text).substr(0, end)) {
      if (c >= '0' && c <= '9') {
        shift(limbs, static_cast<std::uint64_t>(c - '0'));
        if (inFraction) --zeros;
      }
      inFraction = inFraction || c == '.';
    }
    constexpr std::int64_t kMostDigits = 38;
    if (zeros < 0 || static_cast<std::int64_t>(end) + zeros > kMostDigits + 2) return Value([number doubleValue]);
    for (; zeros > 0; --zeros) shift(limbs, 0);
    const std::uint64_t low = limbs[1] << 32U | limbs[0];
    const std::uint64_t high = limbs[3] << 32U | limbs[2];
    if (!text.starts_with('-')) return Value(Integer{.high = static_cast<std::int64_t>(high), .low = low});
    return Value(Integer{.high = static_cast<std::int64_t>(~high + (low == 0 ? 1U : 0U)), .low = ~low + 1});
  }

  static void shift(std::array<std::uint64_t, 4>& limbs, std::uint64_t digit) {
    for (std::uint64_t& limb : limbs) {
      const std::uint64_t next = (limb * 10) + digit;
      limb = next & 0xFFFFFFFFU;
      digit = next >> 32U;
    }
  }

  static Value data(NSData* data) {
    return Value::data([data length] == 0 ? std::string_view()
                                          : std::string_view(static_cast<const char*>([data bytes]), [data length]));
  }

  Value url(NSURL* url) {
    std::optional<Value> base;
    if (NSURL* const below = [url baseURL]) base = read(below);
    return Value::url({.text = utf8Of([url relativeString]), .base = base});
  }

  Value collection(id object) {
    const auto [known, isNew] = known_.try_emplace((__bridge const void*)object);  // null while it is being read
    if (!isNew || depth_ == property_list::kDeepest) return known->second;
    ++depth_;
    Value value = [object isKindOfClass:[NSDictionary class]] ? map(object)
                  : [object isKindOfClass:[NSSet class]]      ? Value::set(items(object))
                                                              : Value::list(items(object));
    --depth_;
    return known_[(__bridge const void*)object] = std::move(value);
  }

  ValueList items(id collection) {
    ValueList items;
    NSEnumerator* const each = [collection objectEnumerator];
    while (const id item = [each nextObject]) items.push_back(read(item));
    return items;
  }

  Value map(NSDictionary* dictionary) {
    std::vector<ValueMap::Entry> entries;
    NSEnumerator* const keys = [dictionary keyEnumerator];
    while (const id key = [keys nextObject]) {
      Value readKey = read(key);
      entries.emplace_back(std::move(readKey), read([dictionary objectForKey:key]));
    }
    return Value::map(ValueMap(std::move(entries)));
  }

  std::unordered_map<const void*, Value> known_;
  std::size_t depth_ = 0;
};

// From values to the platform's objects.
class Writer {
 public:
  id write(const Value& value) {
    switch (value.kind()) {
      case Value::Kind::null: return [NSNull null];
      case Value::Kind::boolean: return [NSNumber numberWithBool:*value.ifBoolean() ? YES : NO];
      case Value::Kind::integer: return number(*value.ifInteger());
      case Value::Kind::real: return number(*value.ifReal());
      case Value::Kind::date: return [NSDate dateWithTimeIntervalSinceReferenceDate:value.ifDate()->seconds];
      case Value::Kind::text: return stringOf(*value.ifText());
      case Value::Kind::data: return [NSData dataWithBytes:value.ifData()->data() length:value.ifData()->size()];
      case Value::Kind::uid: return reference(*value.ifUid());
      case Value::Kind::url:
      case Value::Kind::list:
      case Value::Kind::set:
      case Value::Kind::map:
      case Value::Kind::object: return shared(value);
    }
    return nil;
  }

 private:
  static id number(const Integer& integer) {
    if (integer.fitsSigned()) return [NSNumber numberWithLongLong:static_cast<std::int64_t>(integer.low)];
    if (integer.fitsUnsigned()) return [NSNumber numberWithUnsignedLongLong:integer.low];
    return [NSDecimalNumber decimalNumberWithString:stringOf(integer.decimal())];
  }
  static id number(const Real& real) {
    return real.narrow ? [NSNumber numberWithFloat:static_cast<float>(real.value)]
                       : [NSNumber numberWithDouble:real.value];
  }
  static id reference(const Uid& uid) {
    return uid.index == 0 ? static_cast<id>([NSNull null]) : [NSNumber numberWithUnsignedLongLong:uid.index];
  }

  id shared(const Value& value) {
    const auto [known, isNew] = known_.try_emplace(value.identity(), [NSNull null]);
    if (!isNew || depth_ == property_list::kDeepest) return known->second.get();
    ++depth_;
    const Retained made(compound(value));
    --depth_;
    known_[value.identity()] = made;
    return known_[value.identity()].get();
  }

  id compound(const Value& value) {
    if (const ValueUrl* const address = value.ifUrl()) return url(*address);
    if (const ValueList* const list = value.ifList()) return array(*list);
    if (const ValueList* const set = value.ifSet()) return [NSSet setWithArray:array(*set)];
    if (const ValueMap* const map = value.ifMap()) return dictionary(*map);
    const ValueObject& object = *value.ifObject();
    NSMutableDictionary* const fields = dictionary(object.fields);
    [fields setObject:stringOf(object.className) forKey:@"$class"];
    return fields;
  }

  id url(const ValueUrl& url) {
    NSString* const text = stringOf(url.text);
    const id base = url.base ? write(*url.base) : nil;
    const bool hasBase = [base isKindOfClass:[NSURL class]];
    NSURL* const made = [NSURL URLWithString:text relativeToURL:hasBase ? static_cast<NSURL*>(base) : nil];
    return made ? static_cast<id>(made) : text;
  }

  NSMutableArray* array(const ValueList& items) {
    NSMutableArray* const array = [NSMutableArray arrayWithCapacity:items.size()];
    for (const Value& item : items) [array addObject:write(item)];
    return array;
  }

  NSMutableDictionary* dictionary(const ValueMap& map) {
    NSMutableDictionary* const dictionary = [NSMutableDictionary dictionaryWithCapacity:map.size() + 1];
    for (const auto& [key, value] : map) [dictionary setObject:write(value) forKey:write(key)];
    return dictionary;
  }

  std::unordered_map<const void*, Retained> known_;
  std::size_t depth_ = 0;
};

}  // namespace

Text textOf(id string) {
  if (string == nil) return std::nullopt;
  if ([string isKindOfClass:[NSString class]]) return utf8Of(string);
  return textForm(Reader().read(string));
}

NSString* stringOf(std::string_view text) {
  std::vector<unichar> units;
  units.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint next = decodeUtf8(text, at, Surrogates::accepted);
    at += next.length;
    const char32_t codePoint = next.valid ? next.value : kReplacement;
    if (codePoint >= kAboveOneUnit) {
      units.push_back(static_cast<unichar>(kFirstOfTwo + ((codePoint - kAboveOneUnit) / kHalf)));
      units.push_back(static_cast<unichar>(kSecondOfTwo + (codePoint % kHalf)));
    } else {
      units.push_back(static_cast<unichar>(codePoint));
    }
  }
  NSString* const string = [NSString stringWithCharacters:units.data() length:units.size()];
  return [string length] == units.size() ? string : stringOfUnits(units);
}

NSString* stringOfText(const Text& text) { return text ? stringOf(*text) : nil; }

std::optional<Value> valueOf(id object) {
  if (object == nil) return std::nullopt;
  return Reader().read(object);
}

id objectOf(const std::optional<Value>& value) { return value ? Writer().write(*value) : nil; }

}  // namespace tavlo::apple_platform
