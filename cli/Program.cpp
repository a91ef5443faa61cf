#include "cli/Program.h"

#include <cstdio>
#include <exception>
#include <new>
#include <variant>

#include "cli/CommandLine.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "host/Database.h"

namespace tavlo::cli {
namespace {

constexpr int kFailed = 1;
constexpr int kUsedWrongly = 2;

void runOrThrow(std::span<const std::string> arguments) {
  const Invocation invocation = parseCommandLine(arguments);
  Output output(invocation.globals.quiet, invocation.globals.color);
  const Run run{.globals = invocation.globals, .output = output};
  std::visit([&](const auto& command) { execute(command, run); }, invocation.command);
  output.finish();
}

}  // namespace

int runProgram(std::span<const std::string> arguments) noexcept try {
  runOrThrow(arguments);
  return 0;
} catch (const UsageError& error) {
  reportError(std::string(error.what()) + "; see " + error.command() + " --help");
  return kUsedWrongly;
} catch (const Failure& error) {
  reportError(error.what());
  return kFailed;
} catch (const host::DatabaseError& error) {
  reportError(error.what());
  return kFailed;
} catch (const std::bad_alloc&) {
  std::fputs("tavlo: out of memory; free some, or give less at once\n", stderr);  // and none is needed for this
  return kFailed;
} catch (const std::exception& error) {
  reportError(std::string("internal error: ") + error.what());
  return kFailed;
} catch (...) {
  reportError("internal error: unknown");
  return kFailed;
}

}  // namespace tavlo::cli
