#include "cli/DemoReport.h"

#include <utility>

#include "cli/Errors.h"
#include "cli/ImagePreview.h"
#include "cli/Json.h"

namespace tavlo::cli {

void DemoReport::say(const std::string& text) {
  if (!run_.globals.json) run_.output.answerLine(text);
}

void DemoReport::draw(const platform::Image& image) {
  if (run_.globals.json) return;
  const TableLook look = run_.output.tableLook();
  run_.output.answer(imagePreview(image, look.styled ? PreviewLook::blocks : PreviewLook::characters,
                                  look.width.value_or(kWidestPreview)));
}

void DemoReport::table(const std::vector<ExplainedPair>& pairs) {
  if (!run_.globals.json) run_.output.answer(explanationTable(pairs, run_.output.tableLook()));
}

void DemoReport::request(const Contract& contract, const std::string& text) {
  say("\n" + text);
  requests_.append(contract.name, text);
}

void DemoReport::check(const std::string& claim, bool holds) {
  say((holds ? "ok      " : "FAILED  ") + claim);
  checks_.push_back(Value::map({{"claim", claim}, {"holds", holds}}));
  if (!holds) ++failed_;
}

void DemoReport::finish() {
  const std::string count = std::to_string(checks_.size());
  if (failed_ == 0) say("\nAll " + count + " checks hold.");
  if (run_.globals.json) {
    run_.output.answerLine(toJson(
        Value::map({{"requests", Value::map(std::move(requests_))}, {"checks", Value::list(std::move(checks_))}})));
  }
  if (failed_ > 0) {
    throw Failure(std::to_string(failed_) + " of " + count + " checks of the demo failed; see FAILED in its output");
  }
}

}  // namespace tavlo::cli
