// Output: what the program says, and where. Standard output has the answer and nothing else; notes and errors
// go to standard error.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/Display.h"

namespace tavlo::cli {

enum class Color { automatic, always, never };

class Output {
 public:
  Output(bool quiet, Color color);

  // Each throws Failure when standard output does not take it, at the latest finish().
  void answer(std::string_view text);  // as it comes
  void answerLine(std::string_view line);
  void finish();

  // Dropped when the program is to be quiet.
  void note(std::string_view text) const;

  // What goes on, in one line of a terminal that each call writes anew; nothing elsewhere. In the end the last
  // state, also where there is no terminal. Dropped when the program is to be quiet.
  void progress(std::string_view text);
  void endProgress(std::string_view text);

  // How a table on standard output looks: styled and fitted on a terminal.
  [[nodiscard]] TableLook tableLook() const;

 private:
  const bool quiet_;
  const Color color_;
  std::size_t progressWidth_ = 0;  // of what stands in the terminal's line
};

// One line to standard error, whatever the message holds.
void reportError(std::string_view message);

}  // namespace tavlo::cli
