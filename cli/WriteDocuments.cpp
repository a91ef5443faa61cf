// Writes the manual page and the shells' completions of the program, at build time.
//
//   tavlo_documents FOLDER    FOLDER/tavlo.1, FOLDER/tavlo (bash), FOLDER/_tavlo (zsh), FOLDER/tavlo.fish
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "cli/Completions.h"
#include "cli/ManualPage.h"

namespace {

using tavlo::cli::CommandDescription;

struct Document {
  const char* name;
  std::string (*text)(const CommandDescription& program);
};

constexpr auto kDocuments = std::to_array<Document>({
    {"tavlo.1", tavlo::cli::manualPage},
    {"tavlo", tavlo::cli::bashCompletion},
    {"_tavlo", tavlo::cli::zshCompletion},
    {"tavlo.fish", tavlo::cli::fishCompletion},
});

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: tavlo_documents FOLDER\n", stderr);
    return 2;
  }
  const CommandDescription program = tavlo::cli::describeCommandLine();
  for (const Document& document : kDocuments) {
    const auto file = std::filesystem::path(argv[1]) / document.name;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << document.text(program);
    if (!stream.flush()) {
      std::fprintf(stderr, "tavlo_documents: cannot write %s\n", file.c_str());
      return 1;
    }
  }
  return 0;
}
