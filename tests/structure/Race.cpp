// A program with a race, for the builds with ThreadSanitizer alone: one that ended well would say that they see none.
#include <cstdio>

#include "tests/support/ThreadsAtOnce.h"

int main() {
  int unguarded = 0;
  tavlo::test::onThreadsAtOnce(8, [&](int) { ++unguarded; });
  std::printf("%d\n", unguarded);
  return 0;
}
