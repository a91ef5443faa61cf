#import "platform/apple/Unarchiver.h"

#import "platform/apple/ExceptionGuard.h"

namespace tavlo::apple_platform {

// The operation is the one that takes any class; an app's own archives are all that is read.
id unarchived(std::string_view bytes) {
  id root = nil;
  NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
#endif
  NSException* const raised = exceptionRaisedBy([&] { root = [NSKeyedUnarchiver unarchiveObjectWithData:data]; });
#ifdef __clang__
#pragma clang diagnostic pop
#endif
  return raised == nil ? root : nil;
}

}  // namespace tavlo::apple_platform
