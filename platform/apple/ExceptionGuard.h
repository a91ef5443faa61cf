// Where an exception of the platform's is caught. It is a plain C function in an Objective-C file, because one compiler
// crashes where @catch stands in Objective-C++, and another misses there what C++ catches.
//
// Throws   what is no NSException passes.
#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Calls the function; the exception that came out of it, nil when none did.
NSException* tavloExceptionRaisedBy(void (*function)(void* context), void* context);

#ifdef __cplusplus
}

namespace tavlo::apple_platform {

template <class Callable>
[[nodiscard]] NSException* exceptionRaisedBy(Callable callable) {
  return tavloExceptionRaisedBy([](void* context) { (*static_cast<Callable*>(context))(); }, &callable);
}

}  // namespace tavlo::apple_platform
#endif
