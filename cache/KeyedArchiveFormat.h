// What the reader and the writer of keyed archives share: the words, the known classes and the bounds.
//
// An archive is a map: "$version", "$archiver", "$top" with a reference to the root, and "$objects", the list
// of all objects, in which references are UIDs. Object 0, "$null", stands for nothing at all. Texts, data,
// numbers, truth values and (from some archivers) dates are objects as they are; every other one is a map of
// fields, with a reference to its class under "$class".
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavlo::keyed_archive {

inline constexpr std::string_view kVersion = "$version";
inline constexpr std::string_view kArchiver = "$archiver";
inline constexpr std::string_view kTop = "$top";
inline constexpr std::string_view kRoot = "root";
inline constexpr std::string_view kObjects = "$objects";
inline constexpr std::string_view kNothing = "$null";
inline constexpr std::string_view kClass = "$class";
inline constexpr std::string_view kClassName = "$classname";
inline constexpr std::string_view kClasses = "$classes";

inline constexpr std::string_view kText = "NS.string";
inline constexpr std::string_view kBytes = "NS.bytes";  // a text as UTF-8, from some archivers
inline constexpr std::string_view kData = "NS.data";
inline constexpr std::string_view kTime = "NS.time";
inline constexpr std::string_view kItems = "NS.objects";
inline constexpr std::string_view kKeys = "NS.keys";
inline constexpr std::string_view kBase = "NS.base";
inline constexpr std::string_view kRelative = "NS.relative";

inline constexpr int kFormatVersion = 100000;
inline constexpr std::string_view kOurArchiver = "NSKeyedArchiver";
inline constexpr std::string_view kRootClass = "NSObject";

// What an object's fields mean.
enum class Form : std::uint8_t { null, text, data, date, url, list, set, map, object };

struct KnownClass {
  std::string_view name;
  Form form;
};

// Those that are written come first in their form. An object of any other class is a ValueObject.
inline constexpr auto kKnownClasses = std::to_array<KnownClass>({
    {"NSNull", Form::null},
    {"NSString", Form::text},
    {"NSMutableString", Form::text},
    {"NSData", Form::data},
    {"NSMutableData", Form::data},
    {"NSDate", Form::date},
    {"NSURL", Form::url},
    {"NSArray", Form::list},
    {"NSMutableArray", Form::list},
    {"NSSet", Form::set},
    {"NSMutableSet", Form::set},
    {"NSDictionary", Form::map},
    {"NSMutableDictionary", Form::map},
});

[[nodiscard]] constexpr Form formOf(std::string_view className) {
  const auto* const known = std::find_if(kKnownClasses.begin(), kKnownClasses.end(),
                                         [&](const KnownClass& each) { return each.name == className; });
  return known == kKnownClasses.end() ? Form::object : known->form;
}

// Of any form but object.
[[nodiscard]] constexpr std::string_view classNameOf(Form form) {
  return std::find_if(kKnownClasses.begin(), kKnownClasses.end(),
                      [&](const KnownClass& each) { return each.form == form; })
      ->name;
}

// Names of fields that begin with "$" have one "$" more in an archive. Only what was archived without a name has
// the archiver's own, "$0", "$1" and so on; those, and any that differ from one by "$" alone, stay as they are.
[[nodiscard]] constexpr bool takesOneMoreDollar(std::string_view name) {
  if (!name.starts_with('$')) return false;
  const std::string_view behind = name.substr(std::min(name.find_first_not_of('$'), name.size()));
  return behind.empty() || behind.find_first_not_of("0123456789") != std::string_view::npos;
}

// Values of URLs and of objects have a copy each of their text or class name, which an archive holds once.
// Beyond this sum of them an archive is made to cost.
[[nodiscard]] constexpr std::size_t mostCopiedBytes(std::size_t archiveSize) {
  return (std::size_t{1} << 20U) + (16 * archiveSize);
}

}  // namespace tavlo::keyed_archive
