// Runs the same work on several threads, which begin together.
#pragma once

#include <functional>
#include <thread>
#include <vector>

#include "tests/support/Gate.h"

namespace tavlo::test {

inline void onThreadsAtOnce(int count, const std::function<void(int thread)>& work) {
  Gate gate;
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      gate.wait();
      work(i);
    });
  }
  gate.open();
  for (std::thread& thread : threads) thread.join();
}

}  // namespace tavlo::test
