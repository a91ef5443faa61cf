// The Documents directory of a case: in memory, with the operations that are given to fail.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/conformance/Given.h"
#include "tests/conformance/Places.h"
#include "tests/support/MemoryFileManager.h"

namespace tavlo::conformance {

class GivenFiles final : public test::MemoryFileManager {
 public:
  // A tree is a map of paths below the Documents directory to bytes; "PATH/" is a directory with nothing in it.
  // `failing` is a list of maps with "operation", "description" and, for one path alone, "path".
  GivenFiles(const Value* tree, const Value* failing) {
    for (const auto& [path, bytes] : entriesOf(tree)) put(std::string(*path.ifText()), bytes);
    failing_ = itemsOf(failing);
  }

  platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override {
    if (const Text error = failure("removeItemAtPath", path)) return platform::FileResult::failure(*error);
    return MemoryFileManager::removeItemAtPath(path, removal);
  }
  platform::FileResult createDirectoryAtPath(const Text& path) override {
    if (const Text error = failure("createDirectoryAtPath", path)) return platform::FileResult::failure(*error);
    return MemoryFileManager::createDirectoryAtPath(path);
  }
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override {
    if (failure("contentsOfDirectoryAtPath", path)) return std::nullopt;
    return MemoryFileManager::contentsOfDirectoryAtPath(path);
  }
  std::optional<std::string> dataWithContentsOfFile(const Text& path) override {
    if (failure("dataWithContentsOfFile", path)) return std::nullopt;
    return MemoryFileManager::dataWithContentsOfFile(path);
  }
  platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path,
                                             platform::Durable durable) override {
    if (const Text error = failure("writeToFileAtomically", path)) return platform::FileResult::failure(*error);
    return MemoryFileManager::writeToFileAtomically(bytes, path, durable);
  }

  void put(const std::string& path, const Value& bytes) {
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
      static_cast<void>(MemoryFileManager::createDirectoryAtPath(place(path.substr(0, slash))));
    }
    if (path.ends_with('/')) return;
    static_cast<void>(
        MemoryFileManager::writeToFileAtomically(bytesOf(bytes), place(path), platform::Durable::contents));
  }
  void remove(const std::string& path) {
    static_cast<void>(MemoryFileManager::removeItemAtPath(place(path), platform::Removal::anything));
  }

  // As it is given: empty directories, and files with their bytes.
  [[nodiscard]] std::map<std::string, std::string> tree() {
    std::map<std::string, std::string> tree;
    collect("", tree);
    return tree;
  }

 private:
  [[nodiscard]] static std::string place(const std::string& path) { return std::string(kDocuments) + "/" + path; }

  [[nodiscard]] Text failure(std::string_view operation, const Text& path) const {
    for (const Value& given : failing_) {
      const Text only = textOf(member(given, "path"));
      if (textOf(member(given, "operation")) == operation && (!only || path == place(*only))) {
        return textOf(member(given, "description"));
      }
    }
    return std::nullopt;
  }

  // `folder` is "" or ends in "/".
  void collect(const std::string& folder, std::map<std::string, std::string>& tree) {
    const std::string path = folder.empty() ? std::string(kDocuments) : place(folder.substr(0, folder.size() - 1));
    const auto found = names(path);
    if (found.empty() && !folder.empty()) tree[folder] = "";
    for (const std::string& name : found) {
      const auto bytes = MemoryFileManager::dataWithContentsOfFile(path + "/" + name);
      if (bytes) {
        tree[folder + name] = *bytes;
      } else {
        collect(folder + name + "/", tree);
      }
    }
  }

  ValueList failing_;
};

}  // namespace tavlo::conformance
