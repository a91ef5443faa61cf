// Retained: an object of the platform's that is owned, with automatic and with manual reference counting.
//
// Absent   nil.
// Lasting  get() as long as this object; autoreleased() as long as the caller's autorelease pool.
// Threads  as an object of its own: one thread at a time, or several that only read it.
#pragma once

#import <Foundation/Foundation.h>

#include <utility>

namespace tavlo::apple_platform {

#if __has_feature(objc_arc)

class Retained {
 public:
  Retained() = default;
  explicit Retained(id object) : object_(object) {}

  [[nodiscard]] id get() const { return object_; }
  [[nodiscard]] id autoreleased() const { return object_; }

 private:
  id object_ = nil;
};

#else

class Retained {
 public:
  Retained() = default;
  explicit Retained(id object) : object_([object retain]) {}
  Retained(const Retained& other) : Retained(other.object_) {}
  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
  Retained& operator=(Retained other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Retained() { [object_ release]; }

  [[nodiscard]] id get() const { return object_; }
  [[nodiscard]] id autoreleased() const { return [[object_ retain] autorelease]; }

 private:
  id object_ = nil;
};

#endif

// What was just made, owned by the caller's autorelease pool, with either kind of reference counting.
[[nodiscard]] inline id autoreleased(id made) {
#if !__has_feature(objc_arc)
  [made autorelease];
#endif
  return made;
}

}  // namespace tavlo::apple_platform
