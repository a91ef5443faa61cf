#include "tests/conformance/GivenPlatform.h"

namespace tavlo::conformance {
namespace {

class GivenController final : public platform::DocumentInteractionController {
 public:
  GivenController(std::string url, bool shows, Seen seen)
      : url_(std::move(url)), shows_(shows), seen_(std::move(seen)) {}

  bool presentOpenInMenuFromRect(const platform::Rect& rect, const std::shared_ptr<platform::View>& inView,
                                 bool animated) override {
    const auto whole = [](double side) { return Value(static_cast<std::int64_t>(side)); };
    seen_->menus.push_back(
        Value::map({{"url", url_},
                    {"rect", Value::list({whole(rect.x), whole(rect.y), whole(rect.width), whole(rect.height)})},
                    {"view", inView != nullptr},
                    {"animated", animated}}));
    return shows_;
  }

 private:
  std::string url_;
  bool shows_;
  Seen seen_;
};

bool appsSay(const Value& given, std::string_view what, bool otherwise) {
  const Value* const apps = member(given, "apps");
  return truthOf(apps ? member(*apps, what) : nullptr, otherwise);
}

Value both() { return Value::list({"volume.png", "mute.png"}); }

}  // namespace

GivenPlatform::GivenPlatform(const Value& given, Seen seen)
    : files(member(given, "files"), member(given, "failing")),
      seen_(std::move(seen)),
      location_(member(given, "location"), seen_),
      urls_(member(given, "urls") ? *member(given, "urls") : Value()),
      opens_(appsSay(given, "opens", false)),
      shows_(appsSay(given, "shows", true)) {
  for (const auto& [key, value] : entriesOf(member(given, "settings"))) {
    disk_->entries.insert_or_assign(std::string(*key.ifText()), value);
  }
  restart();
  const Value images = both();
  setBundle(member(given, "bundle") ? member(given, "bundle") : &images);
}

void GivenPlatform::setBundle(const Value* images) {
  bundle_->reset();
  if (!images || images->isNull()) return;
  bundle_->emplace();
  for (const Value& image : itemsOf(images)) (*bundle_)->insert(std::string(image.ifText().value()));
}

void GivenPlatform::runTasks() {
  while (!tasks_.empty()) {
    const auto task = std::move(tasks_.front());
    tasks_.pop_front();
    task();
  }
}

Value GivenPlatform::storedSettings() const {
  ValueMap stored;
  for (const auto& [key, value] : settings_->stored()) stored.set(Value(key), value);
  return Value::map(std::move(stored));
}

std::optional<Value> GivenPlatform::objectForKey(std::string_view key) {
  seen_->asks.push_back("objectForKey:" + std::string(key));
  return settings_->objectForKey(key);
}

void GivenPlatform::setObjectForKey(const Value& value, std::string_view key) {
  seen_->asks.push_back("setObject:forKey:" + std::string(key));
  settings_->setObjectForKey(value, key);
}

std::optional<std::string> GivenPlatform::dataWithContentsOfUrl(std::string_view url) {
  const Value* const bytes = member(urls_, url);
  return bytes ? std::optional(bytesOf(*bytes)) : std::nullopt;
}

std::shared_ptr<platform::Bundle> GivenPlatform::bundleWithPath(const Text& path) {
  const bool found = *bundle_ && path == std::string(kResources) + "/TavloSDKResource.bundle";
  return found ? std::make_shared<GivenBundle>(*path, bundle_) : nullptr;
}

std::shared_ptr<const platform::Image> GivenPlatform::imageWithContentsOfFile(const Text& path) {
  return path ? std::make_shared<GivenImage>(path->substr(path->rfind('/') + 1)) : nullptr;
}

bool GivenPlatform::canOpenURL(std::string_view url) {
  seen_->asks.push_back("canOpenURL:" + std::string(url));
  return opens_;
}

std::shared_ptr<platform::DocumentInteractionController> GivenPlatform::interactionControllerWithURL(
    std::string_view url) {
  return std::make_shared<GivenController>(std::string(url), shows_, seen_);
}

}  // namespace tavlo::conformance
