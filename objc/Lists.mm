#import "objc/Lists.h"

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <utility>

#include "../TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "common/Path.h"
#include "platform/Platform.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/Unarchiver.h"

namespace tavlo::objc {
namespace {

// Looks for objects of named classes, into what is shared once.
class ObjectSearch {
 public:
  bool finds(const Value& value) {
    if (value.ifObject()) return true;
    if (value.identity() && !seen_.insert(value.identity()).second) return false;
    if (const ValueList* const list = value.ifList()) return findsIn(*list);
    if (const ValueList* const set = value.ifSet()) return findsIn(*set);
    const ValueMap* const map = value.ifMap();
    if (!map) return false;
    for (const auto& [key, entry] : *map) {
      if (finds(key) || finds(entry)) return true;
    }
    return false;
  }

 private:
  bool findsIn(const ValueList& items) {
    for (const Value& item : items) {
      if (finds(item)) return true;
    }
    return false;
  }

  std::unordered_set<const void*> seen_;
};

id startDateOf(id record) {
  if ([record isKindOfClass:[NSDictionary class]]) return [record objectForKey:@"startdate"];
  return [record respondsToSelector:@selector(startdate)] ? [record valueForKey:@"startdate"] : nil;
}

}  // namespace

id listOf(const Value& list, bool isVideo) {
  if (ObjectSearch().finds(list)) {
    const auto platform = platform::current();
    platform::FileManager& files = platform->fileManager();
    const auto name = isVideo ? kVideoListName : kInterstitialListName;
    const auto bytes = files.dataWithContentsOfFile(appendedPathComponent(cacheDirectory(files), name));
    const id unarchived = bytes ? apple_platform::unarchived(*bytes) : nil;
    if (unarchived != nil) return unarchived;
  }
  return apple_platform::objectOf(list);
}

NSArray* sortedByStartDate(id list) {
  const bool isSet = [list isKindOfClass:[NSSet class]];
  if (!isSet && ![list isKindOfClass:[NSArray class]]) return nil;
  NSArray* const records = isSet ? [list allObjects] : list;
  ValueList dates;
  for (NSUInteger i = 0; i < [records count]; ++i) {
    ValueMap record{{Value::literal("place"), Value(std::uint64_t{i})}};
    if (auto date = apple_platform::valueOf(startDateOf([records objectAtIndex:i]))) {
      record.append(Value::literal("startdate"), *std::move(date));
    }
    dates.push_back(Value::map(std::move(record)));
  }
  const auto sorted = tavlo::TavloUtility::sortCacahedVideoDates(Value::list(std::move(dates)));
  NSMutableArray* const ordered = [NSMutableArray arrayWithCapacity:[records count]];
  for (const Value& record : *sorted->ifList()) {
    [ordered addObject:[records objectAtIndex:record.ifMap()->find("place")->ifInteger()->low]];
  }
  return ordered;
}

}  // namespace tavlo::objc
