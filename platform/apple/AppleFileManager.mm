#import "platform/apple/AppleFileManager.h"

#import <Foundation/Foundation.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "common/Utf8.h"
#import "platform/apple/Bridge.h"

namespace tavlo::apple_platform {
namespace {

using platform::Existence;
using platform::FileResult;

// The platform raises for a path that has no UTF-8 form, such as one with half of a surrogate pair.
bool isUsable(const Text& path) {
  return path && !path->empty() && path->find('\0') == std::string::npos && isUtf8(*path);
}

FileResult namesNothing() { return FileResult::failure("no path: it is absent, empty, no UTF-8 or holds a NUL"); }

// The platform's own description, which on the device names the path; GNUstep Base's does not.
FileResult result(bool succeeded, NSError* error, const Text& path) {
  if (succeeded) return FileResult::success();
  std::string description = textOf([error description]).value_or("the platform gives no reason");
  if (description.find(*path) == std::string::npos) description.append(": ").append(*path);
  return FileResult::failure(std::move(description));
}

FileResult systemFailure(const std::string& path) {
  return FileResult::failure(std::generic_category().message(errno) + ": " + path);
}

bool isRegularFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isDirectoryItself(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool flushed(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool isFlushed = fsync(descriptor) == 0;
  const int error = errno;
  close(descriptor);
  errno = error;
  return isFlushed;
}

NSString* documents() {
  NSArray* const paths = NSSearchPathForDirectoriesInDomains(NSDocumentDirectory, NSUserDomainMask, YES);
  return [paths count] == 0 ? nil : [paths objectAtIndex:0];
}

}  // namespace

Text AppleFileManager::documentDirectory() {
  NSString* const path = documents();
  BOOL isDirectory = NO;
  if (path != nil && ![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isDirectory]) {
    static_cast<void>([[NSFileManager defaultManager] createDirectoryAtPath:path
                                                withIntermediateDirectories:YES
                                                                 attributes:nil
                                                                      error:nullptr]);
  }
  return textOf(path);
}

// GNUstep Base has no list of URLs.
Text AppleFileManager::documentDirectoryUrl() {
#ifdef GNUSTEP
  return FileManager::documentDirectoryUrl();
#else
  NSArray* const urls = [[NSFileManager defaultManager] URLsForDirectory:NSDocumentDirectory
                                                               inDomains:NSUserDomainMask];
  return textOf([[urls lastObject] absoluteString]);
#endif
}

Existence AppleFileManager::fileExistsAtPathIsDirectory(const Text& path) {
  BOOL isDirectory = NO;
  if (!isUsable(path) || ![[NSFileManager defaultManager] fileExistsAtPath:stringOf(*path) isDirectory:&isDirectory]) {
    return Existence::missing;
  }
  return isDirectory ? Existence::directory : Existence::file;
}

FileResult AppleFileManager::removeItemAtPath(const Text& path, platform::Removal removal) {
  if (!isUsable(path)) return namesNothing();
  if (removal == platform::Removal::fileOnly && isDirectoryItself(*path)) {
    errno = EISDIR;
    return systemFailure(*path);
  }
  NSError* error = nil;
  const bool isRemoved = [[NSFileManager defaultManager] removeItemAtPath:stringOf(*path) error:&error];
  return result(isRemoved, error, path);
}

FileResult AppleFileManager::createDirectoryAtPath(const Text& path) {
  if (!isUsable(path)) return namesNothing();
  NSError* error = nil;
  const bool isMade = [[NSFileManager defaultManager] createDirectoryAtPath:stringOf(*path)
                                                withIntermediateDirectories:NO
                                                                 attributes:nil
                                                                      error:&error];
  return result(isMade, error, path);
}

std::optional<std::vector<std::string>> AppleFileManager::contentsOfDirectoryAtPath(const Text& path) {
  if (!isUsable(path)) return std::nullopt;
  NSArray* const found = [[NSFileManager defaultManager] contentsOfDirectoryAtPath:stringOf(*path) error:nullptr];
  if (found == nil) return std::nullopt;
  std::vector<std::string> names;
  for (NSUInteger i = 0; i < [found count]; ++i) names.push_back(*textOf([found objectAtIndex:i]));
  return names;
}

std::optional<std::string> AppleFileManager::dataWithContentsOfFile(const Text& path) {
  if (!isUsable(path) || !isRegularFile(*path)) return std::nullopt;
  NSData* const data = [NSData dataWithContentsOfFile:stringOf(*path)];
  if (data == nil) return std::nullopt;
  return [data length] == 0 ? std::string() : std::string(static_cast<const char*>([data bytes]), [data length]);
}

FileResult AppleFileManager::writeToFileAtomically(std::string_view bytes, const Text& path,
                                                   platform::Durable durable) {
  if (!isUsable(path)) return namesNothing();
  NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
  if (![data writeToFile:stringOf(*path) atomically:YES]) {
    return FileResult::failure("the platform could not write the file: " + *path);
  }
  if (!flushed(*path)) return systemFailure(*path);
  const std::string folder = path->substr(0, path->rfind('/') + 1);
  if (durable == platform::Durable::name && !folder.empty() && !flushed(folder)) return systemFailure(folder);
  return FileResult::success();
}

}  // namespace tavlo::apple_platform
