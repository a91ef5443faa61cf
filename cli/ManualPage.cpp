#include "cli/ManualPage.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "TavloVersion.h"
#include "cli/Words.h"

namespace tavlo::cli {
namespace {

constexpr const char* kEnvironment = R"(.SH ENVIRONMENT
.TP
.B TAVLO_CONTAINER
Where everything that is kept lies, when
.B \-\-container
does not say it.
.TP
.B XDG_DATA_HOME
Below it lies the container that nothing names; without it,
.IR ~/.local/share .
.TP
.B NO_COLOR
When it is set and not empty, answers have no colours unless
.B \-\-color
says so.
)";

// Text as the formatter takes it: what it would read as a command, and characters that it would make prettier.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '\\': result += "\\e"; break;
      case '-': result += "\\-"; break;
      case '\'': result += "\\(aq"; break;
      case '`': result += "\\(ga"; break;
      case '^': result += "\\(ha"; break;
      case '~': result += "\\(ti"; break;
      case '"': result += "\\(dq"; break;
      default: result += c;
    }
  }
  return result.starts_with('.') ? "\\&" + result : result;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// A footer's paragraphs: lines that are indented stay as they are, others flow, and one that ends with a colon is a
// heading, as `heading` writes it.
template <class Heading>
void appendFooter(std::string& page, const std::string& footer, const std::string& plain, const Heading& heading) {
  std::istringstream lines(footer);
  bool isKept = false;
  bool begins = true;
  for (std::string line; std::getline(lines, line); begins = line.empty()) {
    const bool keep = line.starts_with(' ');
    if (isKept && !keep) page += ".EE\n.RE\n";
    if (begins && !line.empty() && !keep && !line.ends_with(':')) page += plain;
    if (!keep && line.ends_with(':')) {
      page += heading(line.substr(0, line.size() - 1));
    } else if (!line.empty()) {
      page += (keep && !isKept ? ".RS 2\n.EX\n" : "") + escaped(keep ? line.substr(2) : line) + '\n';
    }
    isKept = keep;
  }
  if (isKept) page += ".EE\n.RE\n";
}

std::string parameter(const ParameterDescription& option) {
  const std::string names = (option.shortName.empty() ? "" : option.shortName + ", ") + option.name;
  std::string tag = ".B \"" + escaped(names) + "\"\n";
  if (!option.value.empty()) tag = ".BI " + escaped(names) + " \" " + escaped(option.value) + "\"\n";
  return ".TP\n" + tag + escaped(option.text) + ".\n";
}

std::string argument(const ParameterDescription& argument) {
  return ".TP\n.I " + escaped(argument.name) + '\n' + escaped(argument.text) + ".\n";
}

// "tavlo cache fetch URL..."
std::string usage(const CommandDescription& command) {
  std::string line = joined(command.words, " ");
  for (const ParameterDescription& option : command.options) {
    line += " [" + option.name + (option.value.empty() ? "" : " " + option.value) + ']';
  }
  for (const ParameterDescription& argument : command.arguments) {
    const std::string word = argument.name + (argument.mayRepeat ? "..." : "");
    line += argument.required ? ' ' + word : " [" + word + ']';
  }
  return command.commands.empty() ? line : line + " COMMAND";
}

std::string section(const CommandDescription& command) {
  std::string page = ".SS " + escaped(usage(command)) + '\n' + escaped(command.text) + '\n';
  for (const ParameterDescription& each : command.arguments) page += argument(each);
  for (const ParameterDescription& each : command.options) page += parameter(each);
  appendFooter(page, command.footer, ".PP\n", [](const std::string& title) { return ".PP\n" + title + ":\n"; });
  return page;
}

}  // namespace

std::string manualPage(const CommandDescription& program) {
  std::string page = ".TH TAVLO 1 \"\" \"tavlo " TAVLO_VERSION
                     "\" \"User Commands\"\n"
                     ".SH NAME\ntavlo \\- shows and checks what a video\\-advertising SDK's utility component does\n"
                     ".SH SYNOPSIS\n.B tavlo\n.RI [ OPTION ...]\n.I COMMAND\n.RI [ ARGUMENT ...]\n"
                     ".SH DESCRIPTION\n";
  page += escaped(program.text) + "\n.SH OPTIONS\nThey may stand before a command and after it.\n";
  for (const ParameterDescription& option : program.options) page += parameter(option);
  page += ".SH COMMANDS\n";
  forEachCommand(program, [&page](const CommandDescription& command) {
    if (command.words.size() > 1) page += section(command);
  });
  page += kEnvironment;
  appendFooter(page, program.footer, ".SH NOTES\n",
               [](const std::string& title) { return ".SH " + upper(title) + '\n'; });
  return page;
}

}  // namespace tavlo::cli
