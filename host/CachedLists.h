// CachedLists: the SDK's writer of the two archived lists in the media cache, which
// TavloUtility::getCachedVideoList() reads back.
//
//   tavlo::host::writeCachedList(tavlo::host::CachedList::video, tavlo::Value::list(std::move(records)));
//
// Values   any value that a keyed archive can hold (cache/KeyedArchive.h); Uid{0} is the list that is nothing at all.
// Durable  the list is on disk when the call returns, and survives a crash of the process and of the machine. A
//          reader meets the old list or the new one, whole.
// Logs     those of TavloUtility::getDocumentDirectoryPath().
// Threads  any thread, any time; the last writer wins.
// Throws   CachedListError, which says what failed and what to do; the old list then stands, or the new one, whole,
//          when all that failed is making its name durable. Nothing else but std::bad_alloc.
#pragma once

#include <stdexcept>

#include "common/Value.h"

namespace tavlo::host {

class CachedListError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class CachedList { video, interstitial };

// The name of the list's file in the cache directory: "VideoListAPI" or "InterstitialListAPI".
[[nodiscard]] const char* fileName(CachedList list);

void writeCachedList(CachedList list, const Value& value);

}  // namespace tavlo::host
