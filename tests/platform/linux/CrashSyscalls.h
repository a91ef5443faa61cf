// The real system calls, and beside them a model of what the disk holds for certain: what a crash of the machine
// can leave of one file.
//
// Between two fsyncs a write may be kept, lost or torn, with the rest of the file cut off, zeros or garbage; a
// name change may be kept or lost, whatever becomes of the others.
#pragma once

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/Syscalls.h"

namespace tavlo::test {

class CrashSyscalls final : public linux_platform::Syscalls {
 public:
  using Contents = std::optional<std::string>;  // absent: no such file

  // What a test breaks to see that it would notice.
  enum class Broken { nothing, noFsyncOfFiles, noFsyncOfFolders, fsyncAfterRename };

  // The root is there for certain. `beforeEach` sees the model before every call that changes the disk.
  explicit CrashSyscalls(std::filesystem::path root, Broken broken = Broken::nothing)
      : root_(std::move(root)), broken_(broken) {}

  void setBeforeEach(std::function<void()> beforeEach) { beforeEach_ = std::move(beforeEach); }

  // All calls that change the disk fail from the n-th on, as if the process were gone.
  void dieBefore(std::size_t n) { deathAt_ = calls_ + n; }
  [[nodiscard]] bool isDead() const { return calls_ > deathAt_; }
  void comeBack() { deathAt_ = SIZE_MAX; }

  // A file that has been there, whole and durable, for long.
  void assume(const std::filesystem::path& path, const std::string& bytes) {
    for (auto folder = path.parent_path(); folder != root_; folder = folder.parent_path()) {
      folders_.insert(folder);
      addDurable(folder, "");
    }
    addDurable(path, bytes);
  }

  // Everything that a crash now can leave under the path.
  [[nodiscard]] std::set<Contents> possible(const std::filesystem::path& path) const {
    std::set<Contents> states = possibleInItsFolder(path);
    for (auto folder = path.parent_path(); folder != root_; folder = folder.parent_path()) {
      if (possibleFiles(folder).contains(kNone)) states.insert(std::nullopt);
    }
    return states;
  }

  // All files and folders below the root, each under its path with its contents, which a folder has none of.
  using Tree = std::map<std::filesystem::path, Contents>;

  // Everything that a crash now can leave, all changes of names being kept or lost independently.
  [[nodiscard]] std::set<Tree> possibleTrees() const {
    std::set<Tree> trees{{}};
    for (const auto& [path, file] : names_) {  // a folder comes before what is in it
      std::set<Tree> longer;
      for (const Tree& tree : trees) {
        const bool hasFolder = path.parent_path() == root_ || tree.contains(path.parent_path());
        for (const Contents& contents : possibleInItsFolder(path)) {
          Tree next = tree;
          if (hasFolder && contents) next[path] = folders_.contains(path) ? std::nullopt : contents;
          longer.insert(std::move(next));
        }
      }
      trees = std::move(longer);
    }
    return trees;
  }

  int open(const char* path, int flags, mode_t mode) override {
    const bool makes = (flags & O_CREAT) != 0 && !std::filesystem::exists(path);
    if (makes && !step()) return -1;
    const int fd = Syscalls::open(path, flags, mode);
    if (fd < 0) return fd;
    if (makes) change(path, add(""));
    open_[fd] = path;
    return fd;
  }
  ssize_t write(int fd, const void* bytes, std::size_t size) override {
    if (!step()) return -1;
    files_[static_cast<std::size_t>(names_.at(open_[fd]))].current.append(static_cast<const char*>(bytes), size);
    return Syscalls::write(fd, bytes, size);
  }
  int fsync(int fd) override {
    if (!step()) return -1;
    const std::filesystem::path path = open_[fd];
    if (std::filesystem::is_directory(path)) {
      if (broken_ != Broken::noFsyncOfFolders) syncNames(path);
    } else if (broken_ == Broken::nothing || broken_ == Broken::noFsyncOfFolders) {
      syncFile(names_.at(path));
    }
    return 0;
  }
  int rename(const char* from, const char* to) override {
    if (!step()) return -1;
    const int file = names_.at(from);
    change(to, file);
    change(from, kNone);
    if (broken_ == Broken::fsyncAfterRename) {
      beforeEach_();
      syncFile(file);
    }
    return Syscalls::rename(from, to);
  }
  int unlink(const char* path) override {
    if (!step()) return -1;
    change(path, kNone);
    return Syscalls::unlink(path);
  }
  int mkdir(const char* path, mode_t mode) override {
    if (!step()) return -1;
    folders_.insert(path);
    change(path, add(""));
    return Syscalls::mkdir(path, mode);
  }

 private:
  static constexpr int kNone = -1;

  struct File {
    std::string current;
    std::string durable;
  };

  bool step() {
    if (beforeEach_) beforeEach_();
    if (calls_++ < deathAt_) return true;
    errno = EIO;
    return false;
  }

  int add(const std::string& bytes) {
    files_.push_back({bytes, bytes});
    return static_cast<int>(files_.size()) - 1;
  }
  void addDurable(const std::filesystem::path& path, const std::string& bytes) {
    const int file = add(bytes);
    names_[path] = file;
    durableNames_[path] = file;
  }
  void change(const std::filesystem::path& path, int file) {
    names_[path] = file;
    changes_[path].insert(file);
  }
  void syncFile(int file) {
    auto& [current, durable] = files_[static_cast<std::size_t>(file)];
    durable = current;
  }
  void syncNames(const std::filesystem::path& folder) {
    std::erase_if(changes_, [&](const auto& entry) {
      if (entry.first.parent_path() != folder) return false;
      durableNames_[entry.first] = names_.at(entry.first);
      return true;
    });
  }

  [[nodiscard]] std::set<int> possibleFiles(const std::filesystem::path& path) const {
    const auto durable = durableNames_.find(path);
    std::set<int> files{durable == durableNames_.end() ? kNone : durable->second};
    if (const auto pending = changes_.find(path); pending != changes_.end()) {
      files.insert(pending->second.begin(), pending->second.end());
    }
    return files;
  }

  // What a crash can leave under the path if the folder that it is in stays.
  [[nodiscard]] std::set<Contents> possibleInItsFolder(const std::filesystem::path& path) const {
    std::set<Contents> states;
    for (const int file : possibleFiles(path)) {
      if (file == kNone) {
        states.insert(std::nullopt);
      } else {
        addContents(files_[static_cast<std::size_t>(file)], states);
      }
    }
    return states;
  }

  static void addContents(const File& file, std::set<Contents>& states) {
    states.insert(file.durable);
    const std::size_t size = file.current.size();
    if (file.durable.size() == size) return;
    for (const std::size_t torn : {std::size_t{0}, std::size_t{1}, size / 2, size - 1, size}) {
      const std::string kept = file.current.substr(0, torn);
      states.insert(kept);
      states.insert(kept + std::string(size - torn, '\0'));
      states.insert(kept + std::string(size - torn, '\x5A'));
    }
  }

  const std::filesystem::path root_;
  const Broken broken_;
  std::function<void()> beforeEach_;
  std::size_t calls_ = 0;
  std::size_t deathAt_ = SIZE_MAX;
  std::vector<File> files_;
  std::set<std::filesystem::path> folders_;
  std::map<std::filesystem::path, int> names_;              // as the running system sees them
  std::map<std::filesystem::path, int> durableNames_;       // as the last fsync of their folder left them
  std::map<std::filesystem::path, std::set<int>> changes_;  // since then
  std::map<int, std::filesystem::path> open_;
};

}  // namespace tavlo::test
