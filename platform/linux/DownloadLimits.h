// DownloadLimits: how far a download may go before it counts as failed.
//
// Values   sizes are in bytes. A time runs from 1 ms to a day, `body` from 1 to 1 TiB (on a 32-bit processor to 2 GiB
//          less a byte), `responseHead` from 1 to 64 MiB, `redirects` from 0 (none is followed) to 100, `workers` from
//          1 to 64.
// Throws   std::invalid_argument from check(), naming the first limit that is outside and what it may be.
#pragma once

#include <chrono>
#include <cstddef>

namespace tavlo::linux_platform {

struct DownloadLimits {
  std::chrono::milliseconds connect{10'000};           // for finding the host, connecting and the TLS handshake
  std::chrono::milliseconds stall{15'000};             // without a whole header line or a byte of the body
  std::chrono::milliseconds total{120'000};            // from the start to the last byte, redirects included
  std::size_t body = std::size_t{64} << 20U;           // also of a file that a `file:` URL names
  std::size_t responseHead = std::size_t{256} << 10U;  // of one response, interim ones included
  int redirects = 20;
  int workers = 4;  // threads of the background queue, and so downloads at once
};

void check(const DownloadLimits& limits);

}  // namespace tavlo::linux_platform
