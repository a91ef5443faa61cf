// locate: the position of the device and its address, as the SDK fetches them.
#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/GeocoderChoice.h"
#include "cli/Interrupt.h"
#include "cli/Json.h"
#include "cli/LocationSteps.h"
#include "cli/LocationWatch.h"
#include "cli/Place.h"
#include "cli/Requests.h"
#include "cli/SessionFileUpdate.h"
#include "common/Format.h"
#include "host/FixedPosition.h"
#include "host/SessionRecord.h"

namespace tavlo::cli {
namespace {

linux_platform::Options outsideOf(const Locate& command) {
  linux_platform::Options outside;
  outside.location.authorization = command.patience;
  outside.location.desktopId = command.desktopId.value_or("");
  outside.geocoding.timeLimit = command.patience;
  if (command.fixed) outside.locationServices = std::make_shared<host::FixedPosition>(*command.fixed);
  try {
    linux_platform::check(outside.location);
  } catch (const std::invalid_argument& error) {
    throw UsageError(error.what(), "tavlo locate");
  }
  useGeocoder(command.geocoder, outside);
  return outside;
}

std::string secondsText(std::chrono::seconds seconds) {
  return std::to_string(seconds.count()) + (seconds.count() == 1 ? " second" : " seconds");
}

std::string lateText(WaitEnd end, const std::string& awaited, const Locate& command) {
  if (end == WaitEnd::interrupted) return "interrupted before " + awaited + "; run it again";
  return "no sign of " + awaited + " within " + secondsText(command.patience) + "; --timeout SECONDS gives it longer";
}

// What is in the way, empty when nothing is. With --wait that is also what the user or the system refuses.
std::string fetch(LocationWatch& watch, const Locate& command, const Patience& patience) {
  if (command.wait) {
    if (!platform::current()->locationServices().locationServicesEnabled()) return whyNoPosition(watch.report());
    const WaitEnd asked = watch.askPermission(patience);
    if (asked != WaitEnd::done) return lateText(asked, "an answer to the request for permission", command);
    if (!isAllowed(*watch.report().status)) return whyNoPosition(watch.report());
    const WaitEnd found = watch.askPosition(patience);
    if (found != WaitEnd::done) return lateText(found, "a position", command);
    if (!watch.hasPosition()) return "the position service has no position to give; give one with --fixed LAT,LON";
  }
  const WaitEnd end = watch.fetch(patience);
  return end == WaitEnd::done ? "" : lateText(end, "the geocoder's answer", command);
}

// The pairs of the ad request that a fetch fills, as its contract has them.
std::vector<ExplainedPair> sentPairs() {
  std::vector<ExplainedPair> pairs = explainRequest(kAdRequestContract);
  std::erase_if(pairs, [](const ExplainedPair& explained) {
    const auto* const text = std::get_if<PackageText>(&explained.pair->source);
    return !text || (*text != PackageText::getLatitude && *text != PackageText::getLongitude &&
                     *text != PackageText::getUserAddress);
  });
  return pairs;
}

std::string shown(const Text& text) {
  if (!text) return std::string(kAbsent);
  return text->empty() ? quoted("") : harmless(*text);
}

void answerLines(const KeptPosition& position, const std::vector<LocationStep>& steps, const Run& run) {
  run.output.answerLine("position  " + shown(position.latitude) + ", " + shown(position.longitude));
  run.output.answerLine("address   " + shown(position.address));
  for (const auto& [pair, raw, sent] : sentPairs()) {
    run.output.answerLine(std::string("sent      ").append(pair->key).append("=").append(*sent.ifText()));
  }
  if (steps.empty()) return;
  run.output.answerLine("");
  std::vector<std::vector<Cell>> rows{headings({"step", "what"})};
  for (const auto& [step, what] : steps) rows.push_back({{.text = step}, {.text = what}});
  run.output.answer(table(rows, {.styled = run.output.tableLook().styled, .width = {}}));
}

Value orNull(const Text& text) { return text ? Value(*text) : Value(); }

// A session file: what is no part of a session stands under "about".
void answerJson(const KeptPosition& position, const std::vector<LocationStep>& steps, const Run& run) {
  ValueMap sentMap;
  for (const auto& [pair, raw, sent] : sentPairs()) sentMap.append(pair->key, sent);
  ValueMap about;
  about.append("sent", Value::map(std::move(sentMap)));
  if (!steps.empty()) {
    ValueList why;
    for (const auto& [step, what] : steps) why.push_back(Value::map({{"step", step}, {"what", what}}));
    about.append("why", Value::list(std::move(why)));
  }
  run.output.answerLine(toJson(Value::map({{"package", Value::map({{"getLatitude", orNull(position.latitude)},
                                                                   {"getLongitude", orNull(position.longitude)},
                                                                   {"getUserAddress", orNull(position.address)}})},
                                           {"about", Value::map(std::move(about))}})));
}

}  // namespace

void execute(const Locate& command, const Run& run) {
  const linux_platform::Options outside = outsideOf(command);  // may read standard input, which Ctrl-C is to end
  const Interrupt interrupt;                                   // before there are other threads
  const Patience patience{.until = std::chrono::steady_clock::now() + command.patience,
                          .wakeUp = interrupt.descriptor()};
  const auto session = std::make_shared<host::SessionRecord>();
  TavloPackage::install(session);
  LocationWatch watch(Place(run.globals).makePlatform(outside));

  const std::string inTheWay = fetch(watch, command, patience);
  const LocationReport report = watch.report();
  const KeptPosition position{
      .latitude = session->getLatitude(), .longitude = session->getLongitude(), .address = session->getUserAddress()};
  const auto steps = command.why ? locationSteps(report, command.fixed.has_value()) : std::vector<LocationStep>();
  run.globals.json ? answerJson(position, steps, run) : answerLines(position, steps, run);

  if (position.latitude && command.save) keepInSessionFile(*command.save, position);
  if (!inTheWay.empty()) throw Failure(inTheWay);
  if (!position.latitude) run.output.note(whyNoPosition(report) + (command.save ? "; nothing is saved" : ""));
  if (!report.error) return;
  const bool hasGeocoder = command.geocoder.service || command.geocoder.table;
  run.output.note(hasGeocoder
                      ? "the address is empty, since the look-up failed: " + *report.error
                      : "the address is empty, since no geocoder is named; --geocoder URL or table:FILE names one");
}

}  // namespace tavlo::cli
