// The names that a URL has in the media cache, as the operations themselves make them.
#pragma once

#include <string>

#include "common/Text.h"

namespace tavlo::cli {

// Absent: that operation comes to no name, since its text is empty.
struct CacheNames {
  Text video;           // that getCacheVideoDataPath() looks for
  Text bannerWritten;   // that cachedBannerImage() stores under
  Text bannerLookedUp;  // that getCacheBannerImagePath() looks for
};

// Runs the operations in a platform that makes and fetches nothing, which is in place meanwhile; nothing is
// installed afterwards. For one thread at a time.
[[nodiscard]] CacheNames cacheNamesOf(const std::string& url);

}  // namespace tavlo::cli
