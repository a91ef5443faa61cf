// Removing an item, a folder with all that is in it.
//
// Values   a symbolic link is removed, never followed; one that takes a folder's place meanwhile is not followed
//          either, and stays.
// Absent   false: something is left, and errno tells the first reason. The rest is removed all the same. What
//          another thread or process removes at the same time counts as removed, but not the item itself. "/"
//          and what ends in "." or ".." fail with EINVAL, and nothing in them is removed.
// Bounds   three open files at a time and no recursion, however deep the tree is.
// Threads  any number of threads and processes at once, on the same item as well.
#pragma once

#include <string>

#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

[[nodiscard]] bool removeTree(Syscalls& syscalls, const std::string& path);

}  // namespace tavlo::linux_platform
