#include <gcrypt.h>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

Md5Bytes gcryptMd5(std::string_view text) {
  Md5Bytes digest;
  gcry_md_hash_buffer(GCRY_MD_MD5, digest.data(), text.data(), text.size());
  return digest;
}

}  // namespace tavlo::bench::peers
