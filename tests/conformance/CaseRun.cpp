#include "tests/conformance/CaseRun.h"

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <new>

#include "tests/conformance/Json.h"
#include "tests/conformance/Operations.h"
#include "tests/conformance/World.h"

namespace tavlo::conformance {
namespace {

constexpr std::string_view kAnyRest = "${any}";

// What a step may hold; a misspelt expectation would expect nothing.
constexpr auto kMembers = std::to_array<std::string_view>({"call", "with", "gives", "raises", "log", "console",
                                                           "reports", "menus", "asks", "files", "settings", "package",
                                                           "do", "path", "images", "lookUp", "placemarks", "error"});

Value listOf(const std::vector<std::string>& lines) {
  ValueList items;
  for (const std::string& line : lines) items.emplace_back(line);
  return Value::list(std::move(items));
}

Value valueOr(const Text& text) { return text ? Value(*text) : Value(); }

// A text may end in "${any}", and {"$json": V} is a text that is V as JSON.
bool matches(const Value& expected, const Value& got) {
  const auto pattern = expected.ifText();
  const auto text = got.ifText();
  if (pattern && text && pattern->ends_with(kAnyRest)) {
    return text->starts_with(pattern->substr(0, pattern->size() - kAnyRest.size()));
  }
  if (const Value* const json = member(expected, "$json")) return text && parsed(*text) == *json;
  if (expected.ifList() && got.ifList()) {
    return std::ranges::equal(*expected.ifList(), *got.ifList(), matches);
  }
  return expected == got;
}

class StepRun {
 public:
  StepRun(World& world, const Value& step, std::string where) : world_(world), step_(step), where_(std::move(where)) {}

  std::vector<std::string> differences() {
    for (const auto& [name, value] : entriesOf(&step_)) {
      if (std::ranges::find(kMembers, *name.ifText()) == kMembers.end()) tell("member", Value(), name);
    }
    compareAnswer();
    compareEvents(world_.takeEvents());
    compareState();
    return std::move(differences_);
  }

 private:
  void compareAnswer() {
    std::optional<Value> answer;
    Text raised;
    try {
      answer = run();
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      raised = error.what();
    }
    if (const bool expected = truthOf(member(step_, "raises"), false); expected != raised.has_value()) {
      tell("raises", expected, raised ? Value(*raised) : Value(false));
    }
    if (const Value* const gives = member(step_, "gives")) compare("gives", *gives, answer.value_or(Value()));
  }

  [[nodiscard]] std::optional<Value> run() {
    if (const Text operation = textOf(member(step_, "call"))) {
      const Value* const with = member(step_, "with");
      return call(*operation, with && !with->isNull() ? std::optional(*with) : std::nullopt);
    }
    world_.act(textOf(member(step_, "do")).value_or(""), step_);
    return std::nullopt;
  }

  void compareEvents(const Events& events) {
    const Value none = Value::list({});
    const auto expected = [&](const char* name) { return member(step_, name) ? *member(step_, name) : none; };
    compare("log", expected("log"), listOf(events.log));
    compare("console", expected("console"), listOf(events.console));
    compare("reports", expected("reports"), listOf(events.reports));
    compare("menus", expected("menus"), Value::list(events.menus));
    if (const Value* const asks = member(step_, "asks")) compare("asks", *asks, listOf(events.asks));
  }

  void compareState() {
    if (const Value* const files = member(step_, "files")) compareFiles(*files);
    if (const Value* const settings = member(step_, "settings")) {
      compare("settings", *settings, world_.platform().storedSettings());
    }
    const bool isSet = textOf(member(step_, "do")) == "set";
    if (const Value* const package = isSet ? nullptr : member(step_, "package")) comparePackage(*package);
  }

  void compareFiles(const Value& expected) {
    ValueMap bytes;
    for (const auto& [path, content] : entriesOf(&expected)) {
      bytes.set(path, path.ifText()->ends_with('/') ? Value("") : Value(bytesOf(content)));
    }
    ValueMap got;
    for (const auto& [path, content] : world_.platform().files.tree()) got.set(Value(path), Value(content));
    compare("files", Value::map(std::move(bytes)), Value::map(std::move(got)));
  }

  // Of the texts that are named.
  void comparePackage(const Value& expected) {
    for (const auto& [key, value] : entriesOf(&expected)) {
      const auto name = *key.ifText();
      Text got;
      if (const auto text = packageTextNamed(name); text && world_.package()) {
        const auto entry = world_.package()->texts.find(*text);
        if (entry != world_.package()->texts.end()) got = entry->second;
      }
      compare("package." + std::string(name), value, valueOr(got));
    }
  }

  void compare(const std::string& what, const Value& expected, const Value& got) {
    if (!matches(expected, got)) tell(what, expected, got);
  }
  void tell(const std::string& what, const Value& expected, const Value& got) {
    differences_.push_back(where_ + ": " + what + "\n  expected: " + shown(expected) + "\n  got:      " + shown(got));
  }

  World& world_;
  const Value& step_;
  std::string where_;
  std::vector<std::string> differences_;
};

}  // namespace

std::vector<Case> casesIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  std::vector<Case> cases;
  for (const auto& file : files) {
    const Value content = readFile(file.string());
    for (const Value& one : itemsOf(&content)) {
      cases.push_back({.file = file.stem().string(), .name = textOf(member(one, "name")).value(), .content = one});
    }
  }
  return cases;
}

std::vector<std::string> differences(const Case& which) {
  const std::string name = which.file + ": " + which.name;
  std::vector<std::string> all;
  try {
    const Value* const given = member(which.content, "given");
    World world(given ? *given : Value());
    int number = 0;
    for (const Value& step : itemsOf(member(which.content, "steps"))) {
      const std::string where = name + ", step " + std::to_string(++number);
      for (std::string& text : StepRun(world, step, where).differences()) all.push_back(std::move(text));
    }
    if (number == 0) all.push_back(name + ": there are no steps");
  } catch (const std::exception& error) {
    all.push_back(name + ": " + error.what());
  }
  return all;
}

}  // namespace tavlo::conformance
