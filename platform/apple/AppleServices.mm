#import "platform/apple/AppleServices.h"

#import <Foundation/Foundation.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <utility>

#include "common/UrlGrammar.h"
#import "platform/apple/Bridge.h"
#include "platform/apple/ErrorGuard.h"
#import "platform/apple/ExceptionGuard.h"

#if __has_include(<dispatch/dispatch.h>)
#include <dispatch/dispatch.h>
#define TAVLO_HAS_DISPATCH 1
#else
#define TAVLO_HAS_DISPATCH 0
#endif

namespace tavlo::apple_platform {
namespace {

using Task = std::function<void()>;

std::atomic<bool> isLeaving = false;

void run(const Task& task) {
  if (isLeaving) return;
#if __has_feature(objc_arc)
  @autoreleasepool {
    runWithoutThrowing(task);
  }
#else
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  runWithoutThrowing(task);
  [pool drain];
#endif
}

#ifdef GNUSTEP
// GNUstep Base's NSData has one handle a server, which answers with what came first, whatever is asked for later.
NSData* contentsOf(NSURL* url) {
  if ([url isFileURL]) return [NSData dataWithContentsOfURL:url];
  return [[url URLHandleUsingCache:NO] loadInForeground];
}
#else
NSData* contentsOf(NSURL* url) { return [NSData dataWithContentsOfURL:url]; }
#endif

void noteTheEnd() {
  static const bool isNoted = std::atexit([] { isLeaving = true; }) == 0;
  static_cast<void>(isNoted);
}

}  // namespace
}  // namespace tavlo::apple_platform

#if !TAVLO_HAS_DISPATCH

@interface TavloTaskOperation : NSOperation {
 @public
  void* task;  // a std::function<void()>, whose type this compiler cannot encode
}
@end

@implementation TavloTaskOperation
- (void)main {
  tavlo::apple_platform::run(*static_cast<std::function<void()>*>(task));
}
- (void)dealloc {
  delete static_cast<std::function<void()>*>(task);
  [super dealloc];
}
@end

#endif

namespace tavlo::apple_platform {

std::optional<Value> AppleUserDefaults::objectForKey(std::string_view key) {
  return valueOf([[NSUserDefaults standardUserDefaults] objectForKey:stringOf(key)]);
}

void AppleUserDefaults::setObjectForKey(const Value& value, std::string_view key) {
  const id object = objectOf(value);
  const auto set = [=] { [[NSUserDefaults standardUserDefaults] setObject:object forKey:stringOf(key)]; };
  if (NSException* const refused = exceptionRaisedBy(set)) NSLog(@"%@", refused);
}

bool AppleUserDefaults::synchronize() { return [[NSUserDefaults standardUserDefaults] synchronize]; }

void AppleConsole::log(std::string_view message) { NSLog(@"%@", stringOf(message)); }

#if TAVLO_HAS_DISPATCH

void AppleQueue::dispatchAsync(std::function<void()> task) {
  if (!task) return;
  noteTheEnd();
  auto owned = std::make_unique<Task>(std::move(task));
  dispatch_async_f(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_BACKGROUND, 0), owned.release(),
                   [](void* context) {
                     const std::unique_ptr<Task> mine(static_cast<Task*>(context));
                     run(*mine);
                   });
}

#else

void AppleQueue::dispatchAsync(std::function<void()> task) {
  if (!task) return;
  noteTheEnd();
  static NSOperationQueue* const queue = [[NSOperationQueue alloc] init];
  TavloTaskOperation* const operation = [[TavloTaskOperation alloc] init];
  operation->task = new Task(std::move(task));
  [operation setQueuePriority:NSOperationQueuePriorityVeryLow];
  [queue addOperation:operation];
  [operation release];
}

#endif

std::optional<std::string> AppleUrlData::dataWithContentsOfUrl(std::string_view url) {
  std::string text(url);
  std::erase_if(text, [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
  if (!parseUrlReference(text)) return std::nullopt;
  NSData* data = nil;
  const auto fetch = [&] {
    NSURL* const address = [NSURL URLWithString:stringOf(text)];
    data = address == nil ? nil : contentsOf(address);
  };
  if (exceptionRaisedBy(fetch) != nil || data == nil) return std::nullopt;
  return [data length] == 0 ? std::string() : std::string(static_cast<const char*>([data bytes]), [data length]);
}

}  // namespace tavlo::apple_platform
