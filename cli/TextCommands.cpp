// md5, extension and encode: one answer a text.
#include "TavloUtility.h"
#include "cli/Commands.h"
#include "cli/Input.h"
#include "cli/Json.h"
#include "common/Format.h"
#include "request/UrlEncode.h"

namespace tavlo::cli {
namespace {

Text answerTo(TextOperationName operation, const std::string& text) {
  switch (operation) {
    case TextOperationName::md5: return TavloUtility::md5(Value(text));
    case TextOperationName::extension: return TavloUtility::getFileExtensionFromUrl(text);
    case TextOperationName::encode: return urlEncode(text);
  }
  return std::nullopt;
}

}  // namespace

void answerText(const Text& text, const Run& run) {
  if (run.globals.json) {
    run.output.answerLine(toJson(text ? Value(*text) : Value()));
  } else {
    run.output.answerLine(text ? std::string_view(*text) : kAbsent);
  }
}

void execute(const Help& command, const Run& run) { run.output.answer(command.text); }

void execute(const TransformTexts& command, const Run& run) {
  const auto answer = [&](const std::string& text) { answerText(answerTo(command.operation, text), run); };
  for (const std::string& text : command.texts) answer(text);
  if (command.texts.empty()) forEachInputLine(answer);
}

}  // namespace tavlo::cli
