#include "host/SessionRecord.h"

#include <cstddef>
#include <utility>

namespace tavlo::host {

void SessionRecord::set(PackageText text, Text value) {
  GuardedText& guarded = texts_[static_cast<std::size_t>(text)];
  const std::lock_guard lock(guarded.mutex);
  std::swap(guarded.value, value);  // the old text is destroyed with the parameter, after the lock
}

Text SessionRecord::get(PackageText text) const {
  const GuardedText& guarded = texts_[static_cast<std::size_t>(text)];
  const std::lock_guard lock(guarded.mutex);
  return guarded.value;
}

void SessionRecord::setLatitudeAndLogitude(const Text& latitude, const Text& longitude) {
  set(PackageText::getLatitude, latitude);
  set(PackageText::getLongitude, longitude);
}

void SessionRecord::setUserAddress(const Text& address) { set(PackageText::getUserAddress, address); }

}  // namespace tavlo::host
