// Counts how many objects of a kind are alive.
#pragma once

#include <atomic>

namespace tavlo::test {

class Count {
 public:
  [[nodiscard]] int alive() const { return alive_; }
  [[nodiscard]] int made() const { return made_; }

 private:
  friend class Counted;

  std::atomic<int> alive_ = 0;
  std::atomic<int> made_ = 0;
};

// A member of what is counted.
class Counted {
 public:
  explicit Counted(Count& count) : count_(count) {
    ++count_.alive_;
    ++count_.made_;
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --count_.alive_; }

 private:
  Count& count_;
};

}  // namespace tavlo::test
