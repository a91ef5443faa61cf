// Container: the one folder that holds everything an app keeps, and the names of what lies in it.
//
//   FOLDER/Documents/                       what the app keeps for its user; the media cache lies in it
//   FOLDER/Library/Preferences/DOMAIN.plist the user settings
//   FOLDER/Resources/                       the app's bundles, if it has any; never made here
//   FOLDER/tmp/                             temporary files on their way to a rename
//
// Values   a domain is one file name of 1 to 240 bytes, without "/" and NUL, and not "." or "..". The folder
//          is the one given, made absolute, else DOMAIN under $XDG_DATA_HOME (which counts only when it is
//          absolute), else under .local/share of $HOME (the same), else of the password database's home.
// Absent   locate() gives std::nullopt when nothing names a folder, or when the domain is left to the
//          executable's name and that cannot be read or is no domain.
// Threads  a Container is a value; folders may be made by any number of threads and processes at once.
// Throws   std::invalid_argument from locate() for a given domain that is none, or a given folder that is
//          empty, holds a NUL, or is relative to a current folder that is gone. The message says which, and what is
//          allowed.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class Container {
 public:
  // An absent folder and an empty domain mean the defaults above; the default domain is the executable's name.
  [[nodiscard]] static std::optional<Container> locate(const std::optional<std::filesystem::path>& folder,
                                                       const std::string& domain,
                                                       Syscalls& syscalls = Syscalls::real());

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  [[nodiscard]] const std::string& domain() const { return domain_; }
  [[nodiscard]] std::filesystem::path documents() const { return folder_ / "Documents"; }
  [[nodiscard]] std::filesystem::path library() const { return folder_ / "Library"; }
  [[nodiscard]] std::filesystem::path preferences() const { return library() / "Preferences"; }
  [[nodiscard]] std::filesystem::path settingsFile() const { return preferences() / (domain_ + ".plist"); }
  [[nodiscard]] std::filesystem::path resources() const { return folder_ / "Resources"; }
  [[nodiscard]] std::filesystem::path temporary() const { return folder_ / "tmp"; }

  // Makes all of them, and the folders above that are missing, with mode 0700. True: they are there and
  // survive a crash of the machine.
  [[nodiscard]] bool makeFolders() const;

  // Which names makeFolder() makes durable: all from the container down, or, for a caller that did so before,
  // only those that it makes anew.
  enum class Durable { all, fresh };

  // The same for one folder: the container's own or one in it.
  [[nodiscard]] bool makeFolder(const std::filesystem::path& folder, Durable durable = Durable::all,
                                Syscalls& syscalls = Syscalls::real()) const;

 private:
  Container(std::filesystem::path folder, std::string domain)
      : folder_(std::move(folder)), domain_(std::move(domain)) {}

  std::filesystem::path folder_;
  std::string domain_;
};

}  // namespace tavlo::linux_platform
