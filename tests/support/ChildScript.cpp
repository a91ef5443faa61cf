#include "tests/support/ChildScript.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace tavlo::test {
namespace {

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe to the script");
  return ends;
}

}  // namespace

ChildScript::ChildScript(const std::string& name, const std::vector<std::string>& arguments) {
  const auto [theirInput, ourInput] = makePipe();
  const auto [ourOutput, theirOutput] = makePipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, theirInput, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, theirOutput, STDOUT_FILENO);
  std::vector<std::string> words{"/usr/bin/python3", "-B", std::string(TAVLO_SOURCE_DIR) + "/tests/support/" + name};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int error = ::posix_spawn(&process_, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(theirInput);
  ::close(theirOutput);
  input_ = ourInput;
  output_ = ::fdopen(ourOutput, "r");
  if (error != 0) throw std::runtime_error(name + " cannot be started");
}

ChildScript::~ChildScript() {
  ::close(input_);
  ::waitpid(process_, nullptr, 0);
  std::fclose(output_);
}

void ChildScript::say(const std::string& line) {
  const std::string whole = line + "\n";
  if (::write(input_, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
    throw std::runtime_error("the script has ended");
  }
}

std::string ChildScript::readLine() {
  std::array<char, 4096> line{};
  if (std::fgets(line.data(), line.size(), output_) == nullptr) throw std::runtime_error("the script has ended");
  std::string text = line.data();
  text.pop_back();
  return text;
}

void ChildScript::expect(const std::string& line) {
  const std::string said = readLine();
  if (said != line) throw std::runtime_error("the script says \"" + said + "\" in place of \"" + line + "\"");
}

}  // namespace tavlo::test
