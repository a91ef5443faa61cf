// The platform's files.
//
// Values   paths are the platform's own: UTF-8 texts, or bytes as contentsOfDirectoryAtPath() gave them. An
//          absent path, an empty one and one that holds U+0000 name nothing, and never reach the system.
// Absent   as each operation says. A failure has a description for people: what happened, and to which path.
// Threads  any thread, any time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Path.h"
#include "common/Text.h"

namespace tavlo::platform {

enum class Existence { missing, file, directory };

// Which items a removal takes: anything, a directory with all that is in it; or anything but a directory,
// which then is a failure.
enum class Removal { anything, fileOnly };

// What a write makes durable against a crash of the machine: the new contents, should the file be found under
// its name; or the name as well, so that it will be.
enum class Durable { contents, name };

// How an operation ended: a failure has a description.
class FileResult {
 public:
  [[nodiscard]] static FileResult success() { return FileResult(std::nullopt); }
  [[nodiscard]] static FileResult failure(std::string description) { return FileResult(std::move(description)); }

  explicit operator bool() const { return !description_; }
  // "" for a success.
  [[nodiscard]] std::string description() const { return description_.value_or(""); }

 private:
  explicit FileResult(Text description) : description_(std::move(description)) {}

  Text description_;
};

class FileManager {
 public:
  FileManager() = default;
  FileManager(const FileManager&) = delete;
  FileManager& operator=(const FileManager&) = delete;
  virtual ~FileManager() = default;

  // The user's Documents directory, made by the platform when it is missing; the first entry of the
  // platform's search list. Absent when there is no place for one.
  [[nodiscard]] virtual Text documentDirectory() = 0;

  // The same as a "file:" URL that ends in "/"; the last entry of the platform's list of URLs.
  [[nodiscard]] virtual Text documentDirectoryUrl() {
    const Text directory = documentDirectory();
    return directory ? fileUrl(*directory + "/") : std::nullopt;
  }

  // What a path leads to. Links are followed; what cannot be looked at is missing.
  [[nodiscard]] virtual Existence fileExistsAtPathIsDirectory(const Text& path) = 0;
  [[nodiscard]] virtual bool fileExistsAtPath(const Text& path) {
    return fileExistsAtPathIsDirectory(path) != Existence::missing;
  }

  // Removes an item. A symbolic link is removed, never followed. Of a directory as much is removed as can be.
  [[nodiscard]] virtual FileResult removeItemAtPath(const Text& path, Removal removal) = 0;

  // Removes items of a directory by their names in it, each as Removal::anything does and in the order given. What
  // cannot be removed stays; the others go all the same. A name that is empty or holds a "/" names no item.
  virtual void removeItemsOfDirectoryAtPath(const Text& directory, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (name.empty() || name.find('/') != std::string::npos) continue;
      static_cast<void>(removeItemAtPath(appendedPathComponent(directory, name), Removal::anything));
    }
  }

  // Makes the last component of the path, which must be missing; those above must be there.
  [[nodiscard]] virtual FileResult createDirectoryAtPath(const Text& path) = 0;

  // The names directly in a directory, hidden ones included, in no order. Absent when it cannot be read.
  [[nodiscard]] virtual std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) = 0;

  // The bytes of a whole file. Absent when it cannot be read or is no regular file.
  [[nodiscard]] virtual std::optional<std::string> dataWithContentsOfFile(const Text& path) = 0;

  // Puts the bytes under the path in one step: a reader, and whoever finds the file after a crash of the process, meets
  // the earlier file or the new one, whole. After a failure that is the earlier one, unless only its name did not last.
  [[nodiscard]] virtual FileResult writeToFileAtomically(std::string_view bytes, const Text& path, Durable durable) = 0;
};

}  // namespace tavlo::platform
