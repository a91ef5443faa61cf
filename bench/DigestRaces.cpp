#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/peers/Peers.h"
#include "common/Md5.h"

namespace tavlo::bench {
namespace {

constexpr std::array kSizes{
    std::pair{"0 B", std::size_t{0}},          std::pair{"16 B", std::size_t{16}},
    std::pair{"64 B", std::size_t{64}},        std::pair{"120 B", std::size_t{120}},
    std::pair{"1 KiB", std::size_t{1} << 10U}, std::pair{"1 MiB", std::size_t{1} << 20U},
};
constexpr std::size_t kLongestName = 120;  // of what is hashed to name a file

std::string urlOf(std::size_t bytes) {
  std::string url = "https://cdn.example.com/v/";
  while (url.size() < bytes) url += "clip-7D4E0F2A/";
  url.resize(bytes);
  return url;
}

}  // namespace

// The digits are the same work for everybody.
void addDigests(Races& races) {
  for (const auto& [name, bytes] : kSizes) {
    const auto text = std::make_shared<std::string>();
    const auto value = std::make_shared<std::optional<Value>>();
    Race& race = races.add("md5", name);
    race.size(std::max<std::size_t>(bytes, 1)).setUp([=, size = races.sized(bytes)] {
      *text = urlOf(size);
      *value = Value(*text);
    });
    race.ours([=] { return TavloUtility::md5(*value).value(); });
    if constexpr (peers::kOpenSsl) race.peer("OpenSSL", [=] { return hexadecimal(peers::openSslMd5(*text)); });
    if constexpr (peers::kNettle) race.peer("nettle", [=] { return hexadecimal(peers::nettleMd5(*text)); });
    if constexpr (peers::kGcrypt) race.peer("libgcrypt", [=] { return hexadecimal(peers::gcryptMd5(*text)); });
    if constexpr (peers::kOpenSsl || peers::kNettle || peers::kGcrypt) race.atMost(bytes <= kLongestName ? 1.0 : 1.05);
  }
}

}  // namespace tavlo::bench
