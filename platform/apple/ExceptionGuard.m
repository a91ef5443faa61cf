#import "platform/apple/ExceptionGuard.h"

NSException* tavloExceptionRaisedBy(void (*function)(void* context), void* context) {
  @try {
    function(context);
  } @catch (NSException* exception) {
    return exception;
  }
  return nil;
}
