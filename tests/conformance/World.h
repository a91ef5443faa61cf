// What a case is run in: its platform and its collaborators, in place for as long as this object lives. One at a time.
#pragma once

#include <memory>
#include <utility>

#include "tests/conformance/Collaborators.h"
#include "tests/conformance/GivenPlatform.h"

namespace tavlo::conformance {

class World {
 public:
  explicit World(const Value& given);
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World();

  // Anything that a step says beside a call: "runTasks", "answer", "restart", "remove", "set" or "bundle".
  void act(const std::string& what, const Value& step);

  [[nodiscard]] Events takeEvents() { return std::exchange(*seen_, {}); }
  [[nodiscard]] GivenPlatform& platform() { return *platform_; }
  // nullptr when the case has none.
  [[nodiscard]] const test::RecordingPackage* package() const { return package_.get(); }

 private:
  Seen seen_ = std::make_shared<Events>();
  std::shared_ptr<GivenPlatform> platform_;
  std::shared_ptr<test::RecordingPackage> package_;
};

}  // namespace tavlo::conformance
