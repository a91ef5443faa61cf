// The platform's objects and the component's values, both ways. The only file that turns one into the other.
//
// Values   texts are UTF-16 there and UTF-8 here; U+0000 and lone surrogates (three bytes each) go both ways. A byte
//          that is no UTF-8 becomes U+FFFD. Truth values stay apart from numbers, and every kind has its own class:
//            null      NSNull                                   text         NSString
//            boolean   NSNumber of a BOOL                       data         NSData
//            integer   NSNumber, NSDecimalNumber beyond 64 bit  url          NSURL, NSString when it takes it for none
//            real      NSNumber of a double, narrow of a float  uid          NSNumber, NSNull for index 0
//            date      NSDate                                   list, set    NSArray, NSSet
//            object    NSDictionary of its fields and "$class"  map          NSDictionary
//          An object of any other class becomes Kind::object, with the name of its class and no fields. Keys of a map
//          that the platform takes for equal (true and 1) become one, of which the last counts. Contents that are
//          shared stay shared.
// Absent   nil is absent, both ways.
// Bounds   a collection in itself, and what is nested deeper than property_list::kDeepest, is null.
// Threads  any thread. What comes from there must not change meanwhile.
// Throws   std::bad_alloc, and what an object of a class that is not the platform's raises when it is read.
//
// Run here with GNUstep Base, with manual reference counting only.
#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string_view>

#include "common/Text.h"
#include "common/Value.h"

namespace tavlo::apple_platform {

// An object that is no string counts by its text form (common/Format.h).
[[nodiscard]] Text textOf(id string);
[[nodiscard]] NSString* stringOf(std::string_view text);
[[nodiscard]] NSString* stringOfText(const Text& text);

[[nodiscard]] std::optional<Value> valueOf(id object);
[[nodiscard]] id objectOf(const std::optional<Value>& value);

}  // namespace tavlo::apple_platform
