#include <nettle/md5.h>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

Md5Bytes nettleMd5(std::string_view text) {
  md5_ctx context;
  md5_init(&context);
  md5_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  Md5Bytes digest;
  md5_digest(&context, digest.size(), digest.data());
  return digest;
}

}  // namespace tavlo::bench::peers
