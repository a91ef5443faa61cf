#include <boost/url/encode.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>

#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {

std::string boostUrlEncode(std::string_view text) { return boost::urls::encode(text, boost::urls::unreserved_chars); }

}  // namespace tavlo::bench::peers
