// The archived lists as the platform's objects, and the order of the app's own records.
#pragma once

#import <Foundation/Foundation.h>

#include "common/Value.h"

namespace tavlo::objc {

// The list that was read from the cache. Where it holds objects of named classes, the platform's own unarchiver reads
// the file again and makes them; what it cannot make shows its fields (platform/apple/Bridge.h).
[[nodiscard]] id listOf(const Value& list, bool isVideo);

// The same records, ordered by "startdate": that of a dictionary, or what a record answers to that message. nil for
// what is neither an array nor a set.
[[nodiscard]] NSArray* sortedByStartDate(id list);

}  // namespace tavlo::objc
