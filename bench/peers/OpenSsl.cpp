// The call that computes at once is the fastest one, deprecated as it is: the others look the algorithm up first.
#define OPENSSL_API_COMPAT 0x10100000L
#include <openssl/md5.h>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

Md5Bytes openSslMd5(std::string_view text) {
  Md5Bytes digest;
  MD5(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
  return digest;
}

}  // namespace tavlo::bench::peers
