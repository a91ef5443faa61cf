// The cache directory: its path, and what its entries are called.
#pragma once

#include <string_view>

#include "common/Text.h"
#include "platform/FileManager.h"

namespace tavlo {

inline constexpr std::string_view kVideoListName = "VideoListAPI";
inline constexpr std::string_view kInterstitialListName = "InterstitialListAPI";

// Documents/TavloCache, whether it is there or not. Absent when the platform has no Documents directory.
[[nodiscard]] Text cacheDirectory(platform::FileManager& files);

// TavloUtility::getDocumentDirectoryPath() on these files.
[[nodiscard]] Text pathInCacheDirectory(platform::FileManager& files, std::string_view fileName);

}  // namespace tavlo
