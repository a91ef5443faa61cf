// doctor: what this machine and the container offer.
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "cli/Commands.h"
#include "cli/Doctor.h"
#include "cli/Errors.h"
#include "cli/GeocoderChoice.h"
#include "cli/Json.h"

namespace tavlo::cli {
namespace {

struct Check {
  const char* name;
  Finding (*examine)(const Patient& patient);
};

constexpr auto kChecks = std::to_array<Check>({
    {"container", examineContainer},
    {"settings", examineSettings},
    {"database", examineDatabase},
    {"cache", examineCache},
    {"log", examineLog},
    {"http", examineHttp},
    {"certificates", examineCertificates},
    {"position", examinePosition},
    {"geocoder", examineGeocoder},
    {"portal", examinePortal},
    {"bundle", examineBundle},
    {"volume image", examineVolumeImage},
    {"mute image", examineMuteImage},
});

using Findings = std::vector<std::pair<std::string, Finding>>;

const char* nameOf(Health health) {
  switch (health) {
    case Health::ok: return "ok";
    case Health::note: return "note";
    case Health::broken: return "broken";
  }
  return "";
}

// People are to see what is broken at once.
std::string shownState(Health health) { return health == Health::broken ? "BROKEN" : nameOf(health); }

void answerTable(const Findings& findings, const Run& run) {
  std::vector<std::vector<Cell>> rows{headings({"state", "check", "finding"})};
  for (const auto& [name, finding] : findings) {
    const std::string remedy = finding.remedy ? "; " + *finding.remedy : "";
    rows.push_back({{.text = shownState(finding.health)}, {.text = name}, {.text = harmless(finding.what + remedy)}});
  }
  run.output.answer(table(rows, {.styled = run.output.tableLook().styled, .width = {}}));
}

void answerJson(const Findings& findings, const Run& run) {
  ValueList list;
  for (const auto& [name, finding] : findings) {
    list.push_back(Value::map({{"check", name},
                               {"state", nameOf(finding.health)},
                               {"finding", finding.what},
                               {"remedy", finding.remedy ? Value(*finding.remedy) : Value()}}));
  }
  run.output.answerLine(toJson(Value::list(std::move(list))));
}

}  // namespace

void execute(const Examine& command, const Run& run) {
  const Place place(run.globals);
  linux_platform::Options outside;
  outside.resources = place.resources();
  useGeocoder(command.geocoder, outside);
  const Patient patient{.place = place, .geocoder = command.geocoder, .platform = place.makePlatform(outside)};

  Findings findings;
  std::string brokenNames;
  for (const Check& check : kChecks) {
    const Finding& finding = findings.emplace_back(check.name, check.examine(patient)).second;
    if (finding.health == Health::broken) brokenNames += (brokenNames.empty() ? "" : ", ") + std::string(check.name);
  }
  run.globals.json ? answerJson(findings, run) : answerTable(findings, run);
  if (!brokenNames.empty()) throw Failure("broken: " + brokenNames + "; what to do stands beside each");
}

}  // namespace tavlo::cli
