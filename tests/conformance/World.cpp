#include "tests/conformance/World.h"

#include "common/Slot.h"
#include "location/LocationSlots.h"

namespace tavlo::conformance {
namespace {

bool isNull(const Value* value) { return value && value->isNull(); }

}  // namespace

World::World(const Value& given) : platform_(std::make_shared<GivenPlatform>(given, seen_)) {
  if (!isNull(member(given, "package"))) package_ = packageOf(member(given, "package"), seen_);
  TavloPackage::install(package_);
  const Value* const counters = member(given, "counters");
  TavloUniqueUserHandler::install(isNull(counters) ? nullptr : usersOf(counters ? *counters : Value(), seen_));
  DataBaseHandler::install(dataBaseOf(member(given, "records"), seen_));
  Logger::install(std::make_shared<SeenLines>(seen_));
  TavloException::install(std::make_shared<SeenReports>(seen_));
  platform::install(platform_);
}

World::~World() {
  platform::install(nullptr);
  TavloException::install(nullptr);
  Logger::install(nullptr);
  DataBaseHandler::install(nullptr);
  TavloUniqueUserHandler::install(nullptr);
  TavloPackage::install(nullptr);
  locationManager().store(nullptr);
  processSlot<platform::Bundle>().store(nullptr);
  processSlot<const platform::Image>().store(nullptr);
  processSlot<platform::DocumentInteractionController>().store(nullptr);
}

void World::act(const std::string& what, const Value& step) {
  if (what == "runTasks") return platform_->runTasks();
  if (what == "restart") return platform_->restart();
  if (what == "bundle") return platform_->setBundle(member(step, "images"));
  if (what == "remove") return platform_->files.remove(textOf(member(step, "path")).value());
  if (what == "set" && package_) return setPackage(*package_, member(step, "package"));
  if (what == "answer") {
    const auto handler = platform_->lookUps->at(static_cast<std::size_t>(integerOf(member(step, "lookUp"))));
    return handler(placemarksOf(member(step, "placemarks")), textOf(member(step, "error")));
  }
  throw std::runtime_error("a step says \"" + what + "\", which nothing here does");
}

}  // namespace tavlo::conformance
