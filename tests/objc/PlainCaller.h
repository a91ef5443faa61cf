// The component's class as a file in plain Objective-C calls it, whose compiler knows nothing of C++.
#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// What each of the 27 selectors answers to ordinary arguments, under its name. What answers nothing is called only.
NSDictionary* tavloAnswersInPlainObjectiveC(void);

#ifdef __cplusplus
}
#endif
